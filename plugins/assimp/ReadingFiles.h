#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <assimp/DefaultIOSystem.h>

/// The files of a model, as the import library gets to see them.
///
/// Only regular files are opened, for reading. A name that nothing has is looked for without regard to case; names in glTF files are URIs, and
/// are decoded. A PLY file that would mislead the library comes with a mended head.
class ReadingFiles : public Assimp::DefaultIOSystem {
public:
    /// Told the size of each further file in the folder of the model, or below, that is about to be read.
    using OnCompanion = std::function<void(std::uint64_t size)>;

    /// @param extension  by which the library chooses its reader; empty: the file's own
    ReadingFiles(const std::string& path, unsigned int fileClass, const std::string& extension, OnCompanion onCompanion);

    /// The name under which the library is to read the model.
    const std::string& GetName() const { return m_name; }

    bool Exists(const char* path) const override;
    /// Null for what does not exist, and for writing.
    Assimp::IOStream* Open(const char* path, const char* mode) override;

private:
    std::string Find(const std::string& path) const;
    bool IsBeside(const std::string& path) const;

    std::string m_path, m_name;
    unsigned int m_fileClass;
    OnCompanion m_onCompanion;
};
