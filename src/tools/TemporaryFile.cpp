#include "tools/TemporaryFile.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/FilePath.h"

namespace {

/// A name that fileRemoveTemporaries may read at any moment: it is whole before its owner stands beside it, and never allocated.
struct Entry {
    std::atomic<pid_t> owner;    ///< 0 while it is free. A child has copies of its parent's entries, which are none of its own
    char name[PATH_MAX];
};
constexpr int MOST_ENTRIES = 256;    // files beyond are written all the same, and not removed
constexpr pid_t BEING_FILLED = -1;
Entry s_entries[MOST_ENTRIES];

int Register(const std::string& name)
{
    for (int i = 0; i < MOST_ENTRIES && name.size() < PATH_MAX; i++) {
        pid_t nobody = 0;
        if (!s_entries[i].owner.compare_exchange_strong(nobody, BEING_FILLED))
            continue;
        std::strcpy(s_entries[i].name, name.c_str());
        s_entries[i].owner = getpid();
        return i;
    }
    return -1;
}

std::string MakeName(const std::string& folder)
{
    constexpr char LETTERS[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
    unsigned char random[6] = {};
    getrandom(random, sizeof random, 0);
    std::string name = folder + ".zel-";
    for (const unsigned char value : random)
        name += LETTERS[value % 64];
    return name;
}

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "./" : path.substr(0, slash + 1);
}

}

void fileRemoveTemporaries()
{
    const pid_t self = getpid();
    for (const Entry& entry : s_entries)
        if (entry.owner == self)
            unlink(entry.name);
}

bool CTemporaryFile::Open(const std::string& target, bool isPrivate)
{
    Drop();
    const mode_t mode = isPrivate ? 0600 : 0666;
    m_target = target;
    // Without /proc a file could never get a name.
    if (access("/proc/self/fd", X_OK) == 0)
        m_handle = open(FolderOf(target).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
    return m_handle >= 0 || OpenNamed(mode);
}

bool CTemporaryFile::OpenNamed(mode_t mode)
{
    do {
        m_name = MakeName(FolderOf(m_target));
        m_entry = Register(m_name);    // before there is a file
        m_handle = open(m_name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
        if (m_handle < 0)
            ForgetName();
    } while (m_handle < 0 && errno == EEXIST);
    return m_handle >= 0;
}

// A file without a name can take a free name only. To replace a file it needs one of its own first.
bool CTemporaryFile::GiveName()
{
    const std::string self = "/proc/self/fd/" + std::to_string(m_handle);
    do {
        m_name = MakeName(FolderOf(m_target));
        m_entry = Register(m_name);
        if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, m_name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return true;
        ForgetName();
    } while (errno == EEXIST);
    return false;
}

void CTemporaryFile::ForgetName()
{
    if (m_entry >= 0)
        s_entries[m_entry].owner = 0;
    m_entry = -1;
    m_name.clear();
}

bool CTemporaryFile::PutInPlace(bool replace)
{
    bool placed = !m_name.empty() || GiveName();
    if (placed && replace)
        placed = rename(m_name.c_str(), m_target.c_str()) == 0;
    else if (placed)
        placed = link(m_name.c_str(), m_target.c_str()) == 0;    // refuses an existing name in one step
    if (placed && replace)
        ForgetName();    // it is the target's now
    const int error = errno;
    Drop();
    errno = error;
    return placed;
}

void CTemporaryFile::Drop()
{
    if (m_handle >= 0)
        close(m_handle);
    m_handle = -1;
    if (!m_name.empty())
        unlink(m_name.c_str());
    ForgetName();
}
