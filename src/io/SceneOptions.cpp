#include "io/SceneOptions.h"

#include "tools/FourCC.h"

namespace {

constexpr unsigned int KEY_FLAGS = FourCC("FLAG");
constexpr unsigned int KEY_TEXTURE_FOLDER = FourCC("TXPT");
constexpr const wchar_t* DEFAULT_TEXTURE_FOLDER = L".\\Textures\\";

}

CSceneImportOptions::CSceneImportOptions(unsigned int importFlags) : CIoOptions(true), flags(importFlags) {}

CSceneImportOptions::~CSceneImportOptions() = default;

void CSceneImportOptions::InitFromSavedPrefs(const CCustomData& prefs)
{
    GetCustomData() = prefs;
    prefs.GetUnsigned(KEY_FLAGS, flags, flags);
    flags &= ~IMPORT_WELD;
}

const CCustomData& CSceneImportOptions::SaveToSavedPrefs()
{
    GetCustomData().SetUnsigned(KEY_FLAGS, flags & ~IMPORT_WELD);
    return GetCustomData();
}

CSceneExportOptions::CSceneExportOptions(unsigned int exportFlags) : CIoOptions(false), flags(exportFlags) {}

CSceneExportOptions::~CSceneExportOptions() = default;

CSceneExportOptions* CSceneExportOptions::Create(unsigned int flags) { return new CSceneExportOptions(flags); }

void CSceneExportOptions::Delete() { delete this; }

void CSceneExportOptions::InitFromSavedPrefs(const CCustomData& prefs)
{
    GetCustomData() = prefs;
    prefs.GetUnsigned(KEY_FLAGS, flags, flags);
    flags &= ~EXPORT_NOT_SAVED;
    prefs.GetString(KEY_TEXTURE_FOLDER, textureFolder, DEFAULT_TEXTURE_FOLDER);
}

const CCustomData& CSceneExportOptions::SaveToSavedPrefs()
{
    GetCustomData().SetUnsigned(KEY_FLAGS, flags & ~EXPORT_NOT_SAVED);
    GetCustomData().SetString(KEY_TEXTURE_FOLDER, textureFolder);
    return GetCustomData();
}
