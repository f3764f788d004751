#include "render/ViewProfile.h"

#include "render/MemoryProfile.h"
#include "render/ViewCase.h"

namespace {

class CProfileView : public C3DView {
public:
    using C3DView::m_settings;
    using C3DView::SaveDefaultSettings;
};

}

TEST(ViewProfile, HasStandardValuesWithAndWithoutApplication)
{
    const struct {
        _VIEW_PROFILE value;
        unsigned int standard;
    } cases[] = {
        {PROFILE_VERSION, 0},
        {PROFILE_VIEWMODE, 0x700E14},
        {PROFILE_BACKGROUND, 0x808080},
        {PROFILE_SELECTION_COLOR, 0xFF},
        {PROFILE_WIREFRAME_COLOR, 0xFF},
        {PROFILE_LIGHT_COLOR, 0xC0C0C0},
        {PROFILE_ALPHA_CUT, 1},
        {PROFILE_LOW_RES, 512},
        {PROFILE_PBUFFER, 1},
        {PROFILE_MULTISAMPLE, 1},
        {PROFILE_GL_SETTINGS, 0},
        {PROFILE_PIXEL_FORMAT, 0xFFFFFFFF},
        {PROFILE_SETTINGS, 0x1100},
    };
    for (const auto& c : cases) {
        SetViewProfile(c.value, 77);    // goes nowhere
        EXPECT_EQ(GetViewProfile(c.value), c.standard);
    }
    CMemoryProfile profile;
    for (const auto& c : cases) {
        EXPECT_EQ(GetViewProfile(c.value), c.standard);
        SetViewProfile(c.value, 77);
        EXPECT_EQ(GetViewProfile(c.value), 77u);
    }
    EXPECT_EQ(profile.values.size(), std::size(cases));
}

TEST(ViewProfile, IsWhatAViewStartsWith)
{
    CMemoryProfile profile;
    profile.values = {{L"Render/version", 3},
                      {L"Render/viewmode", 0x0F000201},    // the bits of the moment are nobody's to store
                      {L"Render/backgroundcolor", 0x030201},
                      {L"Render/selectioncolor", 0x060504},
                      {L"Render/wireframecolor", 0x090807},
                      {L"Render/lightcolor", 0x0C0B0A}};
    const C3DView view;
    const GlViewSettings& settings = *view.GetViewSettings();
    EXPECT_EQ(settings.viewFlags, 0x201u);
    EXPECT_EQ(settings.background, (CRGBColor{1, 2, 3}));
    EXPECT_EQ(settings.selectionColor, (CRGBColor{4, 5, 6}));
    EXPECT_EQ(settings.wireframeColor, (CRGBColor{7, 8, 9}));
    EXPECT_EQ(settings.lightColor, (CRGBColor{10, 11, 12}));
    EXPECT_NE(settings.GetCurrentCamera(), nullptr);
}

TEST(ViewProfile, OfAnotherLayoutLosesItsViewFlags)
{
    CMemoryProfile profile;
    profile.values = {{L"Render/version", 2}, {L"Render/viewmode", 1}, {L"Render/backgroundcolor", 0}};
    const C3DView view;
    EXPECT_EQ(view.GetViewFlag(), VIEWFLAG_DEFAULT);
    EXPECT_EQ(view.GetViewSettings()->background, (CRGBColor{0, 0, 0}));
    EXPECT_EQ(profile.values.at(L"Render/version"), 3u);
    EXPECT_EQ(profile.values.at(L"Render/viewmode"), VIEWFLAG_DEFAULT);
}

TEST(ViewProfile, TakesTheViewFlagsOfAWindowAtItsEnd)
{
    CMemoryProfile profile;
    CProfileView view;
    view.m_settings.viewFlags = VIEWFLAG_FLAT | VIEWFLAG_CULL_BACK | VIEWFLAG_CULLING_ON;
    view.SetDrawingFlag(GLDRAW_MEMORY, true);
    profile.values.clear();
    view.SaveDefaultSettings();
    EXPECT_TRUE(profile.values.empty());
    view.SetDrawingFlag(GLDRAW_MEMORY, false);
    view.SaveDefaultSettings();
    EXPECT_EQ(profile.values.at(L"Render/viewmode"), VIEWFLAG_FLAT | VIEWFLAG_CULL_BACK);
    EXPECT_EQ(profile.values.at(L"Render/version"), 3u);
}

TEST(ViewProfile, WithoutApplicationAViewHasTheStandardOnes)
{
    const C3DView view;
    EXPECT_EQ(view.GetViewFlag(), VIEWFLAG_DEFAULT);
    EXPECT_EQ(view.GetViewSettings()->background, (CRGBColor{128, 128, 128}));
    EXPECT_EQ(view.GetViewSettings()->lightColor, (CRGBColor{192, 192, 192}));
}
