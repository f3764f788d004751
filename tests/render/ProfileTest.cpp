#include "render/ViewProfile.h"

#include "render/ViewCase.h"
#include "support/MemoryProfile.h"

namespace {

class CProfileView : public C3DView {
public:
    using C3DView::m_settings;
    using C3DView::SaveDefaultSettings;
};

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
