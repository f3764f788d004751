#include <gtest/gtest.h>

#include <cmath>
#include <vector>

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
        {"towards +x", OneFace({{2, 0, 0}, {2, 2, 0}, {2, 0, 2}}), {1, 0, 0}, {4, 0, 0}},
        // An L of area 3: the triangle of its first three corners would say less.
        {"L", OneFace({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}), {0, 0, 1}, {0, 0, 6}},
        {"in a line", OneFace({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}), {1, 0, 0}, {1, 0, 0}},
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
