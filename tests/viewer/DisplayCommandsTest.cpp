#include <cmath>

#include "scene/Preferences.h"
#include "viewer/CommandCase.h"
#include "viewer/SmoothingMenu.h"
#include "viewer/ViewAngle.h"

namespace {

/// Notes what it is told.
class CListeningView : public C3DView {
    ZEL_DECLARE_CREATABLE(CListeningView)
public:
    void SetViewSettings(const GlViewSettings* settings) override
    {
        lastMask = settings->changeMask;
        C3DView::SetViewSettings(settings);
    }
    unsigned int lastMask = 0;
};
ZEL_IMPLEMENT_CREATABLE(CListeningView, C3DView)

class DisplayCommands : public CommandCase {
protected:
    int Degrees() const { return static_cast<int>(std::lround(scene->GetSmoothAngle() * 180 / M_PI)); }
    void SetViewFlags(unsigned int flags)
    {
        GlViewSettings settings;
        settings.changeMask = GLSET_VIEW_FLAGS | GLSET_UPDATE;
        settings.viewFlags = flags;
        View().SetViewSettings(&settings);
    }
    unsigned int Surfaces() { return View().GetViewFlag() & 0xE00; }
};

constexpr unsigned int TEXTURE = FourCC("ENTX"), COLORS = FourCC("ENVC"), NORMALS = FourCC("ENSN"), ALL_THREE = FourCC("ENTV");

}

TEST_F(DisplayCommands, EachChangesItsOwnBits)
{
    // Faults in mind: a command with another's number or bit; lists that keep the colours of before, or are built again for a mere mode.
    frame = std::make_unique<C3DFrameViewer>();
    frame->SetViewClass(CListeningView::GetThisRuntimeClassDescriptor());
    ASSERT_TRUE(frame->Create(L"test"));
    frame->SetCurrentScene(scene.get(), true);
    auto& view = static_cast<CListeningView&>(View());
    constexpr unsigned int START = VIEWFLAG_DEFAULT, REST = START & ~7u, MODE = 0x10008, SURFACE = 0x110008;
    const struct {
        unsigned int id, flags, mask;
    } rows[] = {
        {FourCC("WIRE"), REST | 1, MODE},  {FourCC("FLAT"), REST | 2, MODE},    {FourCC("FLWI"), REST | 3, MODE},
        {FourCC("SMWI"), REST | 5, MODE},  {TEXTURE, START ^ 0x200, SURFACE},   {COLORS, START ^ 0x400, SURFACE},
        {NORMALS, START ^ 0x800, SURFACE}, {ALL_THREE, START ^ 0xE00, SURFACE},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        SetViewFlags(START);
        EXPECT_EQ(Run(row.id), COMMAND_DONE);
        EXPECT_EQ(view.GetViewFlag(), row.flags);
        EXPECT_EQ(view.lastMask, row.mask);
        const bool isMode = row.mask == MODE;
        EXPECT_EQ(State(row.id), isMode ? CHECKED : ENABLED);
        EXPECT_EQ(State(FourCC("SMOO")), isMode ? ENABLED : CHECKED);
    }

    const unsigned int views[] = {
        FourCC("VLEF"), FourCC("VRIG"), FourCC("VTOP"), FourCC("VBOT"), FourCC("VFRO"), FourCC("VBAC"), 0, FourCC("VLTF"), FourCC("VRTF"),
        FourCC("VLTK"), FourCC("VRTK"), FourCC("VLBF"), FourCC("VRBF"), FourCC("VLBK"), FourCC("VRBK")};
    for (unsigned int number = 1; number <= 15; number++) {
        if (number == 7)
            continue;
        SCOPED_TRACE(number);
        EXPECT_EQ(Run(views[number - 1]), COMMAND_DONE);
        EXPECT_EQ(view.GetViewSettings()->viewNumber, number);
        EXPECT_EQ(State(views[number - 1]), CHECKED);
        EXPECT_EQ(State(FourCC("VAGL")), number >= 8 ? ENABLED : 0);
    }

    for (const auto& [id, brightness] :
         {std::pair(FourCC("BRGM"), 1.3f), {FourCC("BRGM"), 1.69f}, {FourCC("BRGL"), 1.3f}, {FourCC("BRGD"), 1}}) {
        Run(id);
        EXPECT_FLOAT_EQ(view.GetViewSettings()->brightness, brightness);
    }
}

TEST_F(DisplayCommands, TogetherTheTogglesComeBackAsTheyWere)
{
    SetViewFlags(VIEWFLAG_SMOOTH);
    EXPECT_EQ(State(ALL_THREE), ENABLED);
    Run(ALL_THREE);    // nothing is remembered
    EXPECT_EQ(Surfaces(), 0xE00u);
    Run(COLORS);
    Run(ALL_THREE);
    EXPECT_EQ(Surfaces(), 0u);
    Run(ALL_THREE);
    EXPECT_EQ(Surfaces(), 0xA00u);
    EXPECT_EQ(State(ALL_THREE), CHECKED);
    Run(TEXTURE);    // normals alone make no mark
    EXPECT_EQ(State(ALL_THREE), ENABLED);

    OpenToolbarMenu(ALL_THREE, 1);
    ASSERT_EQ(menu.size(), 3u);
    EXPECT_EQ(menu[0].text, L"Enable Texturing");
    EXPECT_EQ(menu[0].key, L"Shift+T");
    EXPECT_FALSE(menu[0].checked);
    EXPECT_FALSE(menu[1].checked);
    EXPECT_TRUE(menu[2].checked);
    EXPECT_EQ(Surfaces(), 0xC00u);

    Run(FourCC("WIRE"));
    for (const unsigned int id : {TEXTURE, COLORS, NORMALS, ALL_THREE, FourCC("PLAY")}) {
        EXPECT_FALSE(State(id) & ENABLED);
        EXPECT_EQ(Run(id), COMMAND_DECLINED);
    }
    EXPECT_EQ(Surfaces(), 0xC00u);
}

TEST_F(DisplayCommands, TheSmoothingMenuSetsModeAngleAndWeights)
{
    scene->SetSmoothAngle(static_cast<float>(31 * M_PI / 180), false);
    Run(FourCC("FLAT"));
    OpenToolbarMenu(FourCC("SMWI"), 0);
    const wchar_t* const texts[] = {L"Low Smoothing",
                                    L"Medium Smoothing",
                                    L"Strong Smoothing",
                                    L"Custom Smoothing (45\u00B0)",
                                    L"---",
                                    L"Area Weighted Normals (default)",
                                    L"Edge Length Weighted Normals",
                                    L"Angle Weighted Vertex Normals",
                                    L"Unweighted Normals"};
    ASSERT_EQ(menu.size(), std::size(texts));
    for (std::size_t i = 0; i < menu.size(); i++) {
        EXPECT_EQ(menu[i].text, texts[i]);
        EXPECT_EQ(menu[i].checked, i == 2 || i == 5) << i;
    }
    EXPECT_EQ(View().GetViewFlag() & 7, 5u);
    EXPECT_EQ(Degrees(), 11);
    EXPECT_TRUE(frame->IsDocumentModified());

    const _NormalSmoothMode modes[] = {NORMAL_EDGE_LENGTH, NORMAL_ANGLE, NORMAL_UNWEIGHTED, NORMAL_AREA};
    const int places[] = {6, 7, 8, 5};
    for (int i = 0; i < 4; i++) {
        OpenToolbarMenu(FourCC("SMOO"), places[i]);
        EXPECT_EQ(scene->GetSmoothMode(), modes[i]);
    }
    EXPECT_EQ(View().GetViewFlag() & 7, 4u);
    EXPECT_EQ(Degrees(), 11);

    // The button alone changes nothing but the mode, and the numbers of the entries are used again.
    const unsigned int first = menu[0].id;
    OpenToolbarMenu(FourCC("SMOO"), 1);
    EXPECT_EQ(menu[0].id, first);
    scene->SetSmoothAngle(1, false);
    Run(FourCC("SMOO"));
    EXPECT_EQ(scene->GetSmoothAngle(), 1);
}

TEST_F(DisplayCommands, ACustomAngleShowsWhileItIsChosen)
{
    scene->SetSmoothAngle(static_cast<float>(50 * M_PI / 180), false);
    Run(FourCC("FLAT"));
    const auto slide = [&](bool ok) {
        windows.dialogUsers.push_back([this, ok](const std::vector<CDialogTable*>& pages) {
            EXPECT_EQ(pages[0]->Find(CSmoothAngleDialog::ID_VALUE)->text, L"50\u00B0");
            EXPECT_TRUE(CScriptWindowSystem::Slide(pages, CSmoothAngleDialog::ID_SLIDER, {60, 70, 80}));
            EXPECT_EQ(pages[0]->Find(CSmoothAngleDialog::ID_VALUE)->text, L"80\u00B0");
            EXPECT_EQ(Degrees(), 80);
            EXPECT_EQ(View().GetViewFlag() & 7, 4u);
            return ok;
        });
        OpenToolbarMenu(FourCC("SMOO"), 3);
    };
    slide(false);
    EXPECT_EQ(menu[3].text, L"Custom Smoothing (50\u00B0)");
    EXPECT_TRUE(menu[3].checked);
    EXPECT_EQ(Degrees(), 50);
    EXPECT_EQ(View().GetViewFlag() & 7, 2u);
    EXPECT_FALSE(frame->IsDocumentModified());
    slide(true);
    EXPECT_EQ(Degrees(), 80);
    EXPECT_EQ(C3DPreferences::Get3DPreferences().GetSmoothAngle(), scene->GetSmoothAngle());
    EXPECT_EQ(profile.values[L"Render/smoothAngle"], 80u);
    EXPECT_TRUE(frame->IsDocumentModified());
    OpenToolbarMenu(FourCC("SMOO"), 2);
    OpenToolbarMenu(FourCC("SMOO"), -1);
    EXPECT_EQ(menu[3].text, L"Custom Smoothing (80\u00B0)");    // that was last chosen, the angle itself being a listed one
    EXPECT_FALSE(menu[3].checked);
}

TEST_F(DisplayCommands, TheViewAngleTurnsTheSlantedViewThatShows)
{
    const float standard = C3DPreferences::Get3DPreferences().GetViewAngle();
    Run(FourCC("VLTF"));
    const C4x4TMatrix<float> former = View().GetViewSettings()->matrix;
    const auto choose = [&](int degrees, bool ok) {
        windows.dialogUsers.push_back([=](const std::vector<CDialogTable*>& pages) {
            if (degrees) {
                EXPECT_TRUE(CScriptWindowSystem::Slide(pages, C3DViewAngleDlg::ID_SLIDER, {degrees}));
            }
            return ok;
        });
        Run(FourCC("VAGL"));
        return C3DPreferences::Get3DPreferences().GetViewAngle();
    };
    EXPECT_EQ(choose(60, false), standard);
    EXPECT_EQ(choose(0, true), standard);
    EXPECT_TRUE(View().GetViewSettings()->matrix == former);
    EXPECT_FLOAT_EQ(choose(60, true), static_cast<float>(M_PI / 3));
    EXPECT_FALSE(View().GetViewSettings()->matrix == former);
    EXPECT_EQ(View().GetViewSettings()->viewNumber, RVIEW_LEFT_TOP_FRONT);
    C3DPreferences::Get3DPreferences().SetViewAngle(standard);
}

TEST_F(DisplayCommands, WhatHappensOnOpeningIsSetInAPopup)
{
    for (int round = 0; round < 2; round++) {
        OpenToolbarMenu(FourCC("OPNV"), 1);
        ASSERT_EQ(menu.size(), 2u);
        EXPECT_EQ(menu[0].text, L"&Auto Fit On View");
        EXPECT_TRUE(menu[0].checked);
        EXPECT_EQ(menu[1].checked, round == 1);
        EXPECT_EQ(frame->IsSettingsFlagSet(SETTINGS3D_USE_CAMERA), round == 0);
    }
    Run(FourCC("OPNV"));
    EXPECT_FALSE(frame->IsSettingsFlagSet(SETTINGS3D_AUTO_FIT));
}
