#include "LibraryImport.h"

#include <exception>
#include <memory>
#include <string>

#include <strings.h>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include "Formats.h"
#include "MuteStandardError.h"
#include "Preflight.h"
#include "ProgressBridge.h"
#include "ReadingFiles.h"
#include "SceneImport.h"

namespace {

void SetUp(Assimp::Importer& importer)
{
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);           // no made-up geometry for bare skeletons
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);         // no helper nodes
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);    // names, not ids
}

bool HasExtension(const std::string& path, const std::string& extension)
{
    const std::string end = "." + extension;
    return path.size() >= end.size() && strcasecmp(path.c_str() + path.size() - end.size(), end.c_str()) == 0;
}

// The library chooses its reader by the extension: the one to show the file with when its own belongs to another class; empty otherwise.
std::string ForcedExtension(unsigned int fileClass, const std::string& path)
{
    std::string extension;
    for (const Format& format : ListFormats()) {
        if (format.fileClass != fileClass)
            continue;
        if (HasExtension(path, format.extension))
            return {};
        if (extension.empty())
            extension = format.extension;
    }
    return extension;
}

}

C3DScene* ImportFile(unsigned int fileClass, const CXTString<wchar_t>& path, LibraryReading& reading, CSceneImportOptions& options,
                     CProgress& progress)
{
    auto* const importer = new Assimp::Importer;
    const std::unique_ptr<Assimp::Importer> owner(reading.leavesData ? nullptr : importer);
    importer->SetProgressHandler(new ProgressBridge(progress));    // its own, as the files below
    SetUp(*importer);
    const std::string file = WideToUtf8(path);
    auto* const files = new ReadingFiles(file, fileClass, ForcedExtension(fileClass, file), reading.onCompanion);
    importer->SetIOHandler(files);

    CXTString<wchar_t> reason;
    C3DScene* scene = nullptr;
    const MuteStandardError mute;
    try {
        if (const char* const fault = FindFault(fileClass, file))
            reason = Utf8ToWide(fault);
        else if (const aiScene* source = importer->ReadFile(files->GetName(), 0))
            scene = ImportScene(*source, GetFormatTraits(fileClass), CFileNameSpec(path).GetTitle(), reading.images, options);
        else
            reason = Utf8ToWide(importer->GetErrorString());
    } catch (const std::bad_alloc&) {
        throw;                                 // for the caller, who knows why
    } catch (const std::exception& error) {    // the library's own, such as a file that is too large for it
        reason = Utf8ToWide(error.what());
    }
    if (!reason.IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, reason);
    return scene;
}
