#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>

#include "tools/String.h"

/// A folder of the test's own, gone with it.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "zel-test-XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path File(const std::string& name) const { return m_path / name; }
    CXTString<wchar_t> Path(const std::string& name) const { return Utf8ToWide(File(name).string()); }
    std::string Read(const std::string& name) const
    {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void Write(const std::string& name, const std::string& content) const { std::ofstream(File(name), std::ios::binary) << content; }
    std::size_t CountFiles() const { return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {})); }

private:
    std::filesystem::path m_path;
};
