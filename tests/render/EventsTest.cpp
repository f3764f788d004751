#include <climits>

#include "render/SteeredView.h"
#include "scene/Camera.h"
#include "scene/GeomObject.h"
#include "scene/Keyframe.h"

namespace {

class CCountingHost : public IViewHost {
public:
    std::vector<unsigned int> changes;
    int overlays = 0;
    void SceneChanged(unsigned int what, unsigned int id, bool redraw) override
    {
        EXPECT_EQ(id, 0U);
        EXPECT_TRUE(redraw);
        changes.push_back(what);
    }
    void DrawOverlay(CDC*) override { overlays++; }
};

/// A view in a window, which goes before the view does.
struct Window {
    CCountingHost host;
    CSteeredView view;
    CTestPeer* peer = new CTestPeer;
    Owned<C3DScene> scene{C3DScene::Create()};

    Window()
    {
        view.SetHost(&host);
        view.SetPeer(peer);
        view.SetScene(scene.get(), 0);
    }
    int Invalidated() { return std::exchange(peer->invalidated, 0); }
};

}

TEST(ViewEvents, APaintIsFollowedByADeferredOneAfterAPause)
{
    Window window;
    CSteeredView& view = window.view;
    ASSERT_TRUE(view.CreateMemoryRendering(64, 64, 24));
    view.UpdateView(0);
    view.OnTimer(1);    // the first one looks for objects to update
    window.Invalidated();
    const auto deferred = [&] { return view.IsDrawingFlagSet(GLDRAW_DEFERRED_PAINT); };

    view.OnPaint();
    EXPECT_EQ(window.host.overlays, 1);
    view.now += 300;
    view.OnTimer(1);
    EXPECT_EQ(window.Invalidated(), 0);
    view.now += 1;
    view.OnTimer(2);    // not the view's timer
    EXPECT_EQ(window.Invalidated(), 0);
    view.OnTimer(1);
    EXPECT_EQ(window.Invalidated(), 1);
    EXPECT_TRUE(deferred());
    view.OnPaint();    // that paint asks for no further one
    EXPECT_FALSE(deferred());
    view.now += 400;
    view.OnTimer(1);    // 701 ms after the first: updates
    view.OnTimer(1);
    EXPECT_EQ(window.Invalidated(), 0);

    view.OnPaint();
    view.now += 250;
    view.OnPaint();    // the user goes on: the pause begins anew
    view.now += 250;
    view.OnTimer(1);
    view.OnTimer(1);
    EXPECT_EQ(window.Invalidated(), 0);
    view.now += 100;
    view.OnTimer(1);    // updates go first
    view.OnTimer(1);
    EXPECT_EQ(window.Invalidated(), 1);
}

TEST(ViewEvents, ARenderThatThrowsIsNoPaint)
{
    Window window;
    CSteeredView& view = window.view;
    AddCube(*window.scene, {0, 0, 0}, 2);
    ASSERT_TRUE(view.CreateMemoryRendering(64, 64, 24));
    view.UpdateView(GLSET_FIT);
    view.SetDisplayCallback([](C3DSceneNode*, glCallbackDisplayState, unsigned int, void*) -> int { throw 1; });
    view.SetDrawingFlag(GLDRAW_DEFERRED_PAINT, true);
    EXPECT_NO_THROW(view.OnPaint());
    EXPECT_TRUE(view.IsDrawingFlagSet(GLDRAW_DEFERRED_PAINT));
}

TEST(ViewEvents, TheTimerUpdatesWhatAsksForIt)
{
    Window window;
    CSteeredView& view = window.view;
    C3DSceneNode* const cube = AddCube(*window.scene, {0, 0, 0}, 2);
    cube->GetFinalObject()->Update(window.scene.get(), OBJECT_UPDATE_ALL);
    view.OnTimer(1);
    window.Invalidated();
    const auto after = [&](unsigned int milliseconds) {
        view.now += milliseconds;
        view.OnTimer(1);
        return window.Invalidated() != 0;
    };
    EXPECT_FALSE(after(501));    // nothing asks
    cube->GetBaseObject()->Invalidate(CHANGE_FACES, true);
    ASSERT_TRUE(cube->GetFinalObject()->NeedUpdate());
    EXPECT_FALSE(after(500));
    cube->SetFlag(NODE_HIDDEN, true);
    EXPECT_FALSE(after(1));
    cube->SetFlag(NODE_HIDDEN, false);
    EXPECT_TRUE(after(501));
    {
        const CGLActivate active(&view);
        EXPECT_FALSE(after(501));    // not in the midst of something
    }
    EXPECT_TRUE(after(0));

    // While the user is at work each update puts it off.
    view.m_settings.viewFlags |= VIEWFLAG_HOLD_UPDATES;
    view.now += 400;
    view.UpdateView(0);
    window.Invalidated();
    EXPECT_FALSE(after(400));
    EXPECT_TRUE(after(101));
}

TEST(ViewEvents, TheWheelWithKeysStepsThroughTime)
{
    Window window;
    CSteeredView& view = window.view;
    C3DSceneNode* const cube = AddCube(*window.scene, {0, 0, 0}, 2);
    for (const int time : {0, 10, 20})
        cube->CreateKey(time, KEY_MATRIX, KEY_KEEP_DEFAULT);
    const auto turn = [&](unsigned int keys, short delta) {
        window.host.changes.clear();
        view.OnMouseWheel(keys, delta, {});
        return window.scene->GetTickCount();
    };
    EXPECT_EQ(turn(INPUT_SHIFT, 1), 1);
    EXPECT_EQ(window.host.changes, std::vector{32U});
    EXPECT_EQ(turn(INPUT_CTRL, 120), 2);
    EXPECT_EQ(turn(INPUT_CTRL, SHRT_MIN), 1);
    EXPECT_EQ(turn(INPUT_CTRL | INPUT_SHIFT, 1), 10);
    EXPECT_EQ(turn(INPUT_CTRL | INPUT_SHIFT, 1), 20);
    EXPECT_EQ(turn(INPUT_CTRL | INPUT_SHIFT, 1), 20);    // no further key
    EXPECT_TRUE(window.host.changes.empty());
    EXPECT_EQ(turn(INPUT_CTRL | INPUT_SHIFT, -1), 10);
    view.SetScene(nullptr, 0);
    view.OnMouseWheel(INPUT_SHIFT, 1, {});
}
