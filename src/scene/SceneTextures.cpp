#include <algorithm>

#include "scene/3DScene.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"

// Folders in which textures are looked for, in the custom data of the scene. Older scenes hold them under the id of the smooth mode,
// which is a value of another type.
static constexpr unsigned int TEXTURE_PATHS = FourCC("SCTP"), FORMER_TEXTURE_PATHS = FourCC("SMMO");

static CXArray<CXTString<wchar_t>> ReadPaths(const CCustomData& parameters)
{
    CXArray<CXTString<wchar_t>> paths;
    if (!parameters.GetStringArray(TEXTURE_PATHS, paths))
        parameters.GetStringArray(FORMER_TEXTURE_PATHS, paths);
    return paths;
}

static bool HoldsFolder(const CXArray<CXTString<wchar_t>>& paths, const CXTString<wchar_t>& folder)
{
    return std::any_of(paths.begin(), paths.end(), [&](const auto& path) { return fileCompareDirectory(path, folder); });
}

bool C3DScene::AddTexturePath(const CXTString<wchar_t>& path)
{
    const CXTString<wchar_t> folder = fileAddSlash(path);
    if (!fileIsDirectory(folder))
        return false;
    if (!HoldsFolder(m_hostTexturePaths, folder))
        m_hostTexturePaths.Add(folder);
    CXArray<CXTString<wchar_t>> paths = ReadPaths(m_customData);
    if (HoldsFolder(paths, folder))
        return false;
    paths.Add(folder);
    m_customData.SetStringArray(TEXTURE_PATHS, paths);
    m_customData.Remove(FORMER_TEXTURE_PATHS, CUSTOM_STRING_ARRAY);
    return true;
}

bool C3DScene::GetTexturePath(int index, CXTString<wchar_t>& path) const
{
    const CXArray<CXTString<wchar_t>> paths = ReadPaths(m_customData);
    const bool exists = index >= 0 && index < paths.GetSize();
    path = exists ? paths[index] : CXTString<wchar_t>();
    return exists;
}

int C3DScene::GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const
{
    if (!append)
        paths.RemoveAll();
    paths.Append(ReadPaths(m_customData));
    return paths.GetSize();
}

void C3DScene::GetLinkedFiles(CXArray<CXTString<wchar_t>>& files, bool) const
{
    files.RemoveAll();
    for (unsigned int pos = GetFirstMaterial(); pos != HASH_END;) {
        const CMaterialMap* const map = GetNextMaterial(pos)->GetDiffuseMaps();
        if (map && !map->GetFileName().IsEmpty())
            files.Add(map->GetFileName());
    }
}
