#pragma once

#include <string>

#include <assimp/DefaultIOSystem.h>

/// Shows the import library a file under a name with another extension, by which it chooses the reader. Other files keep their names.
class ForcedReader : public Assimp::DefaultIOSystem {
public:
    ForcedReader(const std::string& path, const std::string& extension);

    /// The name to read.
    const std::string& GetAlias() const { return m_alias; }

    bool Exists(const char* path) const override;
    Assimp::IOStream* Open(const char* path, const char* mode) override;

private:
    const char* Real(const char* path) const;

    std::string m_path;
    std::string m_alias;
};
