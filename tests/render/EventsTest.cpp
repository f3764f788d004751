#include <climits>
#include <cmath>
#include <numbers>

#include "render/SteeredView.h"
#include "scene/3DObject.h"
#include "scene/Camera.h"
#include "scene/GeomObject.h"
#include "scene/Keyframe.h"

namespace {

class CCountingHost : public IViewHost {
public:
    std::vector<unsigned int> changes;
    int overlays = 0;
    void ViewChangedScene(unsigned int what, C3DSceneNode* node, unsigned int material, bool redraw) override
    {
        EXPECT_TRUE(!node && material == 0xFFFFFFFF && redraw);
        changes.push_back(what);
    }
    void ViewDrawn(CDC*) override { overlays++; }
};

/// A view in a window without context, which goes before the view does.
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
    const auto hideKinds = [&](unsigned int kinds) {
        view.Change(GLSET_HIDDEN_KINDS, [=](GlViewSettings& record) { record.hiddenKinds = kinds; });
    };
    hideKinds(OBJECT_POLYGONAL);
    EXPECT_FALSE(after(501));    // nothing that is drawn
    hideKinds(0);
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

TEST(ViewEvents, AnIdleWindowLooksAtNothing)
{
    // Fault in mind: a walk over all nodes, or a paint, twice a second for as long as the window is open.
    class CAskedObject : public C3DObject {
    public:
        mutable int asked = 0;
        bool NeedUpdate() const override
        {
            asked++;
            return C3DObject::NeedUpdate();
        }
    };
    Window window;
    CSteeredView& view = window.view;
    auto* const object = new CAskedObject;
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(object, true);
    window.scene->AddNode(nullptr, node);
    ASSERT_TRUE(view.CreateMemoryRendering(64, 64, 24));
    const auto wait = [&](int ticks) {
        int painted = 0;
        object->asked = 0;
        for (int i = 0; i < ticks; i++) {
            view.now += 200;
            view.OnTimer(1);
            if (window.Invalidated()) {
                painted++;
                view.OnPaint();
            }
        }
        return std::pair(painted, object->asked);
    };
    view.UpdateView(GLSET_FIT | GLSET_UPDATE);
    EXPECT_LE(wait(20).first, 2);    // the picture, and later what is too slow for interaction
    EXPECT_EQ(wait(100), std::pair(0, 0));
    const Owned<C3DObject> stranger(new C3DObject);    // of no scene
    stranger->Invalidate(CHANGE_POINTS, true);
    EXPECT_EQ(wait(100), std::pair(0, 0));
    object->Invalidate(CHANGE_POINTS, true);
    EXPECT_EQ(wait(20).first, 2);
    EXPECT_EQ(wait(100), std::pair(0, 0));
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

TEST(ViewEvents, TheWheelZoomsToThePointer)
{
    // Faults in mind: the other projection's formula; y taken downwards; the shift off by the aspect; parts of a notch taken for whole ones; notches
    // of one event lost.
    const auto point = C3DTPoint<double>(1, 2, -1);    // of the scene, anywhere before the eye
    struct {
        const char* name;
        bool orthographic;
        short delta;
        double z, zoom;    // of what they were
    } const rows[] = {
        {"nearer", false, 120, 0.95, 1.05},
        {"farther", false, -120, 1.05, 0.95},
        {"flat, nearer", true, 120, 0.95, 1.05},
        {"flat, farther", true, -120, 1.05, 0.95},
        {"a quarter of a notch", false, 30, std::pow(0.95, 0.25), std::pow(1.05, 0.25)},
        {"flat, three notches at once", true, -360, std::pow(1.05, 3), std::pow(0.95, 3)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Window window;
        CSteeredView& view = window.view;
        AddCube(*window.scene, {0, 0, 0}, 2);
        ASSERT_TRUE(view.CreateMemoryRendering(200, 100, 24));
        auto* const camera = new C3DCamera;
        camera->SetProjection(row.orthographic ? CAMERA_ORTHOGRAPHIC : CAMERA_PERSPECTIVE);
        view.Change(GLSET_CAMERA, [&](GlViewSettings& record) { record.SetCurrentCamera(camera); });
        DeleteMe(camera);
        view.UpdateView(GLSET_FIT);
        // Pixels from the middle of 200 x 100: 50 of them are 22.5 degrees upwards in perspective; otherwise half the picture's width is half the
        // scene's size over the zoom.
        const auto getPixel = [&] {
            const C3DTPoint<double> seen = view.See(point);
            const double scale = row.orthographic ? 100 / (view.m_settings.sceneSize / (2 * view.m_settings.GetCurrentCamera()->GetZoom()))
                                                  : 50 / (-seen.z * std::tan(std::numbers::pi / 8));
            return std::pair(100 + seen.x * scale, 50 - seen.y * scale);
        };
        const auto t = [&](int axis) { return view.m_settings.matrix.m[axis][3]; };
        view.Change(GLSET_TRANSLATION, [&](GlViewSettings& record) {    // so that the point is seen in the middle of a pixel
            record.matrix = view.m_settings.matrix;
            const auto [x, y] = getPixel();
            const double pixel =
                row.orthographic ? view.m_settings.sceneSize / 200 : -view.See(point).z * std::tan(std::numbers::pi / 8) / 50;
            record.matrix.m[0][3] += static_cast<float>((150 - x) * pixel);
            record.matrix.m[1][3] += static_cast<float>((y - 20) * pixel);
        });
        const auto before = getPixel();
        ASSERT_NEAR(before.first, 150, 1e-3);
        ASSERT_NEAR(before.second, 20, 1e-3);
        const double z = t(2);
        view.OnMouseWheel(0, row.delta, {150, 20});
        EXPECT_NEAR(getPixel().first, 150, 1e-3);
        EXPECT_NEAR(getPixel().second, 20, 1e-3);
        EXPECT_NEAR(t(2) / z, row.z, 1e-6);
        EXPECT_NEAR(view.m_settings.GetCurrentCamera()->GetZoom(), row.zoom, 1e-6);

        const float x = t(0), y = t(1);
        view.OnMouseWheel(0, row.delta, {100, 50});    // in the middle
        EXPECT_EQ(t(0), x);
        EXPECT_EQ(t(1), y);
    }
}
