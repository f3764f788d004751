// Start and stop of the library: everything built in, named in one place.

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "images/2DIo.h"
#include "io/3DIo.h"
#include "io/BuiltInParsers.h"
#include "scene/Init.h"
#include "scene/ParserSceneInfo.h"
#include "scene/Preferences.h"
#include "windows/CommandMgr.h"

/// The resources of a module.
struct CResourceModule {
    const wchar_t* name;
};

namespace {

using Text = CXTString<wchar_t>;

constexpr CResourceModule RESOURCES = {L"3dzel"};

int g_initCount = 0;

Text StringOf(unsigned int id)
{
    Text text;
    text.LoadStringW(id);
    return text;
}

void GiveDataBack(bool reading, unsigned int fileClass, void* data) { C3DIo::ReleaseParser(reading, fileClass, data); }

void RegisterFormats()
{
    RegisterIOPlugins(FILE_FAMILY_3D, Text());
    if (fileGetFileExt(L".xsi"))
        return;
    constexpr unsigned int CREATOR = FourCC("ZELP");
    fileRegisterFile(CFileExt(L"XSI Softimage files", L".xsi", FourCC("XSI "), 0x4013, CREATOR, CREATOR));
}

void RegisterCommandNames()
{
    constexpr struct {
        unsigned int id, text;
    } categories[] = {
        {FourCC("TOOL"), 9312}, {FourCC("VIEW"), 9339}, {FourCC("LIGH"), 9209}, {FourCC("POVW"), 9239}, {FourCC("POV2"), 9238},
        {FourCC("VCAM"), 9326}, {FourCC("REND"), 9248}, {FourCC("FILE"), 9197}, {FourCC("HELP"), 9205},
    };
    CCommandMgr::RegisterGroupName(FourCC("3DCO"), StringOf(9184));
    for (const auto& category : categories)
        CCommandMgr::RegisterCategoryName(category.id, StringOf(category.text));
}

}

void Init3DZel(unsigned int flags)
{
    // INIT_LINK_RESOURCES: texts and icons are part of the library, whichever module asks for them.
    if (++g_initCount > 1)
        return;
    CParserSceneInfo::SetRelease(&GiveDataBack);
    RegisterBuiltInFormats();
    RegisterImageFormats();
    if (!(flags & INIT_NO_PLUGINS))
        RegisterFormats();
    if (!(flags & INIT_NO_COMMANDS))
        RegisterCommandNames();
}

void Close3DZel(unsigned int flags)
{
    if (g_initCount == 0 || --g_initCount > 0)
        return;
    C3DPreferences::Get3DPreferences().Save();
    if (!(flags & INIT_NO_PLUGINS))
        FreeIOPlugins(FILE_FAMILY_3D);
}

HINSTANCE Zel3DResourceHandle() { return &RESOURCES; }
