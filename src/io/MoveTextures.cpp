// The image files of an exported scene: copied to a folder of the user's choice, the maps' names with them.
//
// CTextureSources tells which files may be taken. Nothing of the scene's own is written over.

#include "io/SceneOptions.h"
#include "io/Texts.h"
#include "scene/3DScene.h"
#include "scene/TextureSources.h"
#include "tools/CodePage.h"
#include "tools/FileNameSpec.h"
#include "tools/FilePath.h"
#include "tools/UniqueName.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int ANY_CODE_PAGE = 0xFFFFFFFF;
constexpr const wchar_t* REPLACED_TITLE = L"Texture";    // a file name, the same in all languages

Text MakeAbsolute(const Text& folder) { return fileMakeAbsolutePath(fileGetCurrentDirectory(), folder); }

int GetNameLimit(const CSceneExportOptions* options)
{
    const unsigned int limit = options ? options->textureNameLimit & 0xFFFFFF : 0;
    return limit ? static_cast<int>(limit) : -1;
}

// Whether the file is what a diffuse map of the scene shows, of those that name files from the scene's own folder still.
bool IsTextureOfScene(const C3DScene& scene, const Text& file)
{
    const Text name = fileStripPath(file);
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        const CMaterialMap* const map = scene.GetNextMaterial(pos)->GetDiffuseMaps();
        for (const bool alpha : {false, true})
            if (map && fileStripPath(alpha ? map->GetAlphaFileName() : map->GetFileName()) == name &&
                fileIsSameFile(map->GetBitmapPath(&scene, alpha, true), file))
                return true;
    }
    return false;
}

// The name under which a texture is stored in the folder.
Text GetStoredName(const Text& source, CSceneExportOptions* options)
{
    const Text name = fileStripPath(source);
    if (!options || options->textureCodePage == ANY_CODE_PAGE || SurvivesCodePage(name, options->textureCodePage))
        return name;
    return GetUniqueName(options->textureNames, REPLACED_TITLE, GetNameLimit(options), true) + fileGetExtension(source);
}

}

bool C3DScene::MoveTextures(const CXTString<wchar_t>& scenePath, const CXTString<wchar_t>& textureFolder, CSceneExportOptions* options)
{
    const Text base = fileAddSlash(MakeAbsolute(fileGetPath(scenePath)));
    const bool fixed = options && options->textureFolderFixed;
    const Text folder = fixed ? base : fileAddSlash(fileMakeAbsolutePath(base, textureFolder));
    if (!fileCreateDirectory(folder, true)) {
        if (options)
            options->AddLogInfo(IoLogInfo::WARNING, FormatText(TEXT_CANNOT_MAKE_FOLDER, folder));
        return false;
    }

    if (options)
        options->textureNames.RemoveAll();
    CHashMap<Text, const Text&, Text> moved;    // a file that several maps show is copied once
    const auto move = [&](const Text& source, Text& newPath) {
        if (const Text* const known = moved.Find(source))
            return newPath = *known, true;
        return MoveTextureFile(source, folder, newPath, options) && moved.Insert(source, newPath);
    };
    for (unsigned int pos = GetFirstMaterial(); pos != HASH_END;) {
        CMaterialMap* const map = GetNextMaterial(pos)->GetDiffuseMaps();
        if (!map)
            continue;
        Text newPath;
        if (move(map->GetBitmapPath(this, false, true), newPath))
            map->SetFileName(newPath, base);
        if (move(map->GetBitmapPath(this, true, true), newPath))
            map->SetAlphaFileName(newPath, base);
    }
    return true;
}

bool C3DScene::MoveTextureFile(const CXTString<wchar_t>& source, const CXTString<wchar_t>& folder, CXTString<wchar_t>& newPath,
                               CSceneExportOptions* options)
{
    if (!fileExists(source))
        return false;
    const int limit = GetNameLimit(options);
    Text target = folder + GetStoredName(source, options);
    if (fileIsSameFile(source, target))
        return false;    // in place: neither copied nor renamed
    if (options && options->flags & EXPORT_RENAME_TEXTURES)
        target = fileCreateUniqueName(target, false, limit);
    else
        target = fileCutName(target, limit);
    if (fileIsSameFile(source, target))
        return false;

    const Text shown = fileMakeRelativePath(GetFilepath(), source);
    const bool taken = fileExists(target) && ((options && options->textureNames.Find(target)) || IsTextureOfScene(*this, target));
    const CTextureSources sources(*this, options && options->texturesFromAnywhere);
    const bool copied = !target.IsEmpty() && !taken && sources.Copy(source, target);
    if (copied)
        newPath = target;
    if (options && copied)
        options->textureNames.Insert(target);
    if (options && copied)
        options->AddLogInfo(IoLogInfo::INFORMATION, FormatText(TEXT_COPYING_TEXTURE, shown, target));
    else if (options)
        options->AddLossInfo(FormatText(TEXT_CANNOT_MOVE_TEXTURE, shown));
    return copied;
}
