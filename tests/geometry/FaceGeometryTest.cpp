#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geometry/2DPointList.h"
#include "geometry/4x4Matrix.h"
#include "support/Meshes.h"

namespace {

std::vector<float> Normal(const Mesh& mesh, bool normalize)
{
    const CGeomInfo info = mesh.Info();
    C3DFace face;
    mesh.faces->GetFace(0, face);
    C3DTVector<float> normal(9, 9, 9);
    face.GetNormal(&info, normal, normalize);
    return {normal.x, normal.y, normal.z};
}

Mesh OneFace(const std::vector<XYZ>& points)
{
    std::vector<int> corners;
    for (std::size_t i = 0; i < points.size(); i++)
        corners.push_back(static_cast<int>(i));
    return MakeMesh(points, {corners});
}

const std::vector<XYZ> SQUARE = {{0, 0, 5}, {1, 0, 5}, {1, 1, 5}, {0, 1, 5}};

}

TEST(FaceGeometry, NormalsByTheSumOverAllEdges)
{
    using V = std::vector<float>;
    const struct {
        const char* name;
        Mesh mesh;
        V unit, raw;
    } rows[] = {
        {"unit square", OneFace(SQUARE), {0, 0, 1}, {0, 0, 2}},
        {"clockwise", OneFace({{0, 0, 0}, {0, 3, 0}, {3, 3, 0}, {3, 0, 0}}), {0, 0, -1}, {0, 0, -18}},
        {"towards +x", OneFace({{2, 0, 0}, {2, 2, 0}, {2, 0, 2}}), {1, 0, 0}, {4, 0, 0}},
        // An L of area 3: the triangle of its first three corners would say less.
        {"L", OneFace({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}), {0, 0, 1}, {0, 0, 6}},
        {"in a line", OneFace({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}), {1, 0, 0}, {1, 0, 0}},
        {"one point", OneFace({{3, 3, 3}, {3, 3, 3}, {3, 3, 3}}), {1, 0, 0}, {1, 0, 0}},
        {"two corners", OneFace({{0, 0, 0}, {1, 0, 0}}), {9, 9, 9}, {9, 9, 9}},
        {"broken corner", MakeMesh({{0, 0, 0}, {1, 0, 0}}, {{0, 1, 2}}), {1, 0, 0}, {1, 0, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Normal(row.mesh, true), row.unit);
        EXPECT_EQ(Normal(row.mesh, false), row.raw);
    }
}

TEST(FaceGeometry, MeasuresTheFirstThreeCorners)
{
    const Mesh mesh = OneFace(SQUARE);
    const CGeomInfo info = mesh.Info();
    C3DFace face;
    mesh.faces->GetFace(0, face);
    EXPECT_EQ(face.Area(&info), 0.5) << "half the square";
    EXPECT_NEAR(face.GetCompacityFactor(&info), 4 * std::sqrt(3.0) * 0.5 / (1 + 1 + 2), 1e-7);
    const C4DVector plane = face.GetPlane(&info);
    EXPECT_EQ(plane.z, 1);
    EXPECT_EQ(plane.w, -5);
    C3DTPoint<double> center;
    face.GetCenter(&info, center);
    EXPECT_EQ(center, C3DTPoint<double>(0.5, 0.5, 5));

    const Mesh broken = MakeMesh({{1, 1, 1}}, {{0, 5, -7}, {}});
    const CGeomInfo brokenInfo = broken.Info();
    broken.faces->GetFace(0, face);
    EXPECT_EQ(face.Area(&brokenInfo), 0);
    EXPECT_EQ(face.GetCompacityFactor(&brokenInfo), 0);
    EXPECT_EQ(face.GetPlane(&brokenInfo).w, 0);
    broken.faces->GetFace(1, face);
    face.GetCenter(&brokenInfo, center);
    EXPECT_TRUE(std::isnan(center.x));
}

TEST(FaceGeometry, Convexity)
{
    const struct {
        const char* name;
        std::vector<XYZ> points;
        bool convex;
    } rows[] = {
        {"triangle", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, true},
        {"square", SQUARE, true},
        {"corner pushed inwards", {{0, 0, 0}, {2, 0, 0}, {0.5f, 0.5f, 0}, {0, 2, 0}}, false},
        {"corner in a line", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, true},
        // The first corner is the one that turns the other way, and all others turn against it.
        {"first turn inwards", {{0, 2, 0}, {0.5f, 0.5f, 0}, {2, 0, 0}, {0, 0, 0}}, false},
    };
    for (const auto& row : rows) {
        const Mesh mesh = OneFace(row.points);
        const CGeomInfo info = mesh.Info();
        C3DFace face;
        mesh.faces->GetFace(0, face);
        EXPECT_EQ(face.IsConvex(&info), row.convex) << row.name;
    }
}

TEST(FaceGeometry, LaysAPolygonInItsOwnPlane)
{
    // Lengths and turns survive, wherever the plane lies.
    const struct {
        const char* name;
        std::vector<XYZ> points;
        std::vector<float> xy;
    } rows[] = {
        {"square", SQUARE, {0, 0, 1, 0, 1, 1, 0, 1}},
        {"upright", {{0, 0, 1}, {0, 3, 1}, {0, 3, 5}, {0, 0, 5}}, {0, 0, 3, 0, 3, 4, 0, 4}},
        {"clockwise", {{0, 0, 0}, {0, 2, 0}, {1, 2, 0}}, {0, 0, 2, 0, 2, 1}},
        {"two corners", {{0, 0, 0}, {1, 0, 0}}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Mesh mesh = OneFace(row.points);
        const CGeomInfo info = mesh.Info();
        C3DFace face;
        mesh.faces->GetFace(0, face);
        C2DPointList flat;
        face.Get2DCoordinates(&info, flat);
        std::vector<float> xy;
        for (int i = 0; i < flat.GetSize(); i++) {
            xy.push_back(flat.ElementAt(i)->x);
            xy.push_back(flat.ElementAt(i)->y);
        }
        EXPECT_EQ(xy, row.xy);
    }
}

TEST(FaceGeometry, BoxOfTheLiveFaces)
{
    Mesh mesh = MakeMesh({{1, 1, 1}, {3, 1, 1}, {1, 4, 1}, {50, 50, 50}, {-9, 0, 0}}, {{0, 1, 2}, {0, 1, 4}, {0, 1, 99}, {}});
    const CGeomInfo info = mesh.Info();
    mesh.faces->SetFaceFlags(1, 0x100, true);
    C4x4TMatrix<float> twice;
    twice.Scale(2, 2, 2);
    const struct {
        const char* name;
        unsigned int deadFace, mask;
        bool wanted;
        C4x4TMatrix<float>* matrix;
        bool found;
        XYZ min, max;
    } rows[] = {
        {"all", 9, 0, true, nullptr, true, {-9, 0, 0}, {3, 4, 1}},
        {"marked", 9, 0x100, true, nullptr, true, {-9, 0, 0}, {3, 1, 1}},
        {"not marked", 9, 0x100, false, nullptr, true, {1, 1, 1}, {3, 4, 1}},
        {"without the dead", 1, 0, true, nullptr, true, {1, 1, 1}, {3, 4, 1}},
        {"none left", 1, 0x100, true, nullptr, false, {0, 0, 0}, {0, 0, 0}},
        {"transformed", 1, 0, true, &twice, true, {2, 2, 2}, {6, 8, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        mesh.faces->SetFacesFlags(FACE_INVALID, false);
        mesh.faces->SetFaceFlag(row.deadFace, FACE_INVALID, true);
        C3DTPoint<float> min(5, 5, 5), max(5, 5, 5);
        EXPECT_EQ(mesh.faces->GetBoundingBox(&info, min, max, row.mask, row.wanted, row.matrix), row.found);
        EXPECT_EQ(min, C3DTPoint<float>(row.min.x, row.min.y, row.min.z));
        EXPECT_EQ(max, C3DTPoint<float>(row.max.x, row.max.y, row.max.z));
    }
}
