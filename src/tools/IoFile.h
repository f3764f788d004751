#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "tools/Api.h"
#include "tools/String.h"

class CTemporaryFile;

/// Bytes that an archive reads or writes. The base class is a file on disk; CCustomMemFile keeps them in memory.
///
/// Writing goes to a file beside the target, which CloseFile(true) puts in its place after fsync: a crash or a full disk
/// leaves the old file whole. A link stays a link, the file behind it is replaced; the new file has the permissions of the
/// old one. A write-protected file is refused.
class ZEL_API IoFile {
public:
    static constexpr std::uint64_t LENGTH_UNKNOWN = ~std::uint64_t{0};

    /// `silent`: no message on failure. `options` are kept and not looked at.
    explicit IoFile(bool silent = true, unsigned int options = 0);
    virtual ~IoFile();    // an open write is dropped
    IoFile(const IoFile&) = delete;
    IoFile& operator=(const IoFile&) = delete;

    /// `mode` 1 reads, 0 writes. The last argument is unused. False for a folder, or when the file cannot be opened.
    ///
    /// Only regular files are read: devices and pipes may have no end, and opening one never waits. Both can be written.
    virtual bool OpenFile(const CXTString<wchar_t>& name, int mode, void* reserved);
    /// Ends reading or writing; with `keep` false a written file is dropped. False when the bytes did not reach the disk.
    virtual bool CloseFile(bool keep = true);
    /// Why the last opening, writing or closing failed, in the system's words ("No space left on device"); empty when none did.
    CXTString<wchar_t> GetErrorText() const;
    /// Absolute path of the file that is open for reading: what was really opened, behind all links. Empty for none.
    CXTString<wchar_t> GetOpenedPath() const;
    virtual bool IsOpen() const;

    /// Number of bytes read, less than asked at the end or on an error.
    virtual std::size_t ReadBytes(void* bytes, std::size_t size);
    virtual bool WriteBytes(const void* bytes, std::size_t size);
    virtual std::uint64_t GetPosition() const;
    virtual bool SetPosition(std::uint64_t position);
    /// Size of the file; LENGTH_UNKNOWN when it cannot be told (a pipe that is written).
    virtual std::uint64_t GetLength() const;

    bool IsSilent() const { return m_silent; }
    unsigned int GetOptions() const { return m_options; }

private:
    bool OpenForReading(const std::string& path);
    bool OpenForWriting(const std::string& path);
    bool Fail(int error);

    int m_handle = -1;
    bool m_silent;
    bool m_writing = false;
    bool m_failed = false;    ///< some bytes did not go in
    int m_error = 0;          ///< of the system; 0 for none
    unsigned int m_options;
    std::string m_target;
    std::unique_ptr<CTemporaryFile> m_beside;    ///< holds the handle; null where bytes go straight to the target: a device or pipe
};

/// File in memory: owned and growing, or over somebody else's bytes (reading only).
class ZEL_API CCustomMemFile : public IoFile {
public:
    /// Empty, for writing. Grows by at least `growStep` bytes, and by half its size when that is more.
    explicit CCustomMemFile(unsigned int growStep = 1024);
    /// Reads `size` bytes at `bytes`, which stay the caller's.
    CCustomMemFile(const void* bytes, std::size_t size);
    ~CCustomMemFile() override;

    /// Rewinds; opened for writing, the file becomes empty.
    bool OpenFile(const CXTString<wchar_t>& name, int mode, void* reserved) override;
    bool CloseFile(bool keep = true) override;
    bool IsOpen() const override;
    std::size_t ReadBytes(void* bytes, std::size_t size) override;
    bool WriteBytes(const void* bytes, std::size_t size) override;
    std::uint64_t GetPosition() const override;
    bool SetPosition(std::uint64_t position) override;
    std::uint64_t GetLength() const override;

    const void* GetBytes() const;

private:
    unsigned int m_growStep;
    unsigned char* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
    std::size_t m_position = 0;
    bool m_owned = true;
};
