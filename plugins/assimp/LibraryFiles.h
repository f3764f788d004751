#pragma once

#include <assimp/IOStream.hpp>
#include <assimp/IOSystem.hpp>

#include "OutputFiles.h"

/// Lets the library write its files through OutputFiles. It is given bare names, as some formats write the names they are given into the file,
/// and these are files of one folder.
class LibraryFiles : public Assimp::IOSystem {
public:
    LibraryFiles(OutputFiles& files, const CXTString<wchar_t>& folder) : m_files(files), m_folder(folder) {}

    /// Nothing is in the way of a file: what stands in its place goes when all are written.
    bool Exists(const char*) const override { return false; }
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* file, const char* mode) override;
    void Close(Assimp::IOStream* stream) override { delete stream; }

private:
    OutputFiles& m_files;
    CXTString<wchar_t> m_folder;
};
