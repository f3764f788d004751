#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tools/String.h"

/// A folder of the test's own that goes with it.
class TempFolder {
public:
    TempFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "zel-test-XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TempFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Name(const std::string& file = "") const { return m_path + "/" + file; }
    CXTString<wchar_t> Wide(const std::string& file = "") const { return Utf8ToWide(Name(file)); }

    std::string Write(const std::string& file, const std::string& text) const
    {
        std::filesystem::create_directories(std::filesystem::path(Name(file)).parent_path());
        std::ofstream(Name(file), std::ios::binary) << text;
        return Name(file);
    }
    std::string Read(const std::string& file) const
    {
        std::ifstream stream(Name(file), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::size_t CountFiles() const { return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {})); }

private:
    std::string m_path;
};

/// An environment variable that gets its former value back.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : m_name(name)
    {
        const char* const former = std::getenv(name);
        m_wasSet = former != nullptr;
        m_former = former ? former : "";
        setenv(name, value.c_str(), 1);
    }
    ~ScopedVariable()
    {
        if (m_wasSet)
            setenv(m_name, m_former.c_str(), 1);
        else
            unsetenv(m_name);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* m_name;
    bool m_wasSet;
    std::string m_former;
};
