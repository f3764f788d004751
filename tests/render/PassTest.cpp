// Nodes in the passes: hidden, selected, mirrored and scaled ones, wires, curves, instances, and what hosts are told.

#include <GL/gl.h>

#include <algorithm>
#include <array>

#include "render/ViewCase.h"
#include "scene/Curve.h"

static constexpr CRGBColor RED{255, 0, 0}, GREEN{0, 255, 0}, BLUE{0, 0, 255};

static C4x4TMatrix<float> Scaled(double x, double y, double z)
{
    C4x4TMatrix<float> matrix;
    matrix.Scale(x, y, z);
    return matrix;
}

static void SetMatrix(C3DSceneNode& node, const C4x4TMatrix<float>& matrix)
{
    static_cast<C3DMatrixKey*>(node.CreateKey(0, KEY_MATRIX, 0))->SetMatrix(matrix);
}

TEST(Passes, HiddenNodesAreLeftOutOrShownHalf)
{
    CStage stage;
    C3DSceneNode* const node = stage.AddSquare(0, 0, 0, stage.AddMaterial(GREEN));
    stage.AddMesh({{-1, -1, 0}, {-1, -0.999f, 0}, {1, 1, 0}}, {{0, 1, 2}}, stage.AddMaterial(BLUE));
    node->SetFlag(NODE_HIDDEN, true);
    const auto shown = [&] { return CountPixels(*stage.Draw(), IsGreen) / (64.0 * 64); };
    EXPECT_EQ(shown(), 0);
    stage.Settings().viewFlags |= VIEWFLAG_HIDDEN_STIPPLED;
    EXPECT_NEAR(shown(), 0.25, 0.02);
    stage.Settings().viewFlags |= VIEWFLAG_WIREFRAME;    // has no wire then
    EXPECT_NEAR(shown(), 0.25, 0.02);
    stage.Settings().viewFlags = VIEWFLAG_WIREFRAME | VIEWFLAG_HIDDEN_STIPPLED;
    EXPECT_EQ(shown(), 0);
}

TEST(Passes, OffScreenNothingTellsWhatIsSelected)
{
    for (const unsigned int mode : {1, 2, 3, 4, 5}) {
        CStage stage;
        C3DSceneNode* const node = stage.AddSquare(0, 0, 0, stage.AddMaterial(GREEN));
        stage.Settings().viewFlags = mode;
        const Picture plain = stage.Draw();
        node->SetFlag(NODE_SELECTED, true);
        const Picture selected = stage.Draw();
        for (int y = 0; y < 64; y++)
            ASSERT_EQ(std::memcmp(plain->GetLine(y), selected->GetLine(y), 64 * 3), 0) << mode;
    }
}

TEST(Passes, InAWindowWhatIsSelectedIsTinted)
{
    for (const bool colored : {false, true}) {
        CStage stage;
        C3DSceneNode* const node = stage.AddSquare(0, 0, 0, stage.AddMaterial(RED));
        stage.Settings().viewFlags = VIEWFLAG_SMOOTH | VIEWFLAG_VERTEX_COLORS;
        if (colored)
            AddColors(*node->GetGeomObject());
        stage.Show();
        const auto middle = [&] {
            const CGLActivate active(&stage.View());
            stage.View().SetDrawingFlag(GLDRAW_MEMORY, false);
            stage.View().RenderScene(nullptr);
            stage.View().SetDrawingFlag(GLDRAW_MEMORY, true);
            std::array<unsigned char, 3> pixel;
            glReadPixels(32, 32, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pixel.data());
            return pixel;
        };
        const auto plain = middle();
        node->SetFlag(NODE_SELECTED, true);
        const auto tinted = middle();
        constexpr double TINT[3] = {0, 0.4 * 255, 0.8 * 255};
        for (int i = 0; i < 3; i++)
            EXPECT_NEAR(tinted[i], 0.4 * plain[i] + 0.6 * TINT[i], 2) << colored << i;
    }
}

TEST(Passes, InAWindowTheTintShowsOnWires)
{
    // Whatever colours the lists set.
    const struct {
        const char* name;
        unsigned int mode;
        bool curve, buffered;
    } rows[] = {
        {"wires", VIEWFLAG_WIREFRAME, false, true},
        {"wires as GL compiles them", VIEWFLAG_WIREFRAME, false, false},
        {"wires among surfaces", VIEWFLAG_SMOOTH, false, true},
        {"curve", VIEWFLAG_WIREFRAME, true, true},
        {"curve among surfaces", VIEWFLAG_SMOOTH, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CStage stage;
        stage.Settings().viewFlags = row.mode;
        C3DSceneNode* node = stage.AddSquare(0, 0, 0, stage.AddMaterial(RED));
        if (row.curve) {
            Mesh line = MakeMesh({{-1, -1, 0}, {1, 0, 0}, {1, 1, 0}}, {});
            auto* const curve = new C3DCurve(std::exchange(line.points, nullptr), nullptr, nullptr);
            curve->SetMaterialID(stage.AddMaterial(RED));
            node->SetFlag(NODE_HIDDEN, true);
            node = stage.AddObject(curve);
        } else
            node->GetBaseObject()->SetFlag(OBJECT_WIREFRAME_ONLY, true);
        if (!row.buffered)
            stage.View().SetFaceCallback([](_RenderElement*) { return FACE_RESULT_NORMAL; });
        stage.Show();
        const auto draw = [&] {
            const CGLActivate active(&stage.View());
            stage.View().SetDrawingFlag(GLDRAW_MEMORY, false);
            stage.View().RenderScene(nullptr);
            stage.View().SetDrawingFlag(GLDRAW_MEMORY, true);
            Picture picture(rgbBitmap::Create(64, 64));
            glReadPixels(0, 0, 64, 64, GL_RGB, GL_UNSIGNED_BYTE, picture->GetLine(0));
            return picture;
        };
        const Picture plain = draw();
        EXPECT_GT(CountPixels(*plain, IsRed), 40);
        EXPECT_EQ(CountPixels(*plain, IsBlue), 0);
        node->SetFlag(NODE_SELECTED, true);
        EXPECT_GT(CountPixels(*draw(), IsBlue), 40);
    }
}

TEST(Passes, TheViewsOwnMaterialsAreNotThoseOfASceneThatHaveTheirIds)
{
    CStage stage;
    stage.Settings().viewFlags = VIEWFLAG_WIREFRAME | VIEWFLAG_SHOW_CAMERAS;
    SetMatrix(*stage.AddObject(new C3DCamera), Scaled(0.01, 0.01, 0.01));
    const unsigned int first = stage.View().GetSelectionMaterial().GetMaterialID(), last = stage.View().GetUserMaterial().GetMaterialID();
    for (unsigned int id = first; id <= last; id++) {
        stage.Scene().CreateNewMaterial(id)->SetDiffuseColor(0, GREEN);
        stage.AddSquare(static_cast<float>(id - first), 0, 0, id);
    }
    const Picture picture = stage.Draw();
    EXPECT_GT(CountPixels(*picture, IsBlue), 10);
    EXPECT_GT(CountPixels(*picture, IsGreen), 40);
    EXPECT_EQ(CountPixels(*picture, IsRed), 0);
}

TEST(Passes, MirroredAndScaledNodesAreLitLikeOthers)
{
    // Faults in mind: a mirror turns faces round, so that they are lit from behind or culled; scaled normals make light of another strength.
    const auto center = [](const C4x4TMatrix<float>& matrix, unsigned int flags) {
        CStage stage;
        stage.Settings().viewFlags = flags;
        SetMatrix(*stage.AddSquare(0, 0, 0, stage.AddMaterial(RED)), matrix);
        const Picture picture = stage.Draw();
        EXPECT_NEAR(Coverage(*picture), 0.5, 0.06);
        return picture->GetLine(32)[3 * 32];
    };
    for (const unsigned int mode : {+VIEWFLAG_FLAT, +VIEWFLAG_SMOOTH, VIEWFLAG_SMOOTH | VIEWFLAG_CULL_BACK}) {
        const int plain = center(Scaled(1, 1, 1), mode);
        EXPECT_GT(plain, 100);
        for (const auto& matrix : {Scaled(2, 2, 2), Scaled(-1, 1, 1), Scaled(1, 1, 3), Scaled(0.01, 0.01, 0.01), Scaled(3, -3, 3)})
            EXPECT_NEAR(center(matrix, mode), plain, 1) << mode;
    }
}

TEST(Passes, WiresStandAloneOrOverSurfaces)
{
    CStage stage;
    stage.AddSquare(0, 0, 0, stage.AddMaterial(GREEN));
    stage.Settings().viewFlags = VIEWFLAG_WIREFRAME;
    const Picture wires = stage.Draw();
    EXPECT_GT(Coverage(*wires), 0.02);
    EXPECT_LT(Coverage(*wires), 0.15);
    EXPECT_EQ(CountPixels(*wires, IsRed), 0) << "alone, a wire has the colour of its material";

    stage.Settings().viewFlags = VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME;
    const Picture both = stage.Draw();
    EXPECT_GT(CountPixels(*both, IsRed), 80) << "the wires' own colour, on all four sides";
    EXPECT_GT(CountPixels(*both, IsGreen), 64 * 64 * 4 / 10);
}

TEST(Passes, CurvesAreDrawnInEveryMode)
{
    for (const unsigned int mode : {1, 2, 3, 4, 5}) {
        CStage stage;
        stage.Settings().viewFlags = mode;
        Mesh line = MakeMesh({{-1, -1, 0}, {0, 0, 0}, {1, 1, 0}}, {});
        auto* const curve = new C3DCurve(std::exchange(line.points, nullptr), nullptr, nullptr);
        curve->SetMaterialID(stage.AddMaterial(GREEN));
        stage.AddObject(curve);
        stage.AddMesh({{-1, -1, 0}, {-1, -0.999f, 0}, {1, 1, 0}}, {});
        stage.AddSquare(0, 0, -1, stage.AddMaterial(BLUE));
        const Picture picture = stage.Draw();
        EXPECT_GT(CountPixels(*picture, IsGreen), 20) << mode;
        curve->GetPointList()->ElementAt(2)->SetFlags(VIEW_POINT_SELECTED, true);
        stage.Settings().viewFlags |= VIEWFLAG_MARKED_ONLY;    // one point makes no line
        EXPECT_EQ(CountPixels(*stage.Draw(), IsGreen), 0) << mode;
    }
}

TEST(Passes, KindsThatAreHiddenAndIconsThatAreNotAskedForAreNotDrawn)
{
    CStage stage;
    stage.AddSquare(0, 0, 0, stage.AddMaterial(GREEN));
    C3DSceneNode* const camera = stage.AddObject(new C3DCamera);
    SetMatrix(*camera, Scaled(0.01, 0.01, 0.01));
    const Picture without = stage.Draw();
    EXPECT_EQ(CountPixels(*without, IsBlue), 0);
    stage.Settings().viewFlags |= VIEWFLAG_SHOW_CAMERAS;
    EXPECT_GT(CountPixels(*stage.Draw(), IsBlue), 10);
    stage.Settings().hiddenKinds = OBJECT_CAMERA;
    stage.Settings().changeMask |= GLSET_HIDDEN_KINDS;
    EXPECT_EQ(CountPixels(*stage.Draw(), IsBlue), 0);
    stage.Settings().hiddenKinds = OBJECT_POLYGONAL;
    EXPECT_EQ(CountPixels(*stage.Draw(), IsGreen), 0);
}

TEST(Passes, InstancesShareWhatWasCompiled)
{
    CStage stage;
    C3DSceneNode* const first = stage.AddSquare(0, 0, 0);
    C3DSceneNode* const second = stage.AddObject(stage.Scene().CreateObjectInstance(first->GetBaseObject()));
    C4x4TMatrix<float> aside;
    aside.SetTranslation(4, 0, 0);
    SetMatrix(*second, aside);
    int flushed = 0;
    stage.View().SetCallbackData(&flushed);
    stage.View().SetFlushCallback([](C3DSceneNode*, void* count) { ++*static_cast<int*>(count); });
    EXPECT_NEAR(Coverage(*stage.Draw()), 8.0 / 40, 0.02);
    EXPECT_EQ(flushed, 1);
}

TEST(Passes, AHostHearsOfEachPassAndNode)
{
    struct Call {
        glCallbackDisplayState state;
        unsigned int mode;
        bool operator==(const Call&) const = default;
    };
    static std::vector<Call> calls;
    static int refused;
    const auto callback = [](C3DSceneNode*, glCallbackDisplayState state, unsigned int mode, void*) {
        calls.push_back({state, mode});
        return static_cast<int>(state) == refused ? 0 : 1;
    };
    CStage stage;
    stage.AddSquare(0, 0, 0);
    stage.Settings().viewFlags = VIEWFLAG_SMOOTH | VIEWFLAG_WIREFRAME;
    stage.Show();
    stage.View().SetDisplayCallback(callback);
    const auto draw = [&](int state) {
        refused = state;
        calls.clear();
        return Picture(stage.View().CreateBitmapFromScene());
    };
    const Picture whole = draw(-1);
    EXPECT_EQ(calls, (std::vector<Call>{{DISPLAY_PASS_BEGIN, 4},
                                        {DISPLAY_NODE, 4},
                                        {DISPLAY_PASS_END, 4},
                                        {DISPLAY_OVERLAY_BEGIN, 4},
                                        {DISPLAY_OVERLAY_NODE, 4},
                                        {DISPLAY_OVERLAY_END, 4},
                                        {DISPLAY_PASS_BEGIN, 1},
                                        {DISPLAY_NODE, 1},
                                        {DISPLAY_PASS_END, 1},
                                        {DISPLAY_OVERLAY_BEGIN, 1},
                                        {DISPLAY_OVERLAY_NODE, 1},
                                        {DISPLAY_OVERLAY_END, 1}}));
    EXPECT_GT(Coverage(*whole), 0.4);
    EXPECT_EQ(Coverage(*draw(DISPLAY_NODE)), 0);
    EXPECT_EQ(Coverage(*draw(DISPLAY_PASS_BEGIN)), 0);
    EXPECT_EQ(calls.size(), 8U) << "a refused pass has no end, and its overlay comes all the same";

    // Groups, of which nothing is drawn, are a host's to draw; wires have their pass where there are none.
    C3DSceneNode* const group = stage.AddObject(C3DBaseObject::Create(OBJECT_GROUP));
    stage.Settings().viewFlags = VIEWFLAG_SMOOTH;
    stage.Show();
    static int groups;
    groups = 0;
    stage.View().SetCallbackData(group);
    stage.View().SetDisplayCallback([](C3DSceneNode* node, glCallbackDisplayState state, unsigned int mode, void* data) {
        calls.push_back({state, mode});
        groups += node == data;
        return 1;
    });
    draw(-1);
    EXPECT_EQ(groups, 2);
    EXPECT_EQ(std::ranges::count(calls, Call{DISPLAY_OVERLAY_NODE, 4}), 2);
    EXPECT_EQ(std::ranges::count(calls, Call{DISPLAY_OVERLAY_NODE, 1}), 2);
    EXPECT_EQ(std::ranges::count(calls, Call{DISPLAY_NODE, 1}), 1);
}

TEST(Passes, AHostRefusesNodesAndFacesAndCompilesLists)
{
    CStage stage;
    stage.AddMesh({{-1, -1, 0}, {0, -1, 0}, {1, -1, 0}, {1, 1, 0}, {0, 1, 0}, {-1, 1, 0}}, {{0, 1, 4, 5}, {1, 2, 3, 4}},
                  stage.AddMaterial(GREEN));
    C3DView& view = stage.View();
    view.SetFaceCallback([](_RenderElement* element) { return element->faceNumber == 0 ? FACE_RESULT_SKIP : FACE_RESULT_NORMAL; });
    EXPECT_NEAR(Coverage(*stage.Draw()), 0.25, 0.02);
    view.SetFaceCallback([](_RenderElement* element) {
        return static_cast<_FACE_RESULT>(element->faceNumber == 0 ? FACE_RESULT_NORMAL | FACE_RESULT_SELECTION : FACE_RESULT_NORMAL);
    });
    const Picture picked = stage.Draw();
    EXPECT_NEAR(CountPixels(*picked, IsRed), CountPixels(*picked, IsGreen), 64);
    view.SetFaceCallback([](_RenderElement*) { return static_cast<_FACE_RESULT>(FACE_RESULT_NORMAL | FACE_RESULT_STIPPLED); });
    EXPECT_NEAR(Coverage(*stage.Draw()), 0.25, 0.02);
    view.SetFaceCallback(nullptr);
    EXPECT_NEAR(Coverage(*stage.Draw()), 0.5, 0.03) << "no stipple stays";

    view.SetBeginNodeCallback([](_RenderElement*, _CallListType&, void*) { return 0; });
    EXPECT_EQ(Coverage(*stage.Draw()), 0);
    // Compiled as another list, which nobody draws until the host does.
    view.SetBeginNodeCallback([](_RenderElement*, _CallListType& type, void*) {
        type = static_cast<_CallListType>(0x100);
        return 1;
    });
    EXPECT_EQ(Coverage(*stage.Draw()), 0);
    view.SetCallbackData(&view);
    view.SetDisplayCallback([](C3DSceneNode* node, glCallbackDisplayState state, unsigned int, void* data) {
        if (state == DISPLAY_OVERLAY_NODE)
            static_cast<C3DView*>(data)->DrawCallList(node, static_cast<_CallListType>(0x100));
        return 1;
    });
    EXPECT_NEAR(Coverage(*stage.Draw()), 0.5, 0.03);
}

TEST(Passes, AnEmptySceneGivesTheBackground)
{
    CStage stage;
    stage.Settings().background = {10, 20, 30};
    const Picture picture = stage.Draw();
    EXPECT_EQ(CountPixels(*picture, [](const unsigned char* p) { return p[0] == 10 && p[1] == 20 && p[2] == 30; }), 64 * 64);
}
