#include "InputFiles.h"

#include <optional>

#include <3dzel.h>

static std::optional<std::pair<dev_t, ino_t>> Identify(const std::string& name)
{
    struct stat file;
    if (stat(fileToDisk(Utf8ToWide(name)).c_str(), &file) != 0)
        return std::nullopt;
    return std::pair(file.st_dev, file.st_ino);
}

InputFiles::InputFiles(std::vector<std::string> names) : m_names(std::move(names))
{
    for (const std::string& name : m_names)
        if (const auto file = Identify(name))
            m_files.insert(*file);
}

bool InputFiles::Contain(const std::string& name) const
{
    const auto file = Identify(name);
    return file && m_files.contains(*file);
}
