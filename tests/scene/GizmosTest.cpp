#include <gtest/gtest.h>

#include "scene/Camera.h"
#include "scene/Light.h"
#include "scene/SceneBuilders.h"
#include "support/Checksum.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Surface.h"

namespace {

/// Points and faces of what is drawn for an object.
struct Gizmo {
    std::vector<Vec> points;
    FaceCorners faces;
    explicit Gizmo(C3DBaseObject& owner)
    {
        const C3DGeomObject* object = *owner.GetFinalObject(false);
        points = AllPoints(*object->GetPointList());
        CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
        faces = AllCorners(*object->GetFaceList());
    }
    /// Of all points, in hundredths, and all corners.
    std::uint64_t Sum() const
    {
        Checksum sum;
        for (const Vec& point : points)
            for (const double value : point)
                sum.Add(std::lround(100 * value));
        sum.Add(faces);
        return sum.Get();
    }
};

CRef<C3DLight> MakeLight(int kind)
{
    C3DLight* light = new C3DLight;
    light->SetLightKind(kind);
    return CRef<C3DLight>(light);
}

}

TEST(Gizmos, HaveTheirShapes)
{
    // The sums were written down while parts were closed, looked outward and had the volumes and radii of boxes, cones, discs and balls.
    const CRef<C3DCamera> camera(new C3DCamera);
    camera->SetFov(2 * std::atan(0.25));    // 50 wide and 25 high, 100 away
    camera->SetAspectRatio(2);
    const struct {
        const char* name;
        Gizmo gizmo;
        std::size_t points, faces;
        std::uint64_t sum;
    } rows[] = {
        {"camera", Gizmo(*camera), 67, 41, 0x9706116FB9AE8AEFu},
        {"directional", Gizmo(*MakeLight(LIGHT_DIRECTIONAL)), 70, 44, 0xF10E31E669A9CF2Du},
        {"omni", Gizmo(*MakeLight(LIGHT_OMNI)), 77, 72, 0x32DB6B2361BA1F6Cu},
        {"spot", Gizmo(*MakeLight(LIGHT_SPOT)), 86, 60, 0x3BB6A05761785664u},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.gizmo.points.size(), row.points);
        EXPECT_EQ(row.gizmo.faces.size(), row.faces);
        EXPECT_EQ(row.gizmo.Sum(), row.sum);
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
