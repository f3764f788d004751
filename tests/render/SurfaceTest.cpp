// Faces of an object in its lists: which are drawn, in what material, from which side.

#include "channels/NormalFaceList.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DVectorList.h"
#include "render/ViewCase.h"
#include "scene/Patch.h"
#include "scene/Primitives.h"

static constexpr CRGBColor RED{255, 0, 0}, GREEN{0, 255, 0}, BLUE{0, 0, 255};

/// A square fills half of the picture whose width is its diagonal.
static constexpr double HALF = 0.5;

TEST(Surfaces, CoverWhatTheyProjectTo)
{
    // Faults in mind: a polygon cut wrongly, a face left out or drawn twice over a hole, dead faces drawn, corners beyond the points.
    const std::vector<XYZ> l{{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}};
    const struct {
        const char* name;
        std::vector<XYZ> points;
        std::vector<std::vector<int>> faces;
        double coverage;    // area over the square of the box's diagonal
    } rows[] = {
        {"quad", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2, 3}}, 0.5},
        {"L of six corners", l, {{0, 1, 2, 3, 4, 5}}, 5.0 / 18},
        {"L that begins in its notch", l, {{3, 4, 5, 0, 1, 2}}, 5.0 / 18},
        {"a corner that is no point", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {2, 3, 99}, {-7, 1, 2}}, 0.25},
        {"fewer than three corners", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {2, 3}, {1}}, 0.25},
    };
    for (const auto& row : rows)
        for (const unsigned int mode : {VIEWFLAG_FLAT, VIEWFLAG_SMOOTH}) {
            SCOPED_TRACE(row.name);
            CStage stage(96, 96);
            stage.Settings().viewFlags = mode;
            stage.AddMesh(row.points, row.faces);
            EXPECT_NEAR(Coverage(*stage.Draw()), row.coverage, 0.02);
        }
}

TEST(Surfaces, LeaveOutWhatIsDeadOrHidden)
{
    const struct {
        const char* name;
        unsigned int faceFlags, viewFlags;
        double part;
    } rows[] = {
        {"live", 0, 0, 1},
        {"invalid", FACE_INVALID, 0, 0},
        {"hidden", VIEW_FACE_HIDDEN, 0, 0},
        {"hidden, shown half", VIEW_FACE_HIDDEN, VIEWFLAG_HIDDEN_STIPPLED, 0.5},
        {"marked", VIEW_FACE_MARKED, VIEWFLAG_MARKED_ONLY, 1},
        {"sided but not marked", VIEW_FACE_TWO_SIDED, VIEWFLAG_MARKED_ONLY, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CStage stage;
        stage.Settings().viewFlags |= row.viewFlags;
        C3DFaceList& faces = *stage.AddSquare(0, 0, 0)->GetGeomObject()->GetFaceList();
        C3DFace face;
        faces.GetFace(0, face);
        face.SetFlags(row.faceFlags, true);
        EXPECT_NEAR(Coverage(*stage.Draw()), HALF * row.part, 0.03);
    }
}

TEST(Surfaces, AreCulledByViewObjectAndFace)
{
    // A square that looks up, seen from below.
    const struct {
        const char* name;
        unsigned int viewFlags;
        _faceModeEnum mode;
        unsigned int faceFlags;
        bool seen;
    } rows[] = {
        {"nothing said", 0, FACE_MODE_VIEW, 0, true},
        {"the view culls", VIEWFLAG_CULL_BACK, FACE_MODE_VIEW, 0, false},
        {"the object alone culls", 0, FACE_MODE_ONE_SIDED, 0, false},
        {"the face does not", VIEWFLAG_CULL_BACK, FACE_MODE_VIEW, VIEW_FACE_TWO_SIDED, true},
    };
    for (const auto& row : rows)
        for (const unsigned int mode : {VIEWFLAG_FLAT, VIEWFLAG_SMOOTH}) {
            SCOPED_TRACE(row.name);
            CStage stage;
            stage.Settings().viewFlags = mode | row.viewFlags;
            stage.Settings().viewNumber = RVIEW_BOTTOM;
            const unsigned int red = stage.AddMaterial(RED);
            C3DSceneNode* const node =
                stage.AddMesh({{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {3, 1, 0}, {3, -1, 0}}, {{0, 1, 2, 3}, {1, 2, 4, 5}}, red);
            node->GetGeomObject()->SetFaceMode(row.mode);
            C3DFace face;
            node->GetGeomObject()->GetFaceList()->GetFace(0, face);
            face.SetFlags(row.faceFlags, true);
            // The second face looks down and is seen in any case; the first one's culling does not stay with it.
            const double both = 8.0 / 20;
            EXPECT_NEAR(Coverage(*stage.Draw()), row.seen ? both : both / 2, 0.02);

            // The lists are good for views that cull and for those that do not.
            stage.Settings().viewFlags ^= VIEWFLAG_CULL_BACK;
            stage.View().SetViewSettings(&stage.Settings());
            stage.View().UpdateView(0);
            const double changed = Coverage(*Picture(stage.View().CreateBitmapFromScene()));
            EXPECT_NEAR(changed, Coverage(*stage.Draw()), 0.001);
        }
}

TEST(Surfaces, ShowBackMaterialsFromBehind)
{
    CStage stage;
    const unsigned int red = stage.AddMaterial(RED), green = stage.AddMaterial(GREEN);
    C3DFaceList& faces =
        *stage.AddMesh({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}, {0, 2, 0}, {2, 2, 0}}, {{0, 1, 2, 3}, {3, 2, 5, 4}}, red)
             ->GetGeomObject()
             ->GetFaceList();
    faces.SetBackFaceMaterial(0, green);    // the other face has none: red from both sides
    for (const unsigned int mode : {+VIEWFLAG_FLAT, +VIEWFLAG_SMOOTH, VIEWFLAG_SMOOTH | VIEWFLAG_CULL_BACK}) {
        if (mode & VIEWFLAG_CULL_BACK) {    // two sides that each have their material are two already
            C3DFace face;
            faces.GetFace(0, face);
            face.SetFlags(VIEW_FACE_TWO_SIDED, true);
        }
        stage.Settings().viewFlags = mode;
        stage.Settings().viewNumber = RVIEW_TOP;
        const Picture front = stage.Draw();
        EXPECT_EQ(CountPixels(*front, IsGreen), 0);
        EXPECT_NEAR(Coverage(*front), HALF, 0.03);
        stage.Settings().viewNumber = RVIEW_BOTTOM;
        const Picture back = stage.Draw();
        EXPECT_NEAR(CountPixels(*back, IsGreen), CountPixels(*back, IsRed), 64);
        EXPECT_NEAR(Coverage(*back), HALF, 0.03);
    }
}

TEST(Surfaces, AreLitOnTheSideThatIsSeenWhateverTheirNormalsSay)
{
    // Given normals that look up or down, and corners that go round either way, seen from above and from below.
    for (const auto view : {RVIEW_TOP, RVIEW_BOTTOM})
        for (const bool buffered : {true, false})
            for (const bool clockwise : {false, true}) {
                int light[2];
                for (const bool up : {true, false}) {
                    CStage stage;
                    stage.Settings().viewFlags = VIEWFLAG_SMOOTH | VIEWFLAG_SPEC_NORMALS;
                    stage.Settings().viewNumber = view;
                    const std::vector<int> corners = clockwise ? std::vector{3, 2, 1, 0} : std::vector{0, 1, 2, 3};
                    C3DSceneNode* const node =
                        stage.AddMesh({{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}, {corners}, stage.AddMaterial(RED));
                    auto* const given = new CSpecNormalChannel;
                    given->GetNormalVectorList()->SetSize(1, true, -1);
                    *given->GetNormalVectorList()->ElementAt(0) = C3DTVector<float>(0, 0, up ? 1.0f : -1.0f);
                    AddFaces(*given->GetNormalFaceList(), {{0, 0, 0, 0}});
                    given->SetFlag(CHANNEL_STALE, false);
                    node->GetGeomObject()->AddChannel(given);
                    if (!buffered)
                        stage.View().SetPointMaterialCallback([](_RenderElement*) { return 0; });
                    light[up] = stage.Draw()->GetLine(32)[3 * 32];
                }
                EXPECT_GT(light[0], 150) << view << buffered << clockwise;
                EXPECT_EQ(light[0], light[1]) << view << buffered << clockwise;
            }
}

TEST(Surfaces, ManyMaterialsInAnyOrderKeepTheirFaces)
{
    // A checker of 8 by 8 squares in three colours, scattered over the list.
    CStage stage(128, 128);
    const unsigned int ids[] = {stage.AddMaterial(RED), stage.AddMaterial(GREEN), stage.AddMaterial(BLUE)};
    Mesh grid = QuadGrid(8);
    for (int face = 0; face < 64; face++)
        grid.faces->SetFaceMaterial(face, ids[face * 7 % 3]);
    stage.AddObject(new C3DObject(std::exchange(grid.points, nullptr), std::exchange(grid.faces, nullptr), nullptr));
    const Picture picture = stage.Draw();
    const double side = 128 / std::sqrt(2.0) / 8, corner = 64 - 4 * side;
    for (int face = 0; face < 64; face++) {
        const int x = static_cast<int>(corner + (face % 8 + 0.5) * side), y = static_cast<int>(128 - corner - (face / 8 + 0.5) * side);
        const unsigned char* const pixel = picture->GetLine(y) + 3 * x;
        EXPECT_TRUE((face * 7 % 3 == 0 ? IsRed : face * 7 % 3 == 1 ? IsGreen : IsBlue)(pixel)) << face;
    }
}

TEST(Surfaces, TransparentOnesBlendOverWhatIsBehind)
{
    // Faults in mind: transparent faces drawn first, written to depth before what is behind them, or lost with opaque ones in one object.
    const auto pixelOf = [](const Picture& picture) {
        const unsigned char* const pixel = picture->GetLine(32) + 3 * 32;
        return std::array<int, 3>{pixel[0], pixel[1], pixel[2]};
    };
    const auto draw = [&](float transparency, bool behind, bool front) {
        CStage stage;
        stage.Settings().viewFlags |= VIEWFLAG_TRANSPARENCY;
        const unsigned int red = stage.AddMaterial(RED), blue = stage.AddMaterial(BLUE);
        stage.Scene().GetMaterialByID(red)->SetTransparencyFactor(0, transparency);
        C3DSceneNode* const node =
            stage.AddMesh({{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}, {-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}},
                          {{0, 1, 2, 3}, {4, 5, 6, 7}}, red);
        node->GetGeomObject()->GetFaceList()->SetFaceMaterial(1, blue);
        C3DFace face;
        for (const auto& [index, shown] : {std::pair{0, front}, std::pair{1, behind}})
            if (node->GetGeomObject()->GetFaceList()->GetFace(index, face))
                face.SetFlags(FACE_EMPTY, !shown);
        return pixelOf(stage.Draw());
    };
    const auto red = draw(0, false, true), blue = draw(0, true, false), both = draw(0.4f, true, true);
    EXPECT_LE(std::abs(draw(0, true, true)[2] - red[2]), 1);
    for (int i = 0; i < 3; i++)
        EXPECT_NEAR(both[i], 0.6 * red[i] + 0.4 * blue[i], 3);
}

TEST(Surfaces, OfAPatchAreThoseOfItsLevel)
{
    // A cube, which the scheme makes a ball that lies inside.
    CStage stage;
    Mesh mesh = Cube();
    auto* const patch = new C3DPatch(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr);
    patch->SetLevel(0);
    stage.AddObject(patch);
    stage.AddMesh({{-1, -1, -1}, {-1, -0.999f, -1}, {1, 1, 1}}, {{0, 1, 2}});    // keeps the box as it is
    const double flat = Coverage(*stage.Draw());
    EXPECT_NEAR(flat, 4.0 / 12, 0.03);
    patch->SetLevel(3);
    patch->Invalidate(OBJECT_UPDATE_DISPLAY, true);
    stage.View().UpdateView(GLSET_UPDATE);
    const double round = Coverage(*Picture(stage.View().CreateBitmapFromScene()));
    EXPECT_LT(round, flat - 0.05);
    EXPECT_GT(round, flat / 3);
    // Back again: what was compiled for the former surface is gone.
    patch->SetLevel(0);
    patch->Invalidate(OBJECT_UPDATE_DISPLAY, true);
    stage.View().UpdateView(GLSET_UPDATE);
    EXPECT_NEAR(Coverage(*Picture(stage.View().CreateBitmapFromScene())), flat, 0.001);
}

TEST(Surfaces, AreSentAgainWhenTheyChange)
{
    CStage stage;
    C3DSceneNode* const node = stage.AddSquare(0, 0, 0);
    stage.AddMesh({{-1, -1, 0}, {-1, -0.999f, 0}, {1, 1, 0}}, {{0, 1, 2}});    // keeps the box as it is
    EXPECT_NEAR(Coverage(*stage.Draw()), HALF, 0.03);
    C3DGeomObject& object = *node->GetGeomObject();
    for (int i : {2, 3})
        object.GetPointList()->ElementAt(i)->y = 0;
    object.Invalidate(CHANGE_POINTS, true);
    object.Invalidate(OBJECT_UPDATE_DISPLAY, true);
    stage.View().UpdateView(0);
    EXPECT_NEAR(Coverage(*Picture(stage.View().CreateBitmapFromScene())), HALF, 0.03) << "before it is asked for, nothing is sent";
    stage.View().UpdateView(GLSET_UPDATE);
    EXPECT_NEAR(Coverage(*Picture(stage.View().CreateBitmapFromScene())), HALF / 2, 0.03);
}

TEST(Surfaces, AreTheSameFromVertexBuffersAndFromGLsOwnLists)
{
    // A host's callback of faces or corners, even one that changes nothing, has GL compile the corners one by one.
    for (const unsigned int mode : {1, 2, 3, 4, 5}) {
        CStage stage(128, 128);
        stage.Settings().viewFlags = mode | VIEWFLAG_VERTEX_COLORS | VIEWFLAG_TRANSPARENCY | VIEWFLAG_HIDDEN_STIPPLED;
        stage.Settings().viewNumber = RVIEW_LEFT_TOP_FRONT;
        const unsigned int red = stage.AddMaterial(RED), green = stage.AddMaterial(GREEN), blue = stage.AddMaterial(BLUE);
        stage.Scene().GetMaterialByID(blue)->SetTransparencyFactor(0, 0.5f);
        for (const bool colored : {false, true}) {
            C3DSceneNode* const node = CreateSphere({colored ? 2.f : 0, 0, 0}, 1, 12, 16, false, red, 0);
            stage.Scene().AddNode(nullptr, node);
            C3DFaceList& faces = *node->GetGeomObject()->GetFaceList();
            for (int i = 0; i < faces.GetSize(); i++) {
                faces.SetFaceMaterial(i, i % 3 == 0 ? red : i % 3 == 1 ? green : blue);
                C3DFace face;
                faces.GetFace(i, face);
                face.SetFlags(i % 7 == 0 ? VIEW_FACE_HIDDEN : i % 5 == 0 ? +VIEW_FACE_ONE_SIDED : 0U, true);
            }
            faces.SetBackFaceMaterial(3, green);
            if (colored)
                AddColors(*node->GetGeomObject());
        }
        const Picture buffers = stage.Draw();
        stage.View().SetPointMaterialCallback([](_RenderElement*) { return 0; });
        const Picture lists = stage.Draw();
        EXPECT_GT(Coverage(*buffers), 0.02);
        for (int y = 0; y < 128; y++)
            ASSERT_EQ(std::memcmp(buffers->GetLine(y), lists->GetLine(y), 128 * 3), 0) << mode << ' ' << y;
    }
}
