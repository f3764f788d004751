// Derived normals: of faces, and smoothed ones of corners.

#include "NormalMesh.h"
#include "channels/FaceNormalContributionInfo.h"
#include "geometry/3DFaceList.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"

namespace {

/// Adds the smoothed normals of all corners, and the points where they split.
void AddSmoothed(Checksum& sum, NormalMesh& mesh, float angle)
{
    CPointNormalChannel& channel = mesh.Smooth(angle);
    const CNormalFaceList& faces = *channel.GetNormalFaceList();
    sum.Add(AllCorners(faces));
    const C3DVectorList& vectors = *channel.GetNormalVectorList();
    for (int i = 0; i < vectors.GetSize(); i++)
        sum.Add(*vectors[i]);
    for (int p = 0; p < mesh.mesh.points->GetSize(); p++)
        sum.Add(mesh.HasPointFlag(p, POINT_SMOOTH_SPLIT));
    for (int f = 0; f < mesh.mesh.faces->GetSize(); f++)
        EXPECT_EQ(faces.IsFaceOneFlagSet(f, FACE_DEAD), mesh.mesh.faces->IsFaceFlagSet(f, FACE_INVALID)) << "face " << f;
    CheckConsistent(faces);
}

void Scatter(Mesh& mesh, std::mt19937& random)
{
    // Few values, so that faces without area and equal normals come up.
    std::uniform_int_distribution<int> coordinate(-2, 2);
    for (int p = 0; p < mesh.points->GetSize(); p++) {
        C3DTPoint<float>& point = *mesh.points->ElementAt(p);
        point.x = coordinate(random) * 0.7f, point.y = coordinate(random) * 1.1f, point.z = coordinate(random) * 0.9f;
    }
}

// Triangles around point 0 whose normals lie at those angles from z towards x.
Mesh Leaves(const std::vector<double>& degrees)
{
    std::vector<XYZ> points = {{0, 0, 0}, {0, 1, 0}};
    std::vector<std::vector<int>> corners;
    for (const double angle : degrees) {
        corners.push_back({0, static_cast<int>(points.size()), 1});
        points.push_back({std::cos(Degrees(angle)), 0, -std::sin(Degrees(angle))});
    }
    return MakeMesh(points, corners);
}

}    // namespace

TEST(Normals, OfACubeBreakOrJoinByTheAngle)
{
    struct {
        const char* name;
        float angle;
        int vectors, split;
    } const rows[] = {
        {"0 degrees", 0, 6, 8},
        {"30 degrees", Degrees(30), 6, 8},
        {"100 degrees", Degrees(100), 8, 0},
        {"pi", PI, 8, 0},
    };
    for (const int mode : {NORMAL_UNWEIGHTED, NORMAL_AREA, NORMAL_EDGE_LENGTH, NORMAL_ANGLE})
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name);
            SCOPED_TRACE(mode);
            NormalMesh cube(Cube(), mode);
            CPointNormalChannel& channel = cube.Smooth(row.angle);
            EXPECT_EQ(channel.GetNormalVectorList()->GetSize(), row.vectors);
            EXPECT_EQ(cube.CountPoints(POINT_SMOOTH_SPLIT), row.split);
            for (int face = 0; face < 6; face++)
                for (int k = 0; k < 4; k++) {
                    const C3DTPoint<float>& p = *cube.mesh.points->ElementAt(Corners(*cube.mesh.faces, face)[k]);
                    const Vector& n = *cube.channels->GetFaceNormalChannel()->GetNormalVectorList()->ElementAt(face);
                    if (row.split)
                        ExpectDirection(AtCorner(channel, face, k), n.x, n.y, n.z);
                    else
                        ExpectDirection(AtCorner(channel, face, k), p.x, p.y, p.z);    // the three sides weigh the same
                }
        }
}

// The sums are those of rounds over all faces of a point, with a table of states.
TEST(Normals, AgreeWithRoundsOverAllFaces)
{
    Checksum sum;
    for (unsigned int seed = 0; seed < 150; seed++)
        for (const int mode : {NORMAL_UNWEIGHTED, NORMAL_AREA, NORMAL_EDGE_LENGTH, NORMAL_ANGLE}) {
            SCOPED_TRACE(seed);
            SCOPED_TRACE(mode);
            RandomMesh random(seed, seed % 3 == 0 ? RandomMesh::BROKEN : RandomMesh::MIXED);
            Scatter(random.mesh, random.random);
            if (random.FaceCount() == 0)
                continue;
            NormalMesh mesh(std::move(random.mesh), mode);
            AddSmoothed(sum, mesh, Degrees(std::vector<int>{0, 10, 30, 90, 120, 180}[seed % 6]));
        }
    EXPECT_EQ(sum.Get(), 0xE507B9EC0C9F2D56u);
}

TEST(Normals, OfAHubAndOfALargePolygonAgreeWithRoundsOverAllFaces)
{
    // Faces that look all ways around point 0, more groups than are searched one by one, and behind them a face of 200 corners that
    // holds each point twice, and faces of two corners, which have no normal.
    std::mt19937 random(5);
    std::normal_distribution<float> coordinate;
    std::vector<XYZ> points(101, XYZ{0, 0, 0});
    for (std::size_t i = 1; i < points.size(); i++)
        points[i] = {coordinate(random), coordinate(random), coordinate(random)};
    std::vector<std::vector<int>> corners;
    for (int i = 0; i < 600; i++)
        corners.push_back({0, 1 + i % 100, 1 + (i * 7 + i / 100 + 1) % 100});
    corners.emplace_back();
    for (int i = 0; i < 200; i++)
        corners.back().push_back(i % 100);
    for (int i = 0; i < 5; i++)
        corners.push_back({i, 0});
    Checksum sum;
    for (const double angle : {0.0, 0.01, 3.0, 12.0, 45.0, 89.0, 91.0})
        for (const int mode : {NORMAL_AREA, NORMAL_ANGLE}) {
            SCOPED_TRACE(angle);
            NormalMesh mesh(MakeMesh(points, corners), mode);
            AddSmoothed(sum, mesh, Degrees(angle));
        }
    EXPECT_EQ(sum.Get(), 0xC35BB8F42BDB8418u);
}

TEST(Normals, ThatAreNoNumbersStayApartAndEndTheWork)
{
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<XYZ> points(300, XYZ{inf, -inf, 1});
    std::vector<std::vector<int>> corners;
    for (int i = 0; i + 2 < 300; i++)
        corners.push_back({i, i + 1, i + 2});
    NormalMesh mesh(MakeMesh(points, corners));
    EXPECT_EQ(mesh.Smooth(Degrees(30)).GetNormalVectorList()->GetSize(), 300);
    EXPECT_EQ(mesh.CountPoints(POINT_SMOOTH_SPLIT), 0);
}

TEST(Normals, AreBuiltAgainOnlyWhenNeeded)
{
    NormalMesh mesh(Leaves({0, 20}));
    CPointNormalChannel& channel = mesh.Smooth(Degrees(30));
    EXPECT_EQ(AtCorner(channel, 0, 0), AtCorner(channel, 1, 0));
    AtCorner(channel, 0, 0)->x = 7;    // tells whether the work was done again
    mesh.Smooth(Degrees(30));
    EXPECT_EQ(AtCorner(channel, 0, 0)->x, 7);
    mesh.Smooth(Degrees(10));
    EXPECT_NE(AtCorner(channel, 0, 0), AtCorner(channel, 1, 0));
    EXPECT_TRUE(mesh.HasPointFlag(0, POINT_SMOOTH_SPLIT));

    // A moved point shows only after the channels were told.
    mesh.mesh.points->ElementAt(3)->z = 0;
    mesh.channels->Invalidate(CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL);
    mesh.Smooth(Degrees(10));
    ExpectDirection(AtCorner(channel, 1, 0), 0, 0, 1);
    EXPECT_FALSE(mesh.HasPointFlag(0, POINT_SMOOTH_SPLIT));

    // More faces than the channel of face normals knows of.
    AddFaces(*mesh.mesh.faces, {{0, 2, 1}, {0, 2, 1}});
    mesh.channels->Invalidate(CHANNEL_POINT_NORMAL);
    mesh.Smooth(Degrees(10));
    ExpectDirection(AtCorner(channel, 3, 0), 0, 0, 1);
}

TEST(Normals, OfACornerComeFromTheGivenOnesFirst)
{
    NormalMesh cube(Cube());
    // Face 0 has a given, a computed and an unset normal; face 1 has no data.
    CSpecNormalChannel& given = cube.Give({{0, 0, 1}, {0, 0, 0}, {1, 0, 0}}, {{0, 1, 2, 0}, {}, {}, {}, {}, {}});
    given.GetNormalVectorList()->ElementAt(1)->SetFlag(POINT_COMPUTED, true);
    given.GetNormalVectorList()->ElementAt(2)->SetFlag(POINT_UNSET, true);
    CPointNormalChannel& channel = cube.Smooth(Degrees(30));
    channel.PrepareSmoothing(&cube.info, &given);

    struct {
        const char* name;
        int face, point;
        unsigned int status;
        double x, y, z;
    } const rows[] = {
        {"given", 0, 0, 2, 0, 0, 1},
        {"computed", 0, 2, 5, 0, 0, -1},
        {"unset", 0, 3, 9, 0, 0, -1},
        {"no data", 1, 4, 9, 0, 0, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        unsigned int status = 77;
        const Vector* normal = channel.GetSmoothNormalByIndex(row.face, row.point, &status);
        EXPECT_EQ(status, row.status);
        ExpectDirection(normal, row.x, row.y, row.z);
        const std::vector<int> corners = Corners(*cube.mesh.faces, row.face);
        const int corner = static_cast<int>(std::find(corners.begin(), corners.end(), row.point) - corners.begin());
        EXPECT_EQ(channel.GetSmoothNormalByCorner(row.face, corner, nullptr), normal);
    }

    unsigned int status = 77;
    EXPECT_EQ(channel.GetSmoothNormalByIndex(0, 7, &status), nullptr);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(channel.GetSmoothNormalByCorner(6, 0, nullptr), nullptr);
    channel.PrepareSmoothing(&cube.info, nullptr);
    channel.GetSmoothNormalByCorner(0, 0, &status);
    EXPECT_EQ(status, 9u);
}
