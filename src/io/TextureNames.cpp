#include "io/TextureNames.h"

#include <algorithm>
#include <vector>

#include "io/Texts.h"
#include "scene/3DScene.h"
#include "scene/ForeignData.h"
#include "scene/TextureSources.h"
#include "tools/FilePath.h"
#include "tools/IoFile.h"

namespace {

constexpr unsigned int IMAGES_WITHOUT_MAP[] = {MATERIAL_EMISSIVE_FILE, MATERIAL_METALLIC_FILE, MATERIAL_ROUGHNESS_FILE};

bool HasSameBytes(const CXTString<wchar_t>& a, const CXTString<wchar_t>& b)
{
    IoFile first, second;
    if (!first.OpenFile(a, 1, nullptr) || !second.OpenFile(b, 1, nullptr) || first.GetLength() != second.GetLength())
        return false;
    std::vector<char> left(1 << 16), right(left.size());
    for (;;) {
        const std::size_t size = first.ReadBytes(left.data(), left.size());
        if (second.ReadBytes(right.data(), right.size()) != size || !std::equal(left.begin(), left.begin() + size, right.begin()))
            return false;
        if (size == 0)
            return true;
    }
}

}

CTextureNames::CTextureNames(C3DScene& scene, CSceneExportOptions& options)
    : m_scene(scene), m_options(options),
      m_folder(fileAddSlash(fileMakeAbsolutePath(fileGetCurrentDirectory(), fileGetPath(options.filePath))))
{
}

// `change(name)` gives the new name.
template <class CHANGE> void CTextureNames::ForNames(CHANGE change)
{
    for (unsigned int pos = m_scene.GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial& material = *m_scene.GetNextMaterial(pos);
        for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++)
            if (CMaterialMap* const map = material.GetMaterialMap(static_cast<MapType>(type))) {
                map->SetFileName(change(map->GetFileName()), {});
                map->SetAlphaFileName(change(map->GetAlphaFileName()), {});
            }
        for (const unsigned int id : IMAGES_WITHOUT_MAP)
            if (Text name; material.GetCustomData().GetString(id, name))
                material.GetCustomData().SetString(id, change(name));
    }
}

void CTextureNames::MakeAbsolute()
{
    std::map<std::wstring, Text> found;    // the disk is asked once for each name
    ForNames([&](const Text& name) {
        if (name.IsEmpty())
            return name;
        const auto [place, isNew] = found.try_emplace(name.Str());
        if (isNew)
            place->second = Find(name);
        return place->second.IsEmpty() ? name : place->second;
    });
}

// Maps know how to search.
CTextureNames::Text CTextureNames::Find(const Text& name) const
{
    CMaterialMap map;
    map.SetFileName(name, {});
    return map.GetBitmapPath(&m_scene, false, true);
}

void CTextureNames::CopyUnpacked()
{
    const Text unpacked = GetUnpackedTexturesPath();
    std::map<std::wstring, Text> copies;
    ForNames([&](const Text& name) {
        if (unpacked.IsEmpty() || !name.Str().starts_with(unpacked.Str()) || m_folder.Str().starts_with(unpacked.Str()) || GoesInside(name))
            return name;
        const auto [place, isNew] = copies.try_emplace(name.Str());
        if (isNew)
            place->second = CopyHere(name);
        return place->second;
    });
}

bool CTextureNames::GoesInside(const Text& file) const
{
    Text extension = fileGetExtension(file);
    extension.MakeLower();
    return std::ranges::find(m_options.texturesInside, extension) != m_options.texturesInside.end();
}

// The copy, which may stand there from the last time; the file itself when there is none. Nothing is written over.
CTextureNames::Text CTextureNames::CopyHere(const Text& file)
{
    const Text name = m_folder + fileStripPath(file);
    Text copy = name;
    for (int number = 1; fileExists(copy) && !HasSameBytes(file, copy); number++)
        copy = fileStripExtension(name) + Text(std::to_wstring(number)) + fileGetExtension(name);
    if (!fileExists(copy) && !CTextureSources(m_scene, m_options.texturesFromAnywhere).Copy(file, copy)) {
        m_options.AddLossInfo(FormatText(TEXT_CANNOT_MOVE_TEXTURE, file));
        return file;
    }
    m_options.AddLogInfo(IoLogInfo::INFORMATION, FormatText(TEXT_COPYING_TEXTURE, file, copy));
    return copy;
}

void CTextureNames::MakeRelative()
{
    ForNames([&](const Text& name) {
        if (!fileIsAbsolute(name))
            return name;
        const Text relative = fileMakeRelativePath(m_folder, name);
        return fileIsSameFile(m_folder + relative, name) ? relative : name;
    });
}
