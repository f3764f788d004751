#include "StandardInput.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::uint64_t MOST_BYTES = std::uint64_t{4} << 30;    // a stream without end must not fill the disk

// For the handler of a signal. A process begun by fork has a copy, and is not the owner.
char s_path[PATH_MAX];
std::atomic<pid_t> s_owner{0};

/// The file while it is being filled.
class Descriptor {
public:
    explicit Descriptor(int handle) : m_handle(handle) {}
    ~Descriptor()
    {
        if (m_handle >= 0)
            close(m_handle);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return m_handle; }

private:
    int m_handle;
};

bool WriteAll(int to, const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t put = write(to, bytes, size);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        bytes += put;
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

std::string CopyStandardInput(int to)
{
    std::vector<char> buffer(1 << 20);
    for (std::uint64_t size = 0; size <= MOST_BYTES;) {
        const ssize_t got = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (got == 0)
            return size > 0 ? "" : "standard input is empty";
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 || !WriteAll(to, buffer.data(), static_cast<std::size_t>(got)))
            return std::strerror(errno);
        size += static_cast<std::uint64_t>(got);
    }
    return "standard input gives more than 4 GiB";
}

}

SpooledInput::~SpooledInput()
{
    if (!m_path.empty() && s_owner == getpid()) {
        unlink(m_path.c_str());
        s_owner = 0;
    }
}

std::string SpooledInput::Fill(const std::string& extension)
{
    std::error_code error;
    const std::string folder = std::filesystem::temp_directory_path(error).string();
    if (error)
        return "no folder for temporary files: " + error.message();
    std::string path = folder + "/zel-XXXXXX" + extension;
    if (path.size() >= PATH_MAX)
        return std::strerror(ENAMETOOLONG);
    const Descriptor file(mkostemps(path.data(), static_cast<int>(extension.size()), O_CLOEXEC));
    if (file.Get() < 0)
        return folder + ": " + std::strerror(errno);
    std::strcpy(s_path, path.c_str());
    s_owner = getpid();
    m_path = path;
    return CopyStandardInput(file.Get());
}

void RemoveSpooledInput()
{
    if (s_owner == getpid())
        unlink(s_path);
}
