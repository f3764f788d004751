#include "ReadingFiles.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

#include <assimp/IOStream.hpp>

#include <3dzel.h>

#include "Formats.h"
#include "PlyHead.h"
#include "Uri.h"

namespace {

namespace fs = std::filesystem;

bool IsRegular(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

/// A file whose first bytes are others.
class MendedStream : public Assimp::IOStream {
public:
    /// `start` stands for the first `replaced` bytes of `file`.
    MendedStream(std::unique_ptr<Assimp::IOStream> file, std::string start, std::size_t replaced)
        : m_file(std::move(file)), m_start(std::move(start)), m_replaced(replaced)
    {
    }

    std::size_t Read(void* bytes, std::size_t size, std::size_t count) override
    {
        auto* to = static_cast<char*>(bytes);
        std::size_t left = size * count;
        if (m_position < m_start.size()) {
            const std::size_t part = std::min(left, m_start.size() - m_position);
            std::memcpy(to, m_start.data() + m_position, part);
            m_position += part, to += part, left -= part;
        }
        if (left > 0 && m_file->Seek(m_position - m_start.size() + m_replaced, aiOrigin_SET) == aiReturn_SUCCESS) {
            const std::size_t part = m_file->Read(to, 1, left);
            m_position += part, left -= part;
        }
        return size > 0 ? (size * count - left) / size : 0;
    }
    std::size_t Write(const void*, std::size_t, std::size_t) override { return 0; }
    aiReturn Seek(std::size_t offset, aiOrigin origin) override
    {
        const std::size_t position = offset + (origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? m_position : FileSize());
        if (position > FileSize())
            return aiReturn_FAILURE;
        m_position = position;
        return aiReturn_SUCCESS;
    }
    std::size_t Tell() const override { return m_position; }
    std::size_t FileSize() const override { return m_file->FileSize() - m_replaced + m_start.size(); }
    void Flush() override {}

private:
    std::unique_ptr<Assimp::IOStream> m_file;
    std::string m_start;
    std::size_t m_replaced, m_position = 0;
};

}

ReadingFiles::ReadingFiles(const std::string& path, unsigned int fileClass, const std::string& extension, OnCompanion onCompanion)
    : m_path(path), m_name(extension.empty() ? path : fs::path(path).replace_extension(extension).string()), m_fileClass(fileClass),
      m_onCompanion(std::move(onCompanion))
{
}

bool ReadingFiles::Exists(const char* path) const { return IsRegular(Find(path)); }

Assimp::IOStream* ReadingFiles::Open(const char* path, const char* mode)
{
    const std::string real = Find(path);
    if (std::strpbrk(mode, "wa+") || !IsRegular(real))
        return nullptr;
    if (real != m_path) {
        std::error_code error;
        if (m_onCompanion && IsBeside(real))
            m_onCompanion(fs::file_size(real, error));
    } else if (m_fileClass == FourCC("PLY ")) {
        if (const std::optional<PlyHead> head = PlyHead::Read(real); head && head->CanBeMended()) {
            std::unique_ptr<Assimp::IOStream> file(DefaultIOSystem::Open(real.c_str(), mode));
            return file ? new MendedStream(std::move(file), head->Mend(), head->GetSize()) : nullptr;
        }
    }
    return DefaultIOSystem::Open(real.c_str(), mode);
}

std::string ReadingFiles::Find(const std::string& path) const
{
    if (path == m_name)
        return m_path;
    const std::string decoded = GetFormatTraits(m_fileClass).gltf ? DecodeUri(path) : path;
    for (const std::string& name : {decoded, path})
        if (IsRegular(name))
            return name;
    for (const std::string& name : {decoded, path})
        if (const CXTString<wchar_t> found = fileFindAnyCase(Utf8ToWide(name)); !found.IsEmpty())
            return WideToUtf8(found);
    return path;
}

bool ReadingFiles::IsBeside(const std::string& path) const
{
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(m_path, error).parent_path(), file = fs::weakly_canonical(path, error);
    return !error && std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}
