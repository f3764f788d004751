#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

/// The files that a command reads, known by what they are on disk, whatever name leads there.
class InputFiles {
public:
    explicit InputFiles(std::vector<std::string> names);

    const std::vector<std::string>& GetNames() const { return m_names; }
    bool Contain(const std::string& name) const;

private:
    std::vector<std::string> m_names;
    std::set<std::pair<dev_t, ino_t>> m_files;
};
