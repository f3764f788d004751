#include <algorithm>

#include "render/ViewProfile.h"
#include "scene/Preferences.h"
#include "tools/FourCC.h"
#include "viewer/CommandCase.h"
#include "viewer/PreferencePages.h"

namespace {

constexpr unsigned int PREF = FourCC("PREF");
using Pages = std::vector<CDialogTable*>;
using General = CRenderGeneralPrefs;
using Colors = CRenderColorPrefs;
using Textures = CRenderTexturePrefs;

class Preferences : public CommandCase {
protected:
    /// Opens the sheet; true presses OK.
    void OpenSheet(const std::function<bool(const Pages&)>& user)
    {
        windows.dialogUsers.push_back(user);
        EXPECT_EQ(Run(PREF), COMMAND_DONE);
        EXPECT_TRUE(windows.dialogUsers.empty());
    }
    bool IsSet(unsigned int flag) { return (View().GetViewFlag() & flag) != 0; }
    unsigned int Stored(const wchar_t* key) { return profile.values.at(std::wstring(L"Render/") + key); }
    static bool Tick(const Pages& pages, unsigned int id, bool on = true) { return CScriptWindowSystem::Check(pages, id, on); }
    static void Apply(const Pages& pages, std::size_t page) { EXPECT_TRUE(pages[page]->OnApply()); }
};

CControl& Control(const Pages& pages, unsigned int id)
{
    CControl* found = nullptr;
    for (CDialogTable* const page : pages)
        if (CControl* const control = page->Find(id))
            found = control;
    return *found;
}

TEST_F(Preferences, OkOfAnUntouchedSheetChangesNothing)
{
    // Faults in mind: boxes that write their own state over what a mode of drawing needs; messages and rebuilds for nothing.
    frame->ChangeViewMode(VIEWFLAG_FLAT);
    const unsigned int flags = View().GetViewFlag();
    const auto former = profile.values;
    OpenSheet([](const Pages& pages) {
        EXPECT_EQ(pages.size(), 5U);
        return true;
    });
    EXPECT_EQ(View().GetViewFlag(), flags);
    EXPECT_EQ(Stored(L"viewmode"), flags);
    EXPECT_EQ(CountShown(L"message"), 0);
    EXPECT_EQ(profile.values[L"Render/GLExtPBuf"], former.count(L"Render/GLExtPBuf") ? former.at(L"Render/GLExtPBuf") : 0U);
}

TEST_F(Preferences, PagesComposeInAnyOrder)
{
    // Faults in mind: a page that starts from the flags it once saw; the bit that two pages share written back by the other one.
    OpenSheet([&](const Pages& pages) {
        EXPECT_TRUE(Tick(pages, General::ID_DOUBLE_SIDED, false));
        EXPECT_TRUE(Tick(pages, Colors::ID_ECONOMY, false));
        EXPECT_FALSE(Control(pages, Textures::ID_ECONOMY).checked);
        EXPECT_FALSE(Control(pages, Textures::ID_LARGEST).enabled);
        EXPECT_TRUE(Tick(pages, Textures::ID_SMOOTH, false));
        Apply(pages, 2);
        EXPECT_FALSE(IsSet(VIEWFLAG_CULL_BACK));    // not yet
        EXPECT_FALSE(IsSet(VIEWFLAG_SMOOTH_TEXTURES));
        View().SetView(RVIEW_TOP, 0, 0);
        frame->ChangeViewMode(VIEWFLAG_WIREFRAME);    // meanwhile
        Apply(pages, 0);
        Apply(pages, 1);
        return false;    // what was applied stays
    });
    EXPECT_TRUE(IsSet(VIEWFLAG_CULL_BACK));
    EXPECT_FALSE(IsSet(VIEWFLAG_ECONOMY));
    EXPECT_FALSE(IsSet(VIEWFLAG_SMOOTH_TEXTURES));
    EXPECT_EQ(View().GetViewFlag() & VIEWFLAG_RENDER_MODE, VIEWFLAG_WIREFRAME);
    EXPECT_EQ(Stored(L"viewmode"), View().GetViewFlag());
    EXPECT_EQ(View().GetViewSettings()->viewNumber, RVIEW_TOP);
}

TEST_F(Preferences, GeneralPage)
{
    frame->ChangeViewMode(VIEWFLAG_FLAT);
    const C3DScene& shown = *frame->GetCurrentScene();
    const auto level = C3DPreferences::Get3DPreferences().GetPatchLevel();
    OpenSheet([&](const Pages& pages) {
        Tick(pages, General::ID_VERTEX_COLORS, false);
        Apply(pages, 0);
        EXPECT_TRUE(IsSet(VIEWFLAG_FLAT));    // off, it leaves the mode alone
        EXPECT_FALSE(IsSet(VIEWFLAG_VERTEX_COLORS));
        Tick(pages, General::ID_VERTEX_COLORS);
        Tick(pages, General::ID_SMALL_ICONS, !Control(pages, General::ID_SMALL_ICONS).checked);
        Control(pages, General::ID_PATCH_LEVEL).number = 3;
        Apply(pages, 0);
        EXPECT_EQ(CountShown(L"message"), 0);
        Tick(pages, General::ID_EXTENSIONS, !Control(pages, General::ID_EXTENSIONS).checked);
        Apply(pages, 0);
        EXPECT_EQ(CountShown(L"message"), 1);    // it shows in the next view
        Tick(pages, General::ID_ALPHA_CUT, false);
        return true;
    });
    EXPECT_EQ(CountShown(L"message"), 2);
    EXPECT_EQ(View().GetViewFlag() & VIEWFLAG_RENDER_MODE, VIEWFLAG_SMOOTH);
    EXPECT_FALSE(frame->IsSettingsFlagSet(SETTINGS3D_LARGE_ICONS));
    EXPECT_EQ(C3DPreferences::Get3DPreferences().GetPatchLevel(), 3U);
    EXPECT_EQ(Stored(L"GLExtPBuf"), Stored(L"GLExtMSBuf"));
    EXPECT_EQ(Stored(L"alphacut"), 0U);
    EXPECT_EQ(frame->GetCurrentScene(), &shown);
    C3DPreferences::Get3DPreferences().SetPatchLevel(level);

    // Keys that differ show as off.
    profile.values[L"Render/GLExtPBuf"] = 1;
    profile.values[L"Render/GLExtMSBuf"] = 0;
    OpenSheet([&](const Pages& pages) {
        EXPECT_FALSE(Control(pages, General::ID_EXTENSIONS).checked);
        return true;
    });
    EXPECT_EQ(Stored(L"GLExtPBuf"), 1U);
}

TEST_F(Preferences, ColoursAndTextures)
{
    OpenSheet([&](const Pages& pages) {
        Control(pages, Colors::ID_BACKGROUND).color = {10, 20, 30};
        Control(pages, Colors::ID_LIGHT).color = {1, 2, 3};
        Tick(pages, Textures::ID_ECONOMY);
        Control(pages, Textures::ID_LARGEST).number = 256;
        return true;
    });
    EXPECT_EQ(View().GetViewSettings()->background, CRGBColor(10, 20, 30));
    EXPECT_EQ(Stored(L"backgroundcolor"), 0x1E140AU);
    EXPECT_EQ(Stored(L"lightcolor"), 0x030201U);
    EXPECT_EQ(Stored(L"lowres"), 256U);
    EXPECT_TRUE(IsSet(VIEWFLAG_ECONOMY));

    profile.values[L"Render/lowres"] = 100000;    // by another hand
    OpenSheet([&](const Pages& pages) {
        EXPECT_EQ(Control(pages, Textures::ID_LARGEST).number, 1024);
        Tick(pages, Textures::ID_TEXTURES, false);
        for (const unsigned int id : {Textures::ID_ECONOMY, Textures::ID_LARGEST, Textures::ID_PERSPECTIVE, Textures::ID_SMOOTH})
            EXPECT_FALSE(Control(pages, id).enabled);
        return true;
    });
    EXPECT_FALSE(IsSet(VIEWFLAG_TEXTURE));
}

TEST_F(Preferences, PathsKeepTheirOrder)
{
    using Page = CRenderTexturePath;
    const auto paths = [] {
        CXArray<Text> array;
        C3DPreferences::Get3DPreferences().GetTexturePaths(array, false);
        Text all;
        for (int i = 0; i < array.GetSize(); i++)
            all += array[i] + L" ";
        return all;
    };
    OpenSheet([&](const Pages& pages) {
        EXPECT_FALSE(Control(pages, Page::ID_REMOVE).enabled);
        windows.folderAnswers.push_back({L"/a", L"/b"});
        CScriptWindowSystem::Press(pages, Page::ID_ADD);
        CScriptWindowSystem::Choose(pages, Page::ID_LIST, 1);
        windows.folderAnswers.push_back({L"/c", L"/A", L"/d"});    // one is there, in another case
        CScriptWindowSystem::Press(pages, Page::ID_ADD);
        EXPECT_EQ(paths(), L"");    // not applied
        Apply(pages, 3);
        EXPECT_EQ(paths(), L"/a /c /d /b ");
        EXPECT_EQ(Control(pages, Page::ID_LIST).selected, 3);
        CScriptWindowSystem::Press(pages, Page::ID_ADD);    // cancelled
        CScriptWindowSystem::Press(pages, Page::ID_REMOVE);
        EXPECT_EQ(Control(pages, Page::ID_LIST).selected, 2);
        return true;
    });
    EXPECT_EQ(paths(), L"/a /c /d ");
    OpenSheet([&](const Pages& pages) {
        for (int i = 0; i < 3; i++) {
            CScriptWindowSystem::Choose(pages, Page::ID_LIST, 0);
            CScriptWindowSystem::Press(pages, Page::ID_REMOVE);
        }
        EXPECT_FALSE(Control(pages, Page::ID_REMOVE).enabled);
        return true;
    });
    EXPECT_EQ(paths(), L"");
}

TEST_F(Preferences, ViewWithoutTexturesHasNoPagesOfThem)
{
    class BareView : public C3DView {
        int IsTextureEnabled() const override { return 0; }
    } view;
    windows.dialogUsers.push_back([](const Pages& pages) {
        EXPECT_EQ(pages.size(), 3U);
        return false;
    });
    EXPECT_FALSE(CRenderSheet(*frame, view).DoModal());
}

}
