#include "files/FileExt.h"
#include "files/FileInfo.h"
#include "images/2DIo.h"
#include "images/LayerBitmap.h"
#include "scene/3DScene.h"
#include "scene/MaterialMap.h"
#include "scene/Preferences.h"
#include "tools/FileFind.h"
#include "tools/FilePath.h"
#include "tools/IoFile.h"

// The image of a map: where its file is, and how it is read.

// ---- Search

namespace {

using Text = CXTString<wchar_t>;

/// Looks for a file whose name comes from elsewhere: another folder, another drive, another system.
class CTextureSearch {
public:
    CTextureSearch(const C3DScene* scene, const Text& name) : m_name(name)
    {
        if (scene) {
            m_base = scene->GetFilepath();
            scene->GetTexturePaths(m_paths, true);
        }
        C3DPreferences::Get3DPreferences().GetTexturePaths(m_paths, true);
        const CFileInfo info(name, FILE_KIND_READ);
        if (info.IsURL(false))
            m_name = info.GetDiskName();
    }

    bool Find()
    {
        if (m_name.IsEmpty())
            return false;
        if (FindByFolders())
            return true;
        m_anyCase = true;    // other systems make no difference
        return FindByFolders();
    }
    /// Of the folder of the scene, or with `absolute` of none.
    Text GetFound(bool absolute) const
    {
        if (!absolute)
            return fileMakeRelativePath(m_base, m_found);
        return fileIsAbsolute(m_found) ? m_found : fileMakeAbsolutePath(fileGetCurrentDirectory(), m_found);
    }

private:
    bool FindByFolders() { return fileIsAbsolute(m_name) ? FindByFolder(false) : FindByFolder(true) || FindByFolder(false); }

    /// `relative`: below the folders under the whole of the name, else under the bare file name.
    bool FindByFolder(bool relative)
    {
        const Text folder = fileGetPath(m_name), file = fileStripPath(m_name), root = fileGetRoot(m_name), baseRoot = fileGetRoot(m_base);
        if (!folder.IsEmpty() && Try(fileMakeAbsolutePath(m_base, m_name)))
            return true;
        if (!root.IsEmpty() && !baseRoot.IsEmpty() && Try(baseRoot + folder.Mid(root.GetLength()) + file))
            return true;
        if (Try(relative ? fileMakeAbsolutePath(m_base, m_name) : fileAddSlash(m_base) + file))
            return true;
        for (const Text& path : m_paths) {
            if (relative && !fileIsAbsolute(path))
                continue;
            if (Try(relative ? fileMakeAbsolutePath(path, m_name) : fileAddSlash(fileMakeAbsolutePath(m_base, path)) + file))
                return true;
        }
        return false;
    }

    bool Try(const Text& name)
    {
        const Text candidate = m_anyCase ? fileFindAnyCase(name) : name;
        IoFile file;
        if (!file.OpenFile(candidate, 1, nullptr))
            return false;
        file.CloseFile();
        m_found = candidate;
        return true;
    }

    Text m_name, m_base, m_found;
    CXArray<Text> m_paths;
    bool m_anyCase = false;
};

}

bool CMaterialMap::FindBitmap(const C3DScene* scene, const CXTString<wchar_t>& name, CXTString<wchar_t>& found, bool absolute) const
{
    CTextureSearch search(scene, name);
    if (!search.Find())
        return false;
    found = search.GetFound(absolute);
    return true;
}

CXTString<wchar_t> CMaterialMap::GetBitmapPath(const C3DScene* scene, bool alpha, bool absolute) const
{
    CXTString<wchar_t> path;
    FindBitmap(scene, alpha ? m_alphaFileName : m_fileName, path, absolute);
    return path;
}

// ---- Reading

/// The picture as views take it, RGB or RGBA. The second file, where there is one, tells the alpha.
static std::unique_ptr<Bitmap> Join(CLayerBitmap& layers, CLayerBitmap* alphaLayers)
{
    layers.MakeRGBALayer(true);
    std::unique_ptr<Bitmap> picture(layers.DetachStandardLayer());
    if (!picture)
        return nullptr;
    if (const std::unique_ptr<Bitmap> alpha(alphaLayers ? alphaLayers->DetachAlpha() : nullptr); alpha)
        if (std::unique_ptr<Bitmap> joined(CreateRGBABitmap(picture.get(), alpha.get(), true)); joined)
            return joined;
    if (picture->GetType() != BITMAP_RGB && picture->GetType() != BITMAP_RGBA)
        picture.reset(picture->ConvertToType(BITMAP_RGB));
    return picture;
}

Bitmap* CMaterialMap::GetBitmap(const C3DScene* scene, CSize size)
{
    if (IsFlagSet(MAP_RELOAD)) {
        SetFlag(MAP_RELOAD, false);
        m_loadState = NOT_TRIED;
    }
    if (m_loadState == NOT_TRIED)
        LoadBitmapW(scene, m_fileName, m_alphaFileName, size);
    return m_bitmap.get();
}

bool CMaterialMap::HasAlpha(const C3DScene* scene)
{
    const Bitmap* const bitmap = m_bitmap ? m_bitmap.get() : GetBitmap(scene, {-1, -1});
    return bitmap ? bitmap->GetType() != BITMAP_RGB : !m_alphaFileName.IsEmpty();
}

bool CMaterialMap::LoadBitmapW(const C3DScene* scene, const CXTString<wchar_t>& fileName, const CXTString<wchar_t>& alphaName, CSize size)
{
    m_bitmap.reset();
    Text path;
    const std::unique_ptr<CLayerBitmap> layers(ReadBitmap(scene, fileName, path, size));
    if (!layers) {
        m_loadState = FAILED;
        return false;
    }
    m_loadState = LOADING;
    std::unique_ptr<CLayerBitmap> alphaLayers;
    if (!alphaName.IsEmpty()) {
        Text alphaPath;
        alphaLayers.reset(ReadBitmap(scene, alphaName, alphaPath, size));
        if (alphaLayers)
            m_alphaFileName = alphaPath;
    }
    m_fileName = path;
    FilesChanged();

    m_bitmap = Join(*layers, alphaLayers.get());
    m_loadState = m_bitmap ? LOADED : FAILED;
    return m_bitmap != nullptr;
}

CLayerBitmap* CMaterialMap::ReadBitmap(const C3DScene* scene, const CXTString<wchar_t>& name, CXTString<wchar_t>& resolved,
                                       CSize size) const
{
    RegisterImageFormats();
    if (!(fileGetKindOf(name) & FILE_FAMILY_BITMAP) || !FindBitmap(scene, name, resolved, true))
        return nullptr;
    C2DIo io(resolved, FILEIO_READ | FILEIO_SILENT, nullptr);
    if (io.PrepareReading() != IORESULT_OK)
        return nullptr;
    if (size.cx != -1 && size.cy != -1)
        io.SetNeededBitmapSize(size.cx, size.cy);
    return io.Read(0);
}
