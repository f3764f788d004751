#include "OutputFiles.h"

#include <algorithm>

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
        Note(path);
        return nullptr;
    }
    return m_files.emplace_back(std::move(file)).get();
}

bool OutputFiles::Commit()
{
    for (const auto& file : m_files)
        if (!file->Flush())
            Note(file->GetPath());
    std::ranges::stable_partition(m_files, [this](const auto& file) { return file->GetPath() != m_main; });
    for (const auto& file : m_files)    // once one fails, those that follow are dropped
        if (!file->Close(m_failedPath.IsEmpty()))
            Note(file->GetPath());
    m_files.clear();
    return m_failedPath.IsEmpty();
}

bool OutputFiles::Note(const CXTString<wchar_t>& path)
{
    if (m_failedPath.IsEmpty())
        m_failedPath = path;
    return false;
}
