#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "scene/Primitives.h"
#include "scene/SceneBuilders.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Surface.h"

namespace {

constexpr double PI = std::numbers::pi;
const C3DTPoint<float> ORIGIN, CENTRE(10, 20, 30);

/// A new node that goes with the test, and what is in its object.
struct Solid {
    explicit Solid(C3DSceneNode* node_) : node(node_)
    {
        EXPECT_NE(node, nullptr);
        object = *node->GetBaseObject();
        points = AllPoints(*object->GetPointList());
        faces = AllCorners(*object->GetFaceList());
        CheckConsistent(*object->GetFaceList(), object->GetPointNbr());
        if ((uvw = static_cast<CUVWChannel*>(object->GetChannelByIndex(0, CHANNEL_UVW, false)))) {
            CheckConsistent(*uvw->GetFaceList(), uvw->GetPointList()->GetSize());
            EXPECT_EQ(uvw->GetFaceList()->GetSize(), object->GetFaceNbr());
        }
    }
    ~Solid() { node->Delete(); }
    std::vector<float> UVW(int i) const { return {(*uvw->GetUVWPointList())[i]->u, (*uvw->GetUVWPointList())[i]->v}; }

    C3DSceneNode* node;
    C3DObject* object;
    CUVWChannel* uvw = nullptr;
    std::vector<Vec> points;
    FaceCorners faces;
};

C3DSceneNode* Cube(bool hasUVW) { return CreateCube(CENTRE, 2, 4, 6, hasUVW, 7, 20); }
C3DSceneNode* Capsule(float length, unsigned int S, unsigned int C, unsigned int B, _AXIS_INFO axis)
{
    return CreateCapsule(CENTRE, 1, length, S, C, B, axis, 0, 7, 0);
}

}

TEST(Primitives, HaveTheirNumbersNameMaterialAndChannel)
{
    const struct {
        const wchar_t* name;
        C3DSceneNode* node;
        std::size_t points, faces;
        bool uvw;
    } rows[] = {
        {L"Cube", Cube(false), 8, 6, false},
        {L"Cube", Cube(true), 8, 6, true},
        {L"Plane", CreatePlane(CENTRE, {0, 0, 1}, 1, 1, 3, 2, true, 7, 20), 12, 6, true},
        {L"Sphere", CreateSphere(CENTRE, 1, 2, 4, true, 7, 20), 15, 20, true},
        {L"Cylinder", CreateCylinder(CENTRE, 1, 1, 4, 2, false, true, 7, 20), 15, 20, true},
        {L"Cylinder", CreateCylinder(CENTRE, 1, 1, 4, 2, true, true, 7, 20), 27, 28, true},
        {L"Cone", CreateCone(CENTRE, 1, 1, 4, 2, true, 7, 20), 21, 20, true},
        {L"Cone", CreateCone(CENTRE, 1, 1, 1, 1, false, 7, 20), 7, 3, false},
        {L"Capsule", Capsule(4, 5, 2, 3, AXIS_Y), 32, 35, false},
        {L"Capsule", Capsule(4, 5, 2, 0, AXIS_Y), 22, 25, false},
        {L"Capsule", Capsule(4, 1, 1, 1, AXIS_Y), 4, 3, false},
    };
    for (const auto& row : rows) {
        const Solid solid(row.node);
        SCOPED_TRACE(testing::Message() << row.name << ' ' << row.points);
        EXPECT_EQ(solid.node->GetName(), row.name);
        EXPECT_EQ(solid.node->GetScene(), nullptr);
        EXPECT_EQ(solid.node->GetParent(), nullptr);
        EXPECT_EQ(solid.points.size(), row.points);
        EXPECT_EQ(solid.faces.size(), row.faces);
        for (std::size_t i = 0; i < solid.faces.size(); i++)
            EXPECT_EQ(solid.object->GetFaceList()->GetFaceMaterial(i), 7u);
        ASSERT_EQ(solid.uvw != nullptr, row.uvw);
        EXPECT_TRUE(!row.uvw || solid.uvw->GetChannelID() == 20);
        EXPECT_EQ(solid.node->GetKeyNbr(KEY_PIVOT), row.name == std::wstring(L"Capsule") ? 1 : 0);
        if (row.uvw && row.name != std::wstring(L"Cube")) {
            EXPECT_EQ(AllCorners(*solid.uvw->GetFaceList()), solid.faces);
            EXPECT_EQ(solid.uvw->GetPointList()->GetSize(), solid.object->GetPointNbr());
        }
    }
}

TEST(Primitives, LookOutwardAndAreClosed)
{
    // Welded at the seam and the poles, and without what has no area. Volumes of the polyhedra where they are simple, of the round solids
    // within some percents elsewhere.
    const double octagon = 4 * std::sin(PI / 4);    // of radius 1
    const struct {
        const char* name;
        C3DSceneNode* node;
        double volume, tolerance;
        bool closed;
    } rows[] = {
        {"cube", Cube(false), 48, 1e-4, true},
        {"sphere", CreateSphere(CENTRE, 3, 24, 32, false, 0, 0), 36 * PI, 2.5, true},
        {"cylinder", CreateCylinder(ORIGIN, 1, 5, 8, 3, true, false, 0, 0), 5 * octagon, 1e-4, true},
        {"open", CreateCylinder(ORIGIN, 1, 5, 8, 3, false, false, 0, 0), 5 * octagon * 2 / 3, 1e-4,
         false},    // no lids: a third is missing
        {"cone", CreateCone(CENTRE, 1, 6, 8, 3, false, 0, 0), 2 * octagon, 1e-3, true},
        {"capsule", Capsule(5, 32, 12, 4, AXIS_X), 3 * PI + 4 * PI / 3, 0.2, true},
        {"no body", Capsule(5, 32, 12, 0, AXIS_Y), 3 * PI + 4 * PI / 3, 0.2, true},
        {"ball", Capsule(2, 32, 12, 1, AXIS_Z), 4 * PI / 3, 0.1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Solid solid(row.node);
        const FaceCorners faces = Joined(solid.points, solid.faces, 1e-5);
        EXPECT_NEAR(VolumeOf(solid.points, faces), row.volume, row.tolerance);
        EXPECT_EQ(IsClosed(faces), row.closed);
    }
}

TEST(Primitives, CornersOfACube)
{
    const Solid cube(Cube(true));
    EXPECT_EQ(
        cube.points,
        (std::vector<Vec>{{11, 22, 33}, {11, 22, 27}, {9, 22, 27}, {9, 22, 33}, {11, 18, 33}, {11, 18, 27}, {9, 18, 27}, {9, 18, 33}}));
    EXPECT_EQ(cube.faces, (FaceCorners{{1, 2, 3, 0}, {4, 5, 1, 0}, {5, 6, 2, 1}, {6, 7, 3, 2}, {7, 4, 0, 3}, {5, 4, 7, 6}}));
    // The whole picture on each side, and never mirrored otherwise than on the others.
    for (int i = 0; i < 6; i++) {
        double area = 0;
        const std::vector<int> corners = Corners(*cube.uvw->GetFaceList(), i);
        for (int k = 0; k < 4; k++) {
            const auto a = cube.UVW(corners[k]), b = cube.UVW(corners[(k + 1) % 4]);
            area += (a[0] * b[1] - a[1] * b[0]) / 2;
        }
        EXPECT_EQ(area, -1) << i;
    }
}

TEST(Primitives, APlaneLiesAcrossItsNormal)
{
    {
        const Solid plane(CreatePlane(CENTRE, {0, 0, 2}, 4, 2, 2, 1, true, 0, 20));    // along y, then along -x
        EXPECT_EQ(plane.points, (std::vector<Vec>{{11, 18, 30}, {9, 18, 30}, {11, 20, 30}, {9, 20, 30}, {11, 22, 30}, {9, 22, 30}}));
        EXPECT_EQ(plane.faces, (FaceCorners{{0, 2, 3, 1}, {2, 4, 5, 3}}));
        EXPECT_EQ(plane.UVW(1), (std::vector{0.f, 1.f}));
        EXPECT_EQ(plane.UVW(2), (std::vector{0.5f, 0.f}));
    }
    {
        const Solid along(CreatePlane(ORIGIN, {5, 0, 0}, 4, 2, 1, 1, false, 0, 0));    // the other axis: along z, then along -y
        EXPECT_EQ(along.points, (std::vector<Vec>{{0, 1, -2}, {0, -1, -2}, {0, 1, 2}, {0, -1, 2}}));
    }
    {
        const Solid point(CreatePlane(CENTRE, {0, 0, 0}, 4, 2, 1, 1, false, 0, 0));
        EXPECT_EQ(point.points, std::vector<Vec>(4, {10, 20, 30}));
    }
    // Neither direction is made longer: 3-4-5, so that 0.8 of the size is left.
    const Solid tilted(CreatePlane(ORIGIN, {3, 0, 4}, 10, 10, 1, 1, false, 0, 0));
    EXPECT_NEAR(tilted.points[2][1] - tilted.points[0][1], 8, 1e-5);
    const Vec across = tilted.points[1] - tilted.points[0];
    EXPECT_NEAR(Dot(across, across), 64, 1e-3);
    EXPECT_NEAR(Dot(across, {3, 0, 4}), 0, 1e-4);
    EXPECT_GT(Dot(NormalOf(tilted.points, tilted.faces[0]), {3, 0, 4}), 0);
}

TEST(Primitives, RoundSolidsInTheirOrder)
{
    {
        const Solid sphere(CreateSphere(ORIGIN, 2, 2, 4, true, 0, 20));    // rows of 5: pole, equator from +z to +x, pole
        EXPECT_EQ(sphere.points[4][1], 2);
        EXPECT_NEAR(sphere.points[6][0], 2, 1e-6);
        EXPECT_NEAR(sphere.points[7][2], -2, 1e-6);
        EXPECT_EQ(sphere.points[14][1], -2);
        EXPECT_EQ(sphere.UVW(6), (std::vector{0.25f, 0.5f}));
        EXPECT_EQ((FaceCorners{sphere.faces[0], sphere.faces[1], sphere.faces[18], sphere.faces[19]}),
                  (FaceCorners{{4, 5, 0}, {0, 5, 1}, {13, 14, 9}, {9, 14, 10}}));
        // The angle is pi rounded to float, whose sine is known.
        EXPECT_NEAR(sphere.points[7][0], -2 * 8.7422777e-8, 1e-14);
    }
    {
        const Solid cylinder(CreateCylinder(CENTRE, 2, 6, 4, 1, true, true, 0, 20));    // 10 points of the side, two lids of 6
        EXPECT_EQ(cylinder.points[0], (Vec{12, 17, 30}));
        EXPECT_EQ(cylinder.points[5], (Vec{12, 23, 30}));
        EXPECT_EQ(cylinder.points[10], (Vec{10, 17, 30}));
        EXPECT_EQ(cylinder.points[16], (Vec{10, 23, 30}));
        EXPECT_NEAR(cylinder.points[18][2], 32, 1e-5);
        EXPECT_EQ(cylinder.UVW(11), (std::vector{1.f, 0.f}));
        EXPECT_EQ(cylinder.UVW(9), (std::vector{1.f, 1.f}));
        EXPECT_EQ((FaceCorners{cylinder.faces[0], cylinder.faces[1], cylinder.faces[10], cylinder.faces[14]}),
                  (FaceCorners{{5, 0, 4}, {5, 1, 0}, {10, 11, 12}, {18, 17, 16}}));
    }
    const Solid cone(CreateCone(CENTRE, 2, 6, 4, 2, true, 0, 20));    // three rows of 5, the base of 6
    EXPECT_EQ(cone.points[5], (Vec{11, 23, 30}));
    EXPECT_EQ(cone.points[12], (Vec{10, 26, 30}));
    EXPECT_EQ(cone.points[15], (Vec{10, 20, 30}));
    EXPECT_EQ(cone.UVW(15), (std::vector{0.f, 1.f}));
    EXPECT_EQ(cone.UVW(20), (std::vector{1.f, 0.f}));
    EXPECT_EQ((FaceCorners{cone.faces[0], cone.faces[1], cone.faces[8], cone.faces[19]}),
              (FaceCorners{{6, 0, 5}, {6, 1, 0}, {11, 5, 10}, {15, 19, 20}}));
}

TEST(Primitives, ACapsuleStandsAlongItsAxisAroundItsPivot)
{
    // Three segments: poles 0 and 4, rings 1 to 3 and 5 to 7 next to them, 8 to 10 between. All faces turned round in the end.
    EXPECT_EQ(Solid(Capsule(5, 3, 1, 2, AXIS_X)).faces, (FaceCorners{{0, 1, 2},
                                                                     {0, 2, 3},
                                                                     {0, 3, 1},
                                                                     {4, 6, 5},
                                                                     {4, 7, 6},
                                                                     {4, 5, 7},
                                                                     {2, 1, 8, 9},
                                                                     {3, 2, 9, 10},
                                                                     {1, 3, 10, 8},
                                                                     {9, 8, 5, 6},
                                                                     {10, 9, 6, 7},
                                                                     {8, 10, 7, 5}}));
    // Two rings a cap: bands on both sides of the poles, and no body.
    EXPECT_EQ(Solid(Capsule(5, 2, 2, 1, AXIS_X)).faces, (FaceCorners{{0, 1, 2},
                                                                     {0, 2, 1},
                                                                     {2, 1, 3, 4},
                                                                     {1, 2, 4, 3},
                                                                     {5, 7, 6},
                                                                     {5, 6, 7},
                                                                     {6, 7, 9, 8},
                                                                     {7, 6, 8, 9},
                                                                     {4, 3, 8, 9},
                                                                     {3, 4, 9, 8}}));
    for (const _AXIS_INFO axis : {AXIS_X, AXIS_Y, AXIS_Z}) {
        const Solid capsule(Capsule(5, 4, 3, 2, axis));
        const int u = (axis + 1) % 3;
        EXPECT_EQ(capsule.points[0][axis], 2.5);
        EXPECT_NEAR(capsule.points[9][axis], 1.5, 1e-5);    // where the cap ends
        EXPECT_NEAR(capsule.points[9][u], 1, 1e-5);
        EXPECT_EQ(capsule.points[13][axis], -2.5);
        EXPECT_NEAR(capsule.points[26][axis], 0, 1e-5);    // the body's only ring
        C4x4TMatrix<float> matrix;
        capsule.node->GetNodeTM(0, matrix, true);
        for (int i = 0; i < 3; i++)
            EXPECT_NEAR(matrix.m[i][3], CENTRE[i], 1e-4);
    }
}

TEST(Primitives, NothingWithoutSteps)
{
    const C3DTVector<float> up(0, 0, 1);
    const unsigned int many = 70000, most = 0xFFFFFFFF;    // 4.9e9 points, and sums that come round to 0
    for (const C3DSceneNode* node :
         {CreatePlane(ORIGIN, up, 1, 1, 0, 1, true, 0, 0), CreatePlane(ORIGIN, up, 1, 1, 1, 0, true, 0, 0),
          CreatePlane(ORIGIN, up, 1, 1, many, many, true, 0, 0), CreatePlane(ORIGIN, up, 1, 1, most, most, true, 0, 0),
          CreateSphere(ORIGIN, 1, 0, 4, true, 0, 0), CreateSphere(ORIGIN, 1, 4, -1, true, 0, 0),
          CreateSphere(ORIGIN, 1, 0x7FFFFFFF, 0x7FFFFFFF, true, 0, 0), CreateCylinder(ORIGIN, 1, 1, 0, 1, true, true, 0, 0),
          CreateCylinder(ORIGIN, 1, 1, 1, 0, true, true, 0, 0), CreateCylinder(ORIGIN, 1, 1, most, most, true, true, 0, 0),
          CreateCone(ORIGIN, 1, 1, 0, 1, true, 0, 0), CreateCone(ORIGIN, 1, 1, 1, 0, true, 0, 0),
          CreateCone(ORIGIN, 1, 1, most, 1, true, 0, 0), Capsule(0, 4, 4, 4, AXIS_X), Capsule(4, 0, 4, 4, AXIS_X),
          Capsule(4, 4, 0, 4, AXIS_X), Capsule(4, most, most, most, AXIS_X), Capsule(4, 4, 4, 4, _AXIS_INFO(3))})
        EXPECT_EQ(node, nullptr);
}
