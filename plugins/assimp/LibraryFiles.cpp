#include "LibraryFiles.h"

#include <algorithm>
#include <cstring>

#include <assimp/DefaultIOSystem.h>

#include "FileStamps.h"

namespace {

class OutputStream : public Assimp::IOStream {
public:
    explicit OutputStream(OutputFile& file) : m_file(file) {}

    std::size_t Read(void*, std::size_t, std::size_t) override { return 0; }
    std::size_t Write(const void* bytes, std::size_t size, std::size_t count) override
    {
        const std::string_view all(static_cast<const char*>(bytes), size * count);
        const std::size_t head = m_file.GetPosition() < STAMPS_END ? std::min(all.size(), STAMPS_END) : 0;
        m_file.Write(ClearStamps(all.substr(0, head)));
        m_file.Write(all.substr(head));
        return m_file.HasFailed() ? 0 : count;
    }
    aiReturn Seek(std::size_t offset, aiOrigin origin) override
    {
        const std::uint64_t from = origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? m_file.GetPosition() : m_file.GetLength();
        return m_file.SetPosition(from + offset) ? aiReturn_SUCCESS : aiReturn_FAILURE;
    }
    std::size_t Tell() const override { return m_file.GetPosition(); }
    std::size_t FileSize() const override { return m_file.GetLength(); }
    void Flush() override {}

private:
    OutputFile& m_file;
};

}

Assimp::IOStream* LibraryFiles::Open(const char* file, const char* mode)
{
    if (!std::strpbrk(mode, "wa"))
        return Assimp::DefaultIOSystem().Open(file, mode);
    OutputFile* output = m_files.Open(m_folder + Utf8ToWide(file));
    return output ? new OutputStream(*output) : nullptr;
}
