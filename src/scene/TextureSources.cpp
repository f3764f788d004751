#include "scene/TextureSources.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "scene/3DScene.h"
#include "scene/Preferences.h"
#include "tools/FileNameSpec.h"
#include "tools/FilePath.h"
#include "tools/IoFile.h"

namespace {

using Text = CXTString<wchar_t>;

// Empty for what is not there.
Text BehindLinks(const Text& path)
{
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(fileToDisk(path), error);
    return error ? Text() : Utf8ToWide(real.string());
}

}

CTextureSources::CTextureSources(const C3DScene& scene, bool anywhere) : m_anywhere(anywhere || scene.GetFilename().IsEmpty())
{
    const Text base = fileMakeAbsolutePath(fileGetCurrentDirectory(), scene.GetFilepath());
    CXArray<Text> paths;
    paths.Add(base);
    paths.Add(GetUnpackedTexturesPath());
    paths.Append(scene.GetHostTexturePaths());
    C3DPreferences::Get3DPreferences().GetTexturePaths(paths, true);
    for (const Text& path : paths)
        if (const Text folder = BehindLinks(fileMakeAbsolutePath(base, path)); !folder.IsEmpty())
            m_folders.Add(fileAddSlash(folder));
}

void CTextureSources::Allow(const Text& file) { m_files.Add(BehindLinks(file)); }

bool CTextureSources::IsInside(const Text& opened) const
{
    for (const Text& folder : m_folders)
        if (opened.Str().starts_with(folder.Str()))
            return true;
    for (const Text& file : m_files)
        if (opened == file)
            return true;
    return m_anywhere;
}

CTextureSources::Answer CTextureSources::Open(const Text& path, IoFile& file) const
{
    if (!file.OpenFile(path, 1, nullptr))
        return TEXTURE_MISSING;
    if (IsInside(file.GetOpenedPath()))
        return TEXTURE_OPEN;
    file.CloseFile();
    return TEXTURE_OUTSIDE;
}

bool CTextureSources::Copy(const Text& path, const Text& target) const
{
    constexpr std::size_t BLOCK = 1 << 18;
    IoFile from, to;
    if (Open(path, from) != TEXTURE_OPEN || fileIsSameFile(path, target) || !to.OpenFile(target, 0, nullptr))
        return false;
    std::vector<char> block(BLOCK);
    bool good = true;
    for (std::size_t size = BLOCK; good && size == BLOCK;) {
        size = from.ReadBytes(block.data(), BLOCK);
        good = size == 0 || to.WriteBytes(block.data(), size);
    }
    good &= from.GetPosition() == from.GetLength();    // a disk that fails to read is no end
    return to.CloseFile(good) && good;
}

Text GetUnpackedTexturesPath()
{
    const char* const cache = std::getenv("XDG_CACHE_HOME");
    const char* const home = std::getenv("HOME");
    if (cache && *cache == '/')    // a relative one does not count
        return Utf8ToWide(std::string(cache) + "/3dzel/textures/");
    return home && *home ? Utf8ToWide(std::string(home) + "/.cache/3dzel/textures/") : Text();
}
