#include "tools/IoFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/Memory.h"
#include "tools/Progress.h"
#include "tools/TemporaryFile.h"

namespace {

constexpr std::size_t MOST_AT_ONCE = std::size_t{1} << 30;    // the system moves less than 2 GiB a call
constexpr int MOST_LINKS = 40;
constexpr int NOT_REGULAR = -1;    // beside the system's errors

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// The file that `path` leads to, through links, the last of which may point at nothing yet. Empty for a circle.
std::string FollowLinks(std::string path)
{
    for (int i = 0; i < MOST_LINKS; i++) {
        char to[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), to, sizeof to);
        if (length <= 0)
            return path;
        const std::string next(to, length);
        path = next[0] == '/' ? next : FolderOf(path) + '/' + next;
    }
    return {};
}

// So that the new name itself survives a crash. Not every file system can; that is no failure.
void SyncFolder(const std::string& folder)
{
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    fsync(handle);
    close(handle);
}

}

IoFile::IoFile(bool silent, unsigned int options) : m_silent(silent), m_options(options) {}

IoFile::~IoFile() { IoFile::CloseFile(false); }

bool IoFile::OpenFile(const CXTString<wchar_t>& name, int mode, void*)
{
    IoFile::CloseFile(false);
    m_error = 0;
    m_failed = false;
    const std::string path = WideToUtf8(name);
    if (path.empty() || path.find('\0') != path.npos)
        return Fail(ENOENT);
    return mode == 0 ? OpenForWriting(path) : OpenForReading(path);
}

bool IoFile::OpenForReading(const std::string& path)
{
    struct stat status;
    const int handle = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);    // a pipe would wait for a writer
    if (handle < 0)
        return Fail(errno);
    if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(handle);
        return Fail(S_ISDIR(status.st_mode) ? EISDIR : NOT_REGULAR);
    }
    m_handle = handle;
    return true;
}

bool IoFile::OpenForWriting(const std::string& path)
{
    const std::string target = FollowLinks(path);
    struct stat old;
    const bool exists = !target.empty() && stat(target.c_str(), &old) == 0;
    if (target.empty())
        return Fail(ELOOP);
    if (target.back() == '/' || (exists && S_ISDIR(old.st_mode)))
        return Fail(EISDIR);
    if (exists && !S_ISREG(old.st_mode)) {    // a device or pipe cannot be replaced: it takes the bytes as they come
        m_handle = open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        m_writing = m_handle >= 0;
        return m_writing || Fail(errno);
    }
    if (exists && access(target.c_str(), W_OK) != 0)    // renaming would pass over a write protection
        return Fail(errno);
    auto beside = std::make_unique<CTemporaryFile>();
    if (!beside->Open(target, exists))
        return Fail(errno);
    if (exists) {
        if (fchown(beside->GetHandle(), old.st_uid, old.st_gid) != 0 && old.st_gid != getegid())
            old.st_mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
        fchmod(beside->GetHandle(), old.st_mode & 07777);
    }
    m_target = target;
    m_beside = std::move(beside);
    m_handle = m_beside->GetHandle();
    m_writing = true;
    return true;
}

bool IoFile::Fail(int error)
{
    if (m_error == 0)    // what follows from the first fault says less
        m_error = error;
    return false;
}

bool IoFile::CloseFile(bool keep)
{
    if (m_handle < 0)
        return false;
    bool good = !m_failed;
    if (!m_beside)
        close(m_handle);
    else if (good && keep) {
        good = (fsync(m_handle) == 0 && m_beside->PutInPlace(true)) || Fail(errno);
        if (good)
            SyncFolder(FolderOf(m_target));
    }
    m_beside.reset();
    m_handle = -1;
    m_writing = false;
    m_failed = false;
    m_target.clear();
    return good;
}

CXTString<wchar_t> IoFile::GetErrorText() const
{
    if (m_error == 0)
        return {};
    return m_error == NOT_REGULAR ? CXTString<wchar_t>(L"Not a regular file") : Utf8ToWide(std::strerror(m_error));
}

CXTString<wchar_t> IoFile::GetOpenedPath() const
{
    if (m_handle < 0 || m_writing)
        return {};
    char path[PATH_MAX];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(m_handle)).c_str(), path, sizeof path);
    return length > 0 && path[0] == '/' ? Utf8ToWide(std::string(path, length)) : CXTString<wchar_t>();
}

bool IoFile::IsOpen() const { return m_handle >= 0; }

std::size_t IoFile::ReadBytes(void* bytes, std::size_t size)
{
    if (m_handle < 0 || m_writing || !CByteProgress::Count(size))
        return 0;
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = read(m_handle, static_cast<char*>(bytes) + done, std::min(size - done, MOST_AT_ONCE));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool IoFile::WriteBytes(const void* bytes, std::size_t size)
{
    if (m_handle < 0 || !m_writing || m_failed)
        return false;
    if (!CByteProgress::Count(size)) {
        m_failed = true;
        return Fail(ECANCELED);
    }
    for (std::size_t done = 0; done < size;) {
        const ssize_t put = write(m_handle, static_cast<const char*>(bytes) + done, std::min(size - done, MOST_AT_ONCE));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0) {
            m_failed = true;    // a hole inside: this file must not replace the old one
            return Fail(put < 0 ? errno : ENOSPC);
        }
        done += static_cast<std::size_t>(put);
    }
    return true;
}

std::uint64_t IoFile::GetPosition() const
{
    const off_t position = m_handle < 0 ? -1 : lseek(m_handle, 0, SEEK_CUR);
    return position < 0 ? 0 : static_cast<std::uint64_t>(position);
}

bool IoFile::SetPosition(std::uint64_t position)
{
    return m_handle >= 0 && position <= static_cast<std::uint64_t>(INT64_MAX) &&
           lseek(m_handle, static_cast<off_t>(position), SEEK_SET) >= 0;
}

std::uint64_t IoFile::GetLength() const
{
    struct stat status;
    if (m_handle < 0)
        return 0;
    return fstat(m_handle, &status) == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : LENGTH_UNKNOWN;
}

CCustomMemFile::CCustomMemFile(unsigned int growStep) : m_growStep(growStep) {}

CCustomMemFile::CCustomMemFile(const void* bytes, std::size_t size)
    : m_growStep(0), m_bytes(static_cast<unsigned char*>(const_cast<void*>(bytes))), m_size(size), m_owned(false)
{
}

CCustomMemFile::~CCustomMemFile()
{
    if (m_owned)
        XFreeBlock(m_bytes, m_capacity);
}

bool CCustomMemFile::OpenFile(const CXTString<wchar_t>&, int mode, void*)
{
    m_position = 0;
    if (mode == 0 && m_owned)
        m_size = 0;
    return mode != 0 || m_owned;
}

bool CCustomMemFile::CloseFile(bool)
{
    m_position = 0;
    return true;
}

bool CCustomMemFile::IsOpen() const { return true; }

std::size_t CCustomMemFile::ReadBytes(void* bytes, std::size_t size)
{
    size = std::min(size, m_size - m_position);
    if (size)
        std::memcpy(bytes, m_bytes + m_position, size);
    m_position += size;
    return size;
}

bool CCustomMemFile::WriteBytes(const void* bytes, std::size_t size)
{
    if (!m_owned || size > SIZE_MAX - m_position)
        return false;
    if (size == 0)
        return true;
    const std::size_t end = m_position + size;
    if (end > m_capacity) {
        const std::size_t grown = std::max({end, m_capacity + m_growStep, m_capacity + m_capacity / 2});
        m_bytes = static_cast<unsigned char*>(XReallocBlock(m_bytes, m_capacity, grown));
        m_capacity = grown;
    }
    std::memcpy(m_bytes + m_position, bytes, size);
    m_position = end;
    m_size = std::max(m_size, end);
    return true;
}

std::uint64_t CCustomMemFile::GetPosition() const { return m_position; }

bool CCustomMemFile::SetPosition(std::uint64_t position)
{
    if (position > m_size)
        return false;
    m_position = static_cast<std::size_t>(position);
    return true;
}

std::uint64_t CCustomMemFile::GetLength() const { return m_size; }

const void* CCustomMemFile::GetBytes() const { return m_bytes; }
