#include "ForcedReader.h"

#include <filesystem>

ForcedReader::ForcedReader(const std::string& path, const std::string& extension)
    : m_path(path), m_alias(std::filesystem::path(path).replace_extension(extension).string())
{
}

bool ForcedReader::Exists(const char* path) const { return DefaultIOSystem::Exists(Real(path)); }

Assimp::IOStream* ForcedReader::Open(const char* path, const char* mode) { return DefaultIOSystem::Open(Real(path), mode); }

const char* ForcedReader::Real(const char* path) const { return path == m_alias ? m_path.c_str() : path; }
