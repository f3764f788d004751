#include "OutputFiles.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

OutputFile::OutputFile(const CXTString<wchar_t>& path) : m_path(path), m_block(new char[BLOCK]) { m_file.OpenFile(path, 0, nullptr); }

void OutputFile::Write(const void* bytes, std::size_t size)
{
    if (size <= BLOCK) {
        std::memcpy(Reserve(size), bytes, size);
        m_used += size;
        return;
    }
    Flush();
    m_failed |= !m_file.WriteBytes(bytes, size);
    m_flushed += size;
}

bool OutputFile::Flush()
{
    if (m_used > 0)
        m_failed |= !m_file.WriteBytes(m_block.get(), m_used);
    m_flushed += m_used;
    m_length = std::max(m_length, m_flushed);
    m_used = 0;
    return !m_failed;
}

bool OutputFile::SetPosition(std::uint64_t position)
{
    Flush();
    if (!m_file.SetPosition(position))
        return false;
    m_flushed = position;
    return true;
}

bool OutputFile::Close(bool keep)
{
    const bool whole = Flush() && keep;
    return m_file.CloseFile(whole) && whole;
}

OutputFile* OutputFiles::Open(const CXTString<wchar_t>& path)
{
    for (const auto& file : m_files)
        if (file->GetPath() == path)
            return file.get();
    auto file = std::make_unique<OutputFile>(path);
    if (!file->IsOpen()) {
        Note(*file);
        return nullptr;
    }
    return m_files.emplace_back(std::move(file)).get();
}

namespace {

/// What stood in the place of a file that is written, under another name beside it until all files have their places.
class FormerFile {
public:
    explicit FormerFile(const CXTString<wchar_t>& path)
    {
        struct stat status;
        char* const real = realpath(fileToDisk(path).c_str(), nullptr);    // a link stays, and the file behind it is replaced
        m_path = real ? real : fileToDisk(path);
        free(real);
        const bool exists = stat(m_path.c_str(), &status) == 0;
        m_isOurs = exists ? S_ISREG(status.st_mode) : lstat(m_path.c_str(), &status) != 0;    // no device, no link to nothing
        if (exists && m_isOurs)
            Keep();
    }

    /// The former file stands in its place again, or nothing does.
    void PutBack()
    {
        if (!m_kept.empty()) {
            rename(m_kept.c_str(), m_path.c_str());
            unlink(m_kept.c_str());    // renaming does nothing when both are still the same file
        } else if (m_isOurs) {
            unlink(m_path.c_str());
        }
    }
    void Drop()
    {
        if (!m_kept.empty())
            unlink(m_kept.c_str());
    }

private:
    // Not all file systems know links; without one the place is empty for a moment.
    void Keep()
    {
        m_kept = m_path.substr(0, m_path.rfind('/') + 1) + ".zel-XXXXXX";
        const int handle = mkstemp(m_kept.data());
        if (handle >= 0)
            close(handle);
        unlink(m_kept.c_str());
        if (handle < 0 || (link(m_path.c_str(), m_kept.c_str()) != 0 && rename(m_path.c_str(), m_kept.c_str()) != 0))
            m_kept.clear(), m_isOurs = false;
    }

    std::string m_path, m_kept;
    bool m_isOurs;
};

}

bool OutputFiles::Commit()
{
    for (const auto& file : m_files)
        if (!file->Flush())
            Note(*file);
    std::stable_partition(m_files.begin(), m_files.end(), [this](const auto& file) { return file->GetPath() != m_main; });
    std::vector<FormerFile> formers;
    for (const auto& file : m_files) {    // once one fails, those that follow are dropped
        if (m_failedPath.IsEmpty() && m_files.size() > 1)
            formers.emplace_back(file->GetPath());
        if (!file->Close(m_failedPath.IsEmpty()))
            Note(*file);
    }
    m_files.clear();
    for (FormerFile& former : formers)
        m_failedPath.IsEmpty() ? former.Drop() : former.PutBack();
    return m_failedPath.IsEmpty();
}

void OutputFiles::Note(const OutputFile& file)
{
    if (!m_failedPath.IsEmpty())
        return;
    m_failedPath = file.GetPath();
    m_reason = file.GetErrorText();
}

CXTString<wchar_t> OutputFiles::GetFailureText() const
{
    const CXTString<wchar_t> text = m_failedPath + L" could not be written";
    return m_reason.IsEmpty() ? text : text + L": " + m_reason;
}
