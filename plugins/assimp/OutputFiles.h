#pragma once

#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include <3dzel.h>

/// A file that is being written, in large blocks, beside the one whose place it takes.
class OutputFile {
public:
    explicit OutputFile(const CXTString<wchar_t>& path);

    const CXTString<wchar_t>& GetPath() const { return m_path; }
    bool IsOpen() const { return m_file.IsOpen(); }
    CXTString<wchar_t> GetErrorText() const { return m_file.GetErrorText(); }
    /// Some bytes did not reach the disk.
    bool HasFailed() const { return m_failed; }

    void Write(const void* bytes, std::size_t size);
    void Write(std::string_view text) { Write(text.data(), text.size()); }
    template <class T> void WriteValue(const T& value)
    {
        std::memcpy(Reserve(sizeof value), &value, sizeof value);
        m_used += sizeof value;
    }
    /// The shortest digits that read back as the same number.
    template <class T> void WriteNumber(T value)
    {
        char* const at = Reserve(64);
        m_used += static_cast<std::size_t>(std::to_chars(at, at + 64, value).ptr - at);
    }
    void WriteCharacter(char character)
    {
        *Reserve(1) = character;
        m_used++;
    }

    std::uint64_t GetPosition() const { return m_flushed + m_used; }
    bool SetPosition(std::uint64_t position);
    std::uint64_t GetLength() const { return std::max(m_length, GetPosition()); }
    bool Flush();
    /// Puts the file in its place, or drops it. False when the bytes did not reach the disk.
    bool Close(bool keep);

private:
    static constexpr std::size_t BLOCK = std::size_t{1} << 20;

    char* Reserve(std::size_t size)
    {
        if (BLOCK - m_used < size)
            Flush();
        return m_block.get() + m_used;
    }

    CXTString<wchar_t> m_path;
    IoFile m_file;
    std::unique_ptr<char[]> m_block;
    std::size_t m_used = 0;         // of the block
    std::uint64_t m_flushed = 0;    // position of the block in the file
    std::uint64_t m_length = 0;
    bool m_failed = false;
};

/// The files of one export. None takes its place before all are written, and when one cannot take its place, those that did give theirs back:
/// on any failure whatever stood there stays as it was.
class OutputFiles {
public:
    /// Files other than `main` are side files, which take their places before it does.
    explicit OutputFiles(const CXTString<wchar_t>& main) : m_main(main) {}

    /// Null, noted as a failure, when the file cannot be opened. A second opening of a file goes on with the first.
    OutputFile* Open(const CXTString<wchar_t>& path);
    OutputFile* OpenMain() { return Open(m_main); }
    /// False, with all files dropped, when some bytes did not reach the disk.
    bool Commit();
    /// What could not be opened or written; empty for nothing.
    const CXTString<wchar_t>& GetFailedPath() const { return m_failedPath; }
    /// The same as a sentence, with the reason in the system's words.
    CXTString<wchar_t> GetFailureText() const;

private:
    void Note(const OutputFile& file);

    CXTString<wchar_t> m_main;
    std::vector<std::unique_ptr<OutputFile>> m_files;
    CXTString<wchar_t> m_failedPath, m_reason;
};
