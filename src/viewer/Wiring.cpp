// Start and stop of the library: everything built in, named in one place.

#include "io/3DIo.h"
#include "io/BuiltInParsers.h"
#include "scene/Init.h"
#include "scene/ParserSceneInfo.h"
#include "scene/Preferences.h"
#include "tools/Command.h"
#include "tools/FileExt.h"
#include "tools/IOPlugin.h"

/// The resources of a module.
struct CResourceModule {
    const wchar_t* name;
};

namespace {

using Text = CXTString<wchar_t>;

constexpr CResourceModule RESOURCES = {L"3dzel"};

int g_initCount = 0;

Text NameOf(unsigned int id, const wchar_t* fallback)
{
    Text text;
    return text.LoadStringW(id) ? text : Text(fallback);
}

void GiveDataBack(bool reading, unsigned int fileClass, void* data)
{
    C3DIo::ReleaseParser(reading, fileClass, data);
}

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
    constexpr struct { unsigned int id, text; const wchar_t* fallback; } categories[] = {
        {FourCC("TOOL"), 9312, L"Tools"},
        {FourCC("VIEW"), 9339, L"View"},
        {FourCC("LIGH"), 9209, L"Lights"},
        {FourCC("POVW"), 9239, L"Points of view"},
        {FourCC("POV2"), 9238, L"Isometric points of view"},
        {FourCC("VCAM"), 9326, L"Cameras"},
        {FourCC("REND"), 9248, L"Rendering"},
        {FourCC("FILE"), 9197, L"File"},
        {FourCC("HELP"), 9205, L"Help"},
    };
    CCommandMgr::RegisterGroupName(FourCC("3DCO"), NameOf(9184, L"3D commands"));
    for (const auto& category : categories)
        CCommandMgr::RegisterCategoryName(category.id, NameOf(category.text, category.fallback));
}

}

void Init3DZel(unsigned int flags)
{
    // INIT_LINK_RESOURCES: texts and icons are part of the library, whichever module asks for them.
    if (++g_initCount > 1)
        return;
    CParserSceneInfo::SetRelease(&GiveDataBack);
    RegisterBuiltInFormats();
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

HINSTANCE Zel3DResourceHandle()
{
    return &RESOURCES;
}
