#include <gtest/gtest.h>

#include "scene/Camera.h"
#include "scene/Dummy.h"
#include "scene/Light.h"
#include "scene/SceneBuilders.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Surface.h"

namespace {

/// Points and faces of what is drawn for an object.
struct Gizmo {
    std::vector<Vec> points;
    FaceCorners triangles, quads;

    explicit Gizmo(C3DBaseObject& owner)
    {
        const C3DGeomObject* object = *owner.GetFinalObject(false);
        points = AllPoints(*object->GetPointList());
        CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
        for (const auto& face : AllCorners(*object->GetFaceList()))
            (face.size() == 3 ? triangles : quads).push_back(face);
    }
    /// The faces whose corners lie between two points.
    FaceCorners Part(int first, int last) const
    {
        FaceCorners part;
        for (const auto* faces : {&triangles, &quads})
            for (const auto& face : *faces)
                if (std::ranges::all_of(face, [&](int corner) { return first <= corner && corner <= last; }))
                    part.push_back(face);
        return part;
    }
};

CRef<C3DLight> MakeLight(int kind)
{
    C3DLight* light = new C3DLight;
    light->SetLightKind(kind);
    return CRef<C3DLight>(light);
}

/// Whether a point is one of those of a ball: on an axis, between two, or in the middle of an octant.
bool IsOnBall(const Vec& p, double radius, double edge, double face)
{
    int axes = 0;
    double size = 0;
    for (const double c : p)
        if (c != 0) {
            axes++;
            size = std::fabs(c);
        }
    const double wanted = axes == 1 ? radius : axes == 2 ? edge : face;
    return axes && std::fabs(size - wanted) < 1e-4 && std::fabs(Dot(p, p) - axes * wanted * wanted) < 1e-1;
}

}

TEST(Gizmos, OfACameraAreClosedPartsThatLookOutward)
{
    const CRef<C3DCamera> camera(new C3DCamera);
    camera->SetFov(2 * std::atan(0.25));    // 50 wide and 25 high, 100 away
    camera->SetAspectRatio(2);
    const Gizmo gizmo(*camera);
    ASSERT_EQ(gizmo.points.size(), 67u);
    EXPECT_EQ(gizmo.triangles.size(), 4u);
    EXPECT_EQ(gizmo.quads.size(), 37u);

    const struct {
        const char* name;
        int first, last;
        std::size_t faces;
        double volume;
    } rows[] = {
        {"neck", 0, 7, 6, 60.0 * 20 * 60},
        {"body", 8, 19, 10, 100.0 * 200 * 100},
        {"view", 20, 24, 5, 50.0 * 25 * 100 / 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const FaceCorners part = gizmo.Part(row.first, row.last);
        EXPECT_EQ(part.size(), row.faces);
        EXPECT_TRUE(IsClosed(part));
        EXPECT_NEAR(VolumeOf(gizmo.points, part), row.volume, 1e-3 * row.volume);
    }
    const FaceCorners reels = gizmo.Part(25, 66);
    EXPECT_EQ(reels.size(), 20u);
    for (const auto& face : reels) {
        const Vec middle = MiddleOf(gizmo.points, face);
        const Vec centre = middle[1] < -114.4 ? Vec{0, -150, 90} : Vec{0, -60, 100};
        EXPECT_GT(Dot(NormalOf(gizmo.points, face), middle - centre), 0) << middle[1] << ' ' << middle[2];
        const double length = std::sqrt(Dot(middle - centre, middle - centre));
        EXPECT_NEAR(length, centre[1] == -150 ? 50 : 60, 1.3) << middle[1] << ' ' << middle[2];    // chords lie inside the circle
    }
}

TEST(Gizmos, OfLightsHaveTheirSizesAndLookOutward)
{
    const struct {
        const char* name;
        int kind;
        std::size_t points, triangles, quads;
        std::size_t discs[3];    // triangles that look along +x, +y, +z
        double radius, edge, face;
        std::size_t patches;
    } rows[] = {
        {"directional", LIGHT_DIRECTIONAL, 70, 16, 28, {0, 16, 0}, 58.3333, 41.6667, 33.3333, 12},
        {"omni", LIGHT_OMNI, 77, 48, 24, {16, 16, 16}, 43.3013, 32.476, 24.0563, 24},
        {"spot", LIGHT_SPOT, 86, 32, 28, {8, 16, 8}, 58.3333, 41.6667, 33.3333, 12},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DLight> light = MakeLight(row.kind);
        const Gizmo gizmo(*light);
        ASSERT_EQ(gizmo.points.size(), row.points);
        EXPECT_EQ(gizmo.triangles.size(), row.triangles);
        ASSERT_EQ(gizmo.quads.size(), row.quads);

        // Discs: a sixteenth each, of radius 100, flat, and halves below the origin.
        std::size_t discs[3] = {};
        for (const auto& face : gizmo.triangles) {
            const Vec normal = NormalOf(gizmo.points, face);
            const int axis = normal[0] != 0 ? 0 : normal[1] != 0 ? 1 : 2;
            EXPECT_NEAR(normal[axis], 1e4 * 0.38268343, 0.5);
            EXPECT_NEAR(Dot(normal, normal), normal[axis] * normal[axis], 1e-3);
            EXPECT_TRUE(row.discs[axis] == 16 || MiddleOf(gizmo.points, face)[1] < 0);
            discs[axis]++;
        }
        EXPECT_TRUE(std::ranges::equal(discs, row.discs));

        // The ball, then a tube or a cone, away from what they go around.
        FaceCorners ball;
        for (std::size_t i = 0; i < row.quads; i++) {
            const auto& face = gizmo.quads[i];
            Vec away = MiddleOf(gizmo.points, face);
            if (std::ranges::all_of(face, [&](int c) { return IsOnBall(gizmo.points[c], row.radius, row.edge, row.face); }))
                ball.push_back(face);
            else
                away[1] = 0;
            EXPECT_GT(Dot(NormalOf(gizmo.points, face), away), 0) << i;
        }
        EXPECT_EQ(ball.size(), row.patches);
        EXPECT_EQ(IsClosed(ball), row.kind == LIGHT_OMNI);
    }
}

TEST(Gizmos, BeamsGoAlongYAndAConeFollowsItsAngle)
{
    // A cone opens by half the outer angle to each side: 200 tan(pi / 12) for a new spot.
    const struct {
        int kind;
        double angle, radius;
    } rows[] = {{LIGHT_DIRECTIONAL, -1, 20}, {LIGHT_SPOT, -1, 53.58984}, {LIGHT_SPOT, std::numbers::pi / 2, 200}};
    for (const auto& row : rows) {
        const CRef<C3DLight> light = MakeLight(row.kind);
        if (row.angle > 0)
            light->SetOuterAngle(row.angle);
        std::set<std::pair<int, int>> ring;
        for (const Vec& p : Gizmo(*light).points)
            if (p[1] == 200) {
                EXPECT_NEAR(std::hypot(p[0], p[2]), row.radius, 1e-5 * row.radius);
                ring.emplace(std::lround(p[0] * 100), std::lround(p[2] * 100));
            }
        EXPECT_EQ(ring.size(), 16u);
    }
}

TEST(Gizmos, AreMadeOnceAndNeverShared)
{
    const CRef<C3DLight> light = MakeLight(7);
    EXPECT_EQ(light->GetFinalObject(false), nullptr);
    light->SetLightKind(LIGHT_OMNI);
    C3DBaseObject* const display = light->GetFinalObject(false);
    ASSERT_NE(display, nullptr);
    light->SetLightKind(LIGHT_SPOT);
    light->Invalidate(0xFFFF, true);
    EXPECT_EQ(light->GetFinalObject(true), display);    // nothing is handed over

    // Every way of copying takes the parameters, and the copy makes a gizmo of its own by them.
    const CRef<C3DBaseObject> copy(light->Copy(0, nullptr)), copied(new C3DLight(*light));
    for (C3DBaseObject* other : {static_cast<C3DBaseObject*>(copy), static_cast<C3DBaseObject*>(copied)}) {
        EXPECT_TRUE(other->IsFlagSet(OBJECT_WIREFRAME_ONLY));
        EXPECT_NE(other->GetFinalObject(false), display);
        EXPECT_EQ(Gizmo(*other).points.size(), 86u);
    }
    const CRef<C3DCamera> camera(new C3DCamera), second(new C3DCamera(*camera));
    EXPECT_EQ(camera->GetFinalObject(false), camera->GetFinalObject(false));
    EXPECT_NE(camera->GetFinalObject(false), second->GetFinalObject(false));
}

TEST(Gizmos, CountAndMeasureInAScene)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* first = AddNode(*scene, nullptr, L"a", OBJECT_CAMERA);
    AddNode(*scene, first, L"b", OBJECT_CAMERA);
    AddNode(*scene, nullptr, L"c", OBJECT_LIGHT);
    AddNode(*scene, nullptr, L"d", OBJECT_DUMMY);
    EXPECT_EQ(scene->GetPointNbr(), 67 + 67 + 70);
    EXPECT_EQ(scene->GetFaceNbr(), 41 + 41 + 44);

    C3DTPoint<float> min, max;
    ASSERT_TRUE(first->GetBoundingBox(0, min, max, BOX_FACES | BOX_NODE_ONLY));
    EXPECT_EQ(min.y, -200);
    EXPECT_EQ(max.z, 160);
}

TEST(Cameras, ParametersAreKeysWithDefaults)
{
    const CRef<C3DCamera> camera(new C3DCamera);
    EXPECT_TRUE(camera->GetCustomData().IsEmpty());
    EXPECT_EQ((std::vector{camera->GetAperture(), camera->GetAspectRatio(), camera->GetFarClip(), camera->GetNearClip(),
                           camera->GetFocusDistance(), camera->GetFov(), camera->GetZoom()}),
              (std::vector{8.0, 1.0, 1000.0, 0.001, 0.0, 45.0, 1.0}));
    EXPECT_EQ(camera->GetProjection(), 0);
    EXPECT_EQ(camera->GetTarget(), -1);
    EXPECT_FALSE(camera->HasTarget());

    camera->Invalidate(0xFFFF, false);
    const unsigned int update = camera->GetUpdateFlags();
    camera->SetTarget(-1);
    camera->SetNearFarClip(2, 3);
    EXPECT_TRUE(camera->HasTarget());
    EXPECT_TRUE(camera->IsDefined(FourCC("canc")));
    EXPECT_EQ(camera->GetNearClip(), 2);
    EXPECT_EQ(camera->GetFarClip(), 3);
    EXPECT_EQ(camera->GetUpdateFlags(), update);

    // 8, 45 and 1 have no low bits. 0.1 is 0x3FB999999999999A, twice that and a third one more step up.
    const unsigned int low = 0x9999999A;
    EXPECT_EQ(camera->GetChecksum(0), 0u);
    camera->SetFov(0.1);
    camera->SetAspectRatio(0.2);
    camera->SetZoom(0.4);
    camera->SetAperture(-0.0);
    camera->SetProjection(3);
    EXPECT_EQ(camera->GetChecksum(0xFFFFFFFF), 3 * low + 48);
}

TEST(Lights, ParametersAreKeysWithDefaults)
{
    const CRef<C3DLight> light(new C3DLight);
    EXPECT_TRUE(light->GetCustomData().IsEmpty());
    EXPECT_EQ(light->GetLightKind(), LIGHT_DIRECTIONAL);
    EXPECT_EQ(light->GetColor(), CRGBColor());
    EXPECT_EQ(light->GetIntensity(), 1);
    EXPECT_NEAR(light->GetOuterAngle(), std::numbers::pi / 6, 1e-15);

    light->SetColor(CRGBColor(1, 2, 3, 4));
    unsigned int size;
    ASSERT_NE(light->GetCustomData().GetData(FourCC("lclr"), size), nullptr);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(light->GetColor(), CRGBColor(1, 2, 3, 4));
    light->SetInnerRadius(5);
    light->SetOuterRadius(6);
    EXPECT_EQ(light->GetOuterRadius(), 6);
    light->ClearAttenuation();
    EXPECT_EQ(light->GetInnerRadius(), 0);
    EXPECT_FALSE(light->GetCustomData().HasData(FourCC("lour")));
}

TEST(Dummies, HaveAType)
{
    const CRef<C3DDummy> dummy(new C3DDummy);
    EXPECT_EQ(dummy->GetType(), 0x564F4944u);
    dummy->SetType(FourCC("BONE"));
    EXPECT_EQ(dummy->GetType(), FourCC("BONE"));
    EXPECT_EQ(dummy->GetChecksum(0xFFFFFFFF), 0u);
}
