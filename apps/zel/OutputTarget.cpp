#include "OutputTarget.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include <3dzel.h>

std::string GetObstacle(const std::string& target)
{
    const std::string name = fileToDisk(Utf8ToWide(target));
    struct stat status;
    if (stat(name.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            return "is a folder";
        if (access(name.c_str(), W_OK) != 0)
            return std::strerror(errno);
        if (!S_ISREG(status.st_mode))
            return {};    // the bytes go right into a device
    } else if (errno != ENOENT)
        return std::strerror(errno);
    const std::size_t slash = name.rfind('/');
    const std::string folder = slash == name.npos ? "." : name.substr(0, slash + 1);
    if (stat(folder.c_str(), &status) != 0)
        return "no folder " + folder + ": " + std::strerror(errno);
    if (slash != name.npos && slash + 1 == name.size())
        return "is the name of a folder";
    return access(folder.c_str(), W_OK | X_OK) == 0 ? std::string() : "folder " + folder + ": " + std::strerror(errno);
}

std::string MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return error ? error.message() : std::string();
}
