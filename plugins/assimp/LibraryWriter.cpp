// Writing through the library's exporters.

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include <assimp/Exporter.hpp>
#include <assimp/cexport.h>
#include <assimp/scene.h>

#include "FbxRepair.h"
#include "FileStamps.h"
#include "LibraryFiles.h"
#include "ProgressBridge.h"
#include "SceneExport.h"
#include "Writers.h"

namespace {

/// A file in memory under a name: nothing of it is left, whatever ends the process.
class NamedMemory {
public:
    NamedMemory() : m_descriptor(memfd_create("zel-export", MFD_CLOEXEC)) {}
    ~NamedMemory()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    NamedMemory(const NamedMemory&) = delete;
    NamedMemory& operator=(const NamedMemory&) = delete;

    bool IsValid() const { return m_descriptor >= 0; }
    std::string GetPath() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }
    std::string ReadAll() const
    {
        std::ifstream file(GetPath(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    int m_descriptor;
};

std::size_t CountLevels(const aiNode& root)
{
    std::size_t levels = 0;
    std::vector<std::pair<const aiNode*, std::size_t>> open{{&root, 0}};    // the root is no node of the scene
    while (!open.empty()) {
        const auto [node, level] = open.back();
        open.pop_back();
        levels = std::max(levels, level);
        for (unsigned int i = 0; i < node->mNumChildren; i++)
            open.emplace_back(node->mChildren[i], level + 1);
    }
    return levels;
}

/// One run of WriteThroughLibrary.
class LibraryWriter {
public:
    explicit LibraryWriter(const WriterTask& task) : m_task(task), m_content(ExportScene(task)) {}

    CXTString<wchar_t> Run()
    {
        if (const std::size_t levels = CountLevels(*m_content->mRootNode); levels > m_task.format.maxLevels)
            return L"The scene has " + CXTString<wchar_t>(std::to_wstring(levels)) + L" levels of nodes, and this format takes " +
                   CXTString<wchar_t>(std::to_wstring(m_task.format.maxLevels)) + L" at most";
        const std::string_view exporter = m_task.format.exporter;
        bool written = false;
        if (m_task.format.writer == WRITER_ARCHIVE)
            written = WriteArchive();
        else if (exporter == "fbx")
            written = WriteRepaired();
        else
            written = Write(WideToUtf8(fileStripPath(m_task.target)));
        if (written && exporter == "glb")
            RepairLength();
        if (written || !m_task.files.GetFailedPath().IsEmpty())
            return {};
        return m_error.empty() ? m_task.target + L" could not be written" : Utf8ToWide(m_error);
    }

private:
    bool Write(const std::string& name)
    {
        return Export([&](Assimp::Exporter& exporter) {
            exporter.SetIOHandler(new LibraryFiles(m_task.files, fileGetPath(m_task.target)));    // the exporter's own
            return exporter.Export(m_content.get(), m_task.format.exporter, name) == aiReturn_SUCCESS;
        });
    }

    bool WriteRepaired()
    {
        return Export([&](Assimp::Exporter& exporter) {
            const aiExportDataBlob* blob = exporter.ExportToBlob(m_content.get(), m_task.format.exporter);
            std::string file = blob ? RepairFbx({static_cast<const char*>(blob->data), blob->size}) : std::string();
            ClearFbxStamps(file);
            OutputFile* main = file.empty() ? nullptr : m_task.files.OpenMain();
            if (main)
                main->Write(file);
            return main != nullptr;
        });
    }

    template <class WORK> bool Export(WORK work)
    {
        CProgress progress(L"Writing", 1000);
        ProgressBridge bridge(progress);
        Assimp::Exporter exporter;
        exporter.SetProgressHandler(&bridge);
        const bool written = work(exporter);
        exporter.SetProgressHandler(nullptr);    // the bridge is not the library's to delete
        m_error = exporter.GetErrorString();
        return written;
    }

    // The library forgets what it fills up between scene and data in the length at the head of a binary file of version 1 of glTF.
    void RepairLength()
    {
        constexpr std::uint64_t LENGTH_AT = 8;
        OutputFile* main = m_task.files.OpenMain();
        const auto length = static_cast<std::uint32_t>(main->GetLength());
        if (main->SetPosition(LENGTH_AT))
            main->WriteValue(length);
    }

    // An archive that lacks the record which ends archives was cut short.
    bool WriteArchive()
    {
        constexpr std::string_view END = "PK\5\6";
        constexpr std::size_t END_SIZE = 22;
        const NamedMemory archive;
        OutputFile* main = m_task.files.OpenMain();
        if (!archive.IsValid() || !main || !Write(archive.GetPath()))
            return false;
        std::string bytes = archive.ReadAll();
        ClearArchiveStamps(bytes);
        main->Write(bytes);
        return bytes.size() >= END_SIZE && bytes.compare(bytes.size() - END_SIZE, END.size(), END) == 0;
    }

    const WriterTask& m_task;
    const ExportedScene m_content;
    std::string m_error;
};

}

CXTString<wchar_t> WriteThroughLibrary(const WriterTask& task) { return LibraryWriter(task).Run(); }
