// Drags and key steps, with the window of 800 x 600 and a view that looks along the scene's -z from a distance of 50.

#include <cmath>
#include <numbers>

#include "render/ViewCase.h"
#include "scene/Camera.h"
#include "viewer/CommandCase.h"
#include "viewer/ViewerControl.h"

namespace {

constexpr unsigned int ROTATE = FourCC("ROTA"), MOVE = FourCC("MOVE"), ZOOM = FourCC("ZOOM"), SELECT = FourCC("SELC");
constexpr CPoint MIDDLE{400, 300};

using Matrix = C4x4TMatrix<float>;

/// Right-handed rotation about an axis of the scene, with the eye's distance.
Matrix Turned(char axis, double degrees)
{
    const double angle = degrees * std::numbers::pi / 180;
    const int u = axis == 'x' ? 1 : axis == 'y' ? 2 : 0, v = (u + 1) % 3;
    Matrix m;
    m.m[u][u] = m.m[v][v] = static_cast<float>(std::cos(angle));
    m.m[v][u] = static_cast<float>(std::sin(angle));
    m.m[u][v] = -m.m[v][u];
    m.m[2][3] = -50;
    return m;
}

double GetDifference(const Matrix& a, const Matrix& b)
{
    double most = 0;
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 4; column++)
            most = std::max(most, std::fabs(double{a.m[row][column]} - b.m[row][column]));
    return most;
}

class Navigation : public CommandCase {
protected:
    void SetUp() override
    {
        CommandCase::SetUp();
        ASSERT_EQ(View().GetClientRect(), (CRect{0, 0, 800, 600}));
        Reset();
    }
    void Reset()
    {
        GlViewSettings settings;
        settings.changeMask = GLSET_MATRIX | GLSET_CAMERA;
        settings.matrix.m[2][3] = -50;
        settings.SetCurrentCamera(nullptr);
        View().SetViewSettings(&settings);
    }
    const Matrix& Now() { return View().GetViewSettings()->matrix; }
    double GetZoom() { return View().GetViewSettings()->GetCurrentCamera()->GetZoom(); }
    double GetSize() { return View().GetViewSettings()->sceneSize; }
    unsigned int GetZone(unsigned int id) { return static_cast<C3DViewerControl&>(Command(id)).GetZone(); }
    void Use(unsigned int id)
    {
        Run(id);
        ASSERT_EQ(frame->GetCommandMgr().GetCurrentCommand(), &Command(id));
    }
};

}

TEST_F(Navigation, TheRingTellsWhatALeftDragDoes)
{
    const struct {
        int x, y;
        unsigned int zone;
    } rows[] = {{0, 0, ZONE_FREE},           {116, 0, ZONE_FREE}, {117, 0, ZONE_HORIZONTAL}, {133, 8, ZONE_HORIZONTAL},
                {-125, -8, ZONE_HORIZONTAL}, {125, 9, ZONE_FREE}, {8, -133, ZONE_VERTICAL},  {0, 117, ZONE_VERTICAL},
                {9, 125, ZONE_FREE},         {88, 88, ZONE_FREE}, {134, 0, ZONE_ROLL},       {0, -140, ZONE_ROLL},
                {-300, 100, ZONE_ROLL}};
    for (const unsigned int id : {ROTATE, SELECT}) {
        Use(id);
        for (const auto& row : rows) {
            SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
            const CPoint point{MIDDLE.x + row.x, MIDDLE.y + row.y};
            windows.PressMouse(&View(), MOUSE_LEFT, point);
            EXPECT_EQ(GetZone(id), row.zone);
            windows.MoveMouse(&View(), {point.x, point.y + 1});
            EXPECT_NE(windows.GetCursor(&View()), CURSOR_ARROW);
            windows.ReleaseMouse(&View(), MOUSE_LEFT, {point.x, point.y + 1});
            EXPECT_EQ(GetZone(id), +ZONE_NONE);
        }
        windows.PressMouse(&View(), MOUSE_RIGHT, MIDDLE);
        EXPECT_EQ(GetZone(id), +ZONE_ZOOM);
        windows.PressMouse(&View(), MOUSE_LEFT, MIDDLE);
        EXPECT_EQ(GetZone(id), +ZONE_PAN);
        windows.ReleaseMouse(&View(), MOUSE_LEFT, MIDDLE);
        windows.ReleaseMouse(&View(), MOUSE_RIGHT, MIDDLE);
    }
    windows.Resize(&View(), 400, 283);    // 141 - 125 = 16: there is no room beside the ring
    windows.PressMouse(&View(), MOUSE_LEFT, {200, 141});
    EXPECT_EQ(GetZone(SELECT), +ZONE_ROLL);
}

TEST_F(Navigation, LeftDragsTurn)
{
    // 50 pixels are 36 degrees. By right hand: about y what is near goes to the right, about x down, about z against the clock.
    const struct {
        const char* name;
        CPoint from;    // of the middle
        int dx, dy;
        unsigned int keys;
        char axis;
        double degrees;
    } rows[] = {
        {"free across", {0, 0}, 50, 0, 0, 'y', 36},
        {"free down", {0, 0}, 0, 50, 0, 'x', 36},
        {"free with Ctrl", {0, 0}, 50, 0, INPUT_CTRL, 'y', 36},
        {"handle at the right", {125, 0}, 50, 30, 0, 'y', 36},
        {"handle at the left, own axis", {-125, 0}, 50, 30, INPUT_CTRL, 'z', 36},
        {"handle above", {0, -125}, 30, -50, 0, 'x', -36},
        {"handle below, own axis", {0, 125}, 30, 50, INPUT_CTRL, 'x', 36},
        {"roll at the right", {200, 0}, 30, 50, 0, 'z', -36},
        {"roll at the left", {-200, 0}, 30, 50, 0, 'z', 36},
        {"roll in the middle", {0, 200}, 30, 50, 0, 'z', 36},
        {"roll at the right, own axis", {200, 0}, 30, 50, INPUT_CTRL, 'y', 36},
        {"roll at the left, own axis", {-200, 0}, 30, 50, INPUT_CTRL, 'y', -36},
        {"fast", {0, 0}, 25, 0, INPUT_SHIFT, 'y', 72},
    };
    for (const unsigned int id : {ROTATE, SELECT}) {
        Use(id);
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name);
            Reset();
            windows.HoldKeys(row.keys);
            const CPoint from{MIDDLE.x + row.from.x, MIDDLE.y + row.from.y};
            windows.Drag(&View(), MOUSE_LEFT, {from, {from.x + 3, from.y + 2}, {from.x + row.dx, from.y + row.dy}});
            EXPECT_LT(GetDifference(Now(), Turned(row.axis, row.degrees)), 1e-5);
            EXPECT_EQ(View().GetViewSettings()->viewNumber, RVIEW_CUSTOM);
        }
        windows.HoldKeys(0);
    }
}

TEST_F(Navigation, NothingJumps)
{
    Use(SELECT);
    const CPoint handle{MIDDLE.x + 125, MIDDLE.y};
    const auto move = [&](int x, int y) { windows.MoveMouse(&View(), {x, y}); };
    windows.PressMouse(&View(), MOUSE_LEFT, handle);
    move(handle.x + 50, handle.y);
    for (const unsigned int keys : {+INPUT_CTRL, 0U}) {    // another axis, from here
        const Matrix before = Now();
        windows.HoldKeys(keys);
        move(handle.x + (keys ? 51 : 77), handle.y);
        EXPECT_EQ(Now(), before);
        move(handle.x + (keys ? 76 : 102), handle.y);    // 18 degrees
        Matrix turn = Turned(keys ? 'z' : 'y', 18), expected = before;
        turn.SetTranslation(0, 0, 0);
        expected.SetTranslation(0, 0, 0);
        expected = keys ? expected * turn : turn * expected;
        expected.SetTranslation(0, 0, -50);
        EXPECT_LT(GetDifference(Now(), expected), 1e-5);
    }

    // The other button comes and goes, the wheel turns, another click begins.
    windows.PressMouse(&View(), MOUSE_RIGHT, {handle.x + 102, handle.y});
    move(handle.x - 100, handle.y + 100);
    EXPECT_NEAR(Now().m[0][3], -202.0 / 800 * GetSize(), 1e-4);
    Matrix before = Now();
    windows.ReleaseMouse(&View(), MOUSE_RIGHT, {handle.x - 100, handle.y + 100});
    EXPECT_EQ(Now(), before);
    windows.TurnWheel(&View(), 120, MIDDLE);
    before = Now();
    EXPECT_NE(before.m[2][3], -50);
    move(handle.x - 99, handle.y + 100);
    EXPECT_GT(GetDifference(Now(), before), 0);    // goes on turning
    EXPECT_LT(GetDifference(Now(), before), 0.02);
    windows.ReleaseMouse(&View(), MOUSE_LEFT, {handle.x - 99, handle.y + 100});
    before = Now();
    move(10, 10);
    EXPECT_EQ(Now(), before);
}

TEST_F(Navigation, PanMovesByPartsOfTheWindow)
{
    const struct {
        const char* name;
        unsigned int command;
        MouseButton button;
        unsigned int keys;
        double factor;
    } rows[] = {{"pan", MOVE, MOUSE_LEFT, 0, 1},
                {"fast", MOVE, MOUSE_LEFT, INPUT_SHIFT, 4},
                {"middle button while zooming", ZOOM, MOUSE_MIDDLE, 0, 1},
                {"middle button while turning", ROTATE, MOUSE_MIDDLE, 0, 1},
                {"middle button while selecting faces", FourCC("SLFC"), MOUSE_MIDDLE, 0, 1},
                {"right button does not", MOVE, MOUSE_RIGHT, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Use(row.command);
        Reset();
        windows.HoldKeys(row.keys);
        windows.Drag(&View(), row.button, {{100, 100}, {130, 110}, {140, 70}});
        EXPECT_NEAR(Now().m[0][3], row.factor * 40 / 800 * GetSize(), 1e-4);
        EXPECT_NEAR(Now().m[1][3], row.factor * 30 / 600 * GetSize(), 1e-4);
        EXPECT_EQ(Now().m[2][3], -50);
    }
    windows.HoldKeys(0);
}

TEST_F(Navigation, ZoomGoesByStepsOfTheMouse)
{
    const struct {
        const char* name;
        unsigned int command;
        MouseButton button;
        std::vector<CPoint> path;
        unsigned int keys;
        double distance, zoom;
    } rows[] = {{"up", ZOOM, MOUSE_LEFT, {{100, 100}, {100, 90}}, 0, 0.95, 1.05},
                {"down", ZOOM, MOUSE_LEFT, {{100, 100}, {100, 102}}, 0, 1.05, 0.95},
                {"across counts as up", ZOOM, MOUSE_LEFT, {{100, 100}, {101, 100}}, 0, 0.95, 1.05},
                {"twice at one place", ZOOM, MOUSE_LEFT, {{100, 100}, {100, 99}, {100, 99}}, 0, 0.95, 1.05},
                {"fast", ZOOM, MOUSE_LEFT, {{100, 100}, {100, 102}}, INPUT_SHIFT, 1.2, 3.8},
                {"right button while selecting", SELECT, MOUSE_RIGHT, {{100, 100}, {100, 90}}, 0, 0.95, 1.05}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Use(row.command);
        Reset();
        windows.HoldKeys(row.keys);
        windows.Drag(&View(), row.button, row.path);
        EXPECT_NEAR(Now().m[2][3], -50 * row.distance, 1e-4);
        EXPECT_NEAR(GetZoom(), row.zoom, 1e-9);
    }
    windows.HoldKeys(0);
}

TEST_F(Navigation, KeysGoByFixedSteps)
{
    const double step = GetSize() / 20;
    const struct {
        unsigned int id;
        Matrix turned;
        double x, y, distance, zoom;
    } rows[] = {{FourCC("ROTL"), Turned('z', -10), 0, 0, 1, 1},   {FourCC("ROTR"), Turned('z', 10), 0, 0, 1, 1},
                {FourCC("ROTU"), Turned('x', -10), 0, 0, 1, 1},   {FourCC("ROTB"), Turned('x', 10), 0, 0, 1, 1},
                {FourCC("MOVL"), Turned('x', 0), -step, 0, 1, 1}, {FourCC("MOVR"), Turned('x', 0), step, 0, 1, 1},
                {FourCC("MOVU"), Turned('x', 0), 0, step, 1, 1},  {FourCC("MOVB"), Turned('x', 0), 0, -step, 1, 1},
                {FourCC("ZOOI"), Turned('x', 0), 0, 0, 0.8, 1.2}, {FourCC("ZOOO"), Turned('x', 0), 0, 0, 1.2, 0.8}};
    for (const auto& row : rows) {
        Reset();
        EXPECT_EQ(Run(row.id), COMMAND_DONE);
        Matrix expected = row.turned;
        expected.SetTranslation(static_cast<float>(row.x), static_cast<float>(row.y), static_cast<float>(-50 * row.distance));
        EXPECT_LT(GetDifference(Now(), expected), 1e-5) << row.id;
        EXPECT_NEAR(GetZoom(), row.zoom, 1e-9) << row.id;
    }
}

TEST_F(Navigation, FitsInBothProjections)
{
    C3DSceneNode* const small = CreateCube({100, 0, 0}, 1, 1, 1, false, 0, 0);
    scene->AddNode(nullptr, small);
    const auto fit = [&](unsigned int id) {
        Run(id);
        return View().GetViewSettings()->sceneCenter.x;
    };
    EXPECT_NEAR(fit(FourCC("RSZO")), (2 + 100.5) / 2, 1e-4);
    small->SetFlag(NODE_SELECTED, true);
    EXPECT_NEAR(fit(FourCC("ZOSL")), 100, 1e-4);
    EXPECT_LT(Now().m[2][3], -GetSize());    // with the distance of the scene
    EXPECT_NEAR(fit(FourCC("RSZO")), (2 + 100.5) / 2, 1e-4);

    Reset();
    GlViewSettings settings;
    settings.changeMask = GLSET_CAMERA;
    settings.SetCurrentCamera(nullptr);
    settings.GetCurrentCamera()->SetProjection(CAMERA_ORTHOGRAPHIC);
    View().SetViewSettings(&settings);
    EXPECT_NEAR(fit(FourCC("ZOSL")), 100, 1e-4);
    EXPECT_NEAR(GetZoom(), GetSize() / (1.05 * 800 / 600), 1e-2);    // its height is that of the window, but for the margin
    fit(FourCC("RSZO"));
    EXPECT_EQ(GetZoom(), 1);
    small->SetFlag(NODE_SELECTED, false);
    EXPECT_NEAR(fit(FourCC("ZOSL")), (2 + 100.5) / 2, 1e-4);
}

TEST_F(Navigation, TheRingShowsWhenThereIsTimeAndRoom)
{
    Use(ROTATE);
    const auto count = [&](int width, int height, int green) {
        windows.Resize(&View(), width, height);
        EXPECT_EQ(View().CreateMemoryRendering(width, height, 24), 1);
        View().SetScene(scene.get(), 0);
        View().UpdateView(0);
        const Picture picture(View().CreateBitmapFromScene());
        View().DeleteMemoryRendering();
        return CountPixels(*picture, [&](const unsigned char* p) { return p[0] == 0 && p[1] == green && p[2] == 0; });
    };
    EXPECT_GT(count(400, 400, 220), 2 * std::numbers::pi * 125 / 2);
    EXPECT_NEAR(count(400, 400, 0), 4 * 14 * 14, 8);    // the handles, without their border
    EXPECT_EQ(count(400, 283, 220), 0);
    Use(MOVE);
    EXPECT_EQ(count(400, 400, 220), 0);
}

TEST_F(Navigation, CommandsTellOfMouseAndKeys)
{
    const auto text = [&](unsigned int id, HelpInfo kind) {
        CXTString<wchar_t> help;
        const bool told = Command(id).OnGetHelp(kind, help) != 0;
        EXPECT_EQ(told, !help.IsEmpty());
        return help;
    };
    EXPECT_EQ(text(ROTATE, HELP_KEYS), L"<k>Ctrl</k>: Rotate in the axis indicated by the cursor.");
    EXPECT_TRUE(text(ROTATE, HELP_MOUSE).IsEmpty());
    EXPECT_TRUE(text(MOVE, HELP_KEYS).IsEmpty());
    EXPECT_EQ(text(SELECT, HELP_MOUSE), text(FourCC("SLFC"), HELP_MOUSE));
    EXPECT_FALSE(text(SELECT, HELP_MOUSE).IsEmpty() || text(SELECT, HELP_KEYS).IsEmpty());
}
