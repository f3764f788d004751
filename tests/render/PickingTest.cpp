#include <chrono>
#include <cmath>
#include <numbers>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "render/SteeredView.h"
#include "scene/Camera.h"
#include "scene/Curve.h"
#include "scene/GeomObject.h"
#include "scene/Group.h"

namespace {

/// A scene of cubes seen from the front: x to the right, z up, -y towards the eye.
struct Picked {
    static constexpr int WIDTH = 120, HEIGHT = 80;
    Owned<C3DScene> scene{C3DScene::Create()};
    CSteeredView view;

    void Show(unsigned int flags = VIEWFLAG_DEFAULT)
    {
        if (!view.IsDrawingFlagSet(GLDRAW_MEMORY)) {
            ASSERT_TRUE(view.CreateMemoryRendering(WIDTH, HEIGHT, 24));
        }
        view.SetView(RVIEW_FRONT, 0, 0);
        view.SetScene(scene.get(), GLSET_FIT);
        view.Change(GLSET_VIEW_FLAGS, [=](GlViewSettings& record) { record.viewFlags = flags; });
        view.UpdateView(0);
    }
    CPoint Find(const C3DTPoint<double>& p) const
    {
        const C3DTPoint<double> seen = view.See(p);
        const double half = std::tan(std::numbers::pi / 8) * -seen.z;
        return {static_cast<int>((1 + seen.x / (half * WIDTH / HEIGHT)) / 2 * WIDTH), static_cast<int>((1 - seen.y / half) / 2 * HEIGHT)};
    }
    std::vector<C3DSceneNode*> Rect(int x, int y, int width, int height)
    {
        CXArray<C3DSceneNode*> nodes;
        nodes.Add(nullptr);    // emptied, hit or not
        const unsigned int count = view.SelectNodesFromRect(nodes, x, y, width, height, GLSELECT_DEFAULT, 0);
        EXPECT_EQ(count, static_cast<unsigned int>(nodes.GetSize()));
        return {nodes.begin(), nodes.end()};
    }
    C3DSceneNode* Click(const C3DTPoint<double>& p)
    {
        const CPoint at = Find(p);
        const auto nodes = Rect(at.x, at.y, 0, 0);
        EXPECT_LE(nodes.size(), 1U);
        return nodes.empty() ? nullptr : nodes[0];
    }
};

using Nodes = std::vector<C3DSceneNode*>;

C3DSceneNode* AddCurve(C3DScene& scene, const std::vector<C3DTPoint<float>>& points)
{
    C3DCurve* const curve = new C3DCurve;
    C3DPointList* const list = curve->GetPointList() ? curve->GetPointList() : C3DPointList::Create(nullptr);
    list->SetSize(static_cast<int>(points.size()), true, -1);
    for (size_t i = 0; i < points.size(); i++)
        *list->ElementAt(static_cast<int>(i)) = points[i];
    curve->SetPointList(list, true);
    curve->Invalidate(CHANGE_POINTS, true);
    C3DSceneNode* const node = new C3DSceneNode;
    node->SetObject(curve, true);
    scene.AddNode(nullptr, node);
    return node;
}

}

TEST(Picking, TheNearestOfWhatLiesBehindOneAnotherWins)
{
    for (const bool farFirst : {false, true}) {    // the order of drawing does not matter
        Picked of;
        C3DSceneNode* const first = AddCube(*of.scene, {0, farFirst ? 5.0F : -5.0F, 0}, 2);
        C3DSceneNode* const second = AddCube(*of.scene, {0, farFirst ? -5.0F : 5.0F, 0}, 2);
        C3DSceneNode* const aside = AddCube(*of.scene, {6, 0, 0}, 2);
        of.Show();
        EXPECT_EQ(of.Click({0, 0, 0}), farFirst ? second : first);
        EXPECT_EQ(of.Click({6, -1, 0.9}), aside);
        EXPECT_EQ(of.Click({3, 0, 0}), nullptr);
        const CPoint middle = of.Find({0, 0, 0});
        EXPECT_EQ(of.Rect(middle.x - 1, middle.y - 1, 3, 3), (Nodes{first, second}));    // all of them, in the order of the scene
    }
}

TEST(Picking, AClickMeansItsPixel)
{
    // Faults in mind: y from the wrong border, a rectangle that begins a pixel aside.
    Picked of;
    C3DSceneNode* const cube = AddCube(*of.scene, {3, 0, 2}, 1);
    AddCube(*of.scene, {-5, 0, -5}, 0.1);
    of.Show();
    const Picture picture(of.view.CreateBitmapFromScene());
    int wrong = 0;
    for (int y = 0; y < Picked::HEIGHT; y += 3)
        for (int x = 0; x < Picked::WIDTH; x++) {
            const auto drawn = [&](int px, int py) {
                if (px < 0 || py < 0 || px >= Picked::WIDTH || py >= Picked::HEIGHT)
                    return false;
                const unsigned char* const p = picture->GetLine(py) + px * 3;
                return p[0] != 128 || p[1] != 128 || p[2] != 128;
            };
            const Nodes nodes = of.Rect(x, y, 0, 0);
            if (drawn(x, y) && nodes.empty())
                wrong++;
            bool near = false;    // GL picks what touches two pixels' width
            for (int dx = -1; dx <= 1; dx++)
                for (int dy = -1; dy <= 1; dy++)
                    near |= drawn(x + dx, y + dy);
            if (!near && !nodes.empty() && nodes[0] == cube)
                wrong++;
        }
    EXPECT_EQ(wrong, 0);
}

TEST(Picking, RectanglesTakeAllAndMayReachOverTheBorder)
{
    Picked of;
    Nodes cubes;
    for (int x = -2; x <= 2; x++)
        cubes.push_back(AddCube(*of.scene, {x * 3.0F, 0, 0}, 1));
    of.Show();
    EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, Picked::HEIGHT), cubes);
    EXPECT_EQ(of.Rect(0, 0, 10000, 10000), cubes);
    const CPoint between = of.Find({1.5, 0, 0});
    EXPECT_EQ(of.Rect(between.x, 0, 5000, 5000), (Nodes{cubes[3], cubes[4]}));
    EXPECT_EQ(of.Rect(0, 0, between.x, 5000), (Nodes{cubes[0], cubes[1], cubes[2]}));
    EXPECT_EQ(of.Rect(Picked::WIDTH + 50, 10, 20, 20), Nodes{});
    EXPECT_EQ(of.Rect(0xFFFFFF00, 0xFFFFFF00, 0x200, 0x200), Nodes{});
    EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, 1), Nodes{});            // nothing that high up
    EXPECT_EQ(of.Rect(of.Find({3, 0, 0}).x, 0, 0, 50), Nodes{});    // a click at its corner
}

TEST(Picking, WhatDoesNotShowIsNotFound)
{
    Picked of;
    C3DSceneNode* const hidden = AddCube(*of.scene, {0, -5, 0}, 2);
    C3DSceneNode* const cube = AddCube(*of.scene, {0, 0, 0}, 2);
    AddCube(*of.scene, {4, 0, 0}, 2);
    hidden->SetFlag(NODE_HIDDEN, true);
    of.Show();
    EXPECT_EQ(of.Click({0, 0, 0}), cube);
    of.Show(VIEWFLAG_DEFAULT | VIEWFLAG_HIDDEN_STIPPLED);    // now it shows, by half
    EXPECT_EQ(of.Click({0, 0, 0}), hidden);

    // One sheet that looks away from the eye.
    C3DSceneNode* const sheet = CreatePlane({0, -8, 0}, {0, 1, 0}, 4, 4, 1, 1, false, 0, 0);
    of.scene->AddNode(nullptr, sheet);
    of.Show(VIEWFLAG_DEFAULT);
    EXPECT_EQ(of.Click({0, -8, 0}), sheet);
    of.Show(VIEWFLAG_DEFAULT | VIEWFLAG_CULL_BACK);
    EXPECT_EQ(of.Click({0, -8, 0}), cube);

    of.view.m_settings.hiddenKinds = OBJECT_POLYGONAL;
    of.Show();
    EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, Picked::HEIGHT), Nodes{});
}

TEST(Picking, TransparentSurfacesAreFound)
{
    Picked of;
    C3DMaterial* const glass = of.scene->CreateNewMaterial(0xFFFFFFFF);
    glass->SetTransparencyFactor(0, 0.5F);
    C3DSceneNode* const pane = AddCube(*of.scene, {0, -4, 0}, 2, glass->GetMaterialID());
    AddCube(*of.scene, {0, 4, 0}, 2);
    of.Show();
    EXPECT_EQ(of.Click({0, 0, 0}), pane);
}

TEST(Picking, CurvesAreFoundByTheirWireAndSurfacesByTheirFaces)
{
    Picked of;
    C3DSceneNode* const cube = AddCube(*of.scene, {0, 0, 0}, 2);
    C3DSceneNode* const curve = AddCurve(*of.scene, {{-4, -3, 0}, {0, -3, 0}, {4, -3, 3}});
    const struct {
        const char* name;
        unsigned int mode;
        C3DSceneNode* inFace;
        C3DSceneNode* onEdge;
    } rows[] = {
        {"smooth", VIEWFLAG_SMOOTH, cube, cube},
        {"flat", VIEWFLAG_FLAT, cube, cube},
        {"flat with wires", VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME, cube, cube},
        {"wires", VIEWFLAG_WIREFRAME, nullptr, cube},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        of.Show((VIEWFLAG_DEFAULT & ~VIEWFLAG_RENDER_MODE) | row.mode);
        EXPECT_EQ(of.Click({-2, -3, 0}), curve);
        EXPECT_EQ(of.Click({0.2, -1, -0.5}), row.inFace);
        EXPECT_EQ(of.Click({0.2, -1, -1}), row.onEdge);
    }
}

TEST(Picking, WiresOverSurfacesDoNotPushTheSurfacesBack)
{
    Picked of;
    Mesh mesh = MakeMesh({{-1, -10, -1}, {1, 10, -1}, {1, 10, 1}, {-1, -10, 1}}, {{0, 1, 2, 3}});
    C3DSceneNode* const sheet = new C3DSceneNode;
    sheet->SetObject(new C3DObject(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr), true);
    of.scene->AddNode(nullptr, sheet);
    AddCurve(*of.scene, {{-1, -10 + 0.02F, 0}, {1, 10 + 0.02F, 0}});    // close behind the steep sheet
    for (const unsigned int wires : {0U, +VIEWFLAG_WIREFRAME}) {
        of.Show(VIEWFLAG_DEFAULT | wires);
        EXPECT_EQ(of.Click({0, 0, 0}), sheet) << wires;
    }
}

TEST(Picking, WorksThroughTransformsInstancesAndProjections)
{
    Picked of;
    C3DSceneNode* const cube = AddCube(*of.scene, {0, 0, 0}, 2);
    C3DSceneNode* const group = new C3DSceneNode;
    group->SetObject(new C3DGroup, true);
    of.scene->AddNode(nullptr, group);
    C3DSceneNode* const instance = of.scene->CreateInstance(cube);
    of.scene->AddNode(group, instance);
    C4x4TMatrix<float> place;
    place.SetTranslation(6, 0, 0);
    place.Scale(-1, 1, 0.5);    // mirrored
    static_cast<C3DMatrixKey*>(group->CreateKey(0, KEY_MATRIX, KEY_KEEP_DEFAULT))->SetMatrix(place);
    for (const int projection : {CAMERA_PERSPECTIVE, CAMERA_ORTHOGRAPHIC}) {
        of.view.m_settings.SetCurrentCamera(nullptr);
        of.view.m_settings.GetCurrentCamera()->SetProjection(projection);
        group->SetFlag(NODE_SELECTED, true);
        of.Show(VIEWFLAG_DEFAULT | VIEWFLAG_CULL_BACK);
        EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, Picked::HEIGHT), (Nodes{cube, instance}));
        EXPECT_EQ(of.Rect(Picked::WIDTH / 2, 0, Picked::WIDTH / 2, Picked::HEIGHT), Nodes{instance});
    }
}

TEST(Picking, TheBoxOfASelectedGroupIsNoHit)
{
    Picked of;
    C3DSceneNode* const group = new C3DSceneNode;
    group->SetObject(new C3DGroup, true);
    of.scene->AddNode(nullptr, group);
    C3DSceneNode* const left = CreateCube({-3, 0, -3}, 1, 1, 1, false, 0, 0);
    C3DSceneNode* const right = CreateCube({3, 0, 3}, 1, 1, 1, false, 0, 0);
    of.scene->AddNode(group, left);
    of.scene->AddNode(group, right);
    group->SetFlag(NODE_SELECTED, true);
    of.Show();
    of.view.SetDrawingFlag(GLDRAW_MEMORY_BOXES, true);
    EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, Picked::HEIGHT), (Nodes{left, right}));
    EXPECT_EQ(of.Click({-3.5, -0.5, 1}), nullptr);    // on the box
}

TEST(Picking, TheBufferGrowsUntilAllHitsFitAndManyNodesCostLittleMore)
{
    Picked of;
    constexpr int SIDE = 100;
    for (int i = 0; i < SIDE * SIDE; i++)
        AddCube(*of.scene, {static_cast<float>(i % SIDE) * 2, 0, static_cast<float>(i / SIDE) * 2}, 1);
    of.Show();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(of.Rect(0, 0, Picked::WIDTH, Picked::HEIGHT).size(), static_cast<size_t>(SIDE * SIDE));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));    // a look-up by a walk for each hit takes longer
}
