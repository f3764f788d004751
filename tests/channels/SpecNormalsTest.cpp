// Given normals: computed ones, lengths, corners without, and where they break.

#include <algorithm>
#include <limits>
#include <random>

#include "NormalMesh.h"
#include "geometry/Edge.h"
#include "support/Checksum.h"

namespace {

void SetVectorFlags(CSpecNormalChannel& channel, int vector, unsigned int flags)
{
    channel.GetNormalVectorList()->ElementAt(vector)->SetFlags(flags);
}

// Two unit squares in the plane z = 0, side by side: points 0 to 2 at y 0, 3 to 5 at y 1.
Mesh TwoQuads() { return MakeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}}, {{0, 1, 4, 3}, {1, 2, 5, 4}}); }

XYZ Tilted(double degrees) { return {std::sin(Degrees(degrees)), 0, std::cos(Degrees(degrees))}; }

}    // namespace

TEST(SpecNormals, ComputeSumsTheFacesOfAVectorWhateverTheirAngle)
{
    NormalMesh cube(Cube());
    // Vector 0 is shared by one corner each of the sides -z, +z, -y and +x, at the points 0, 4, 1 and 3; vector 1 is given.
    CSpecNormalChannel& channel =
        cube.Give({{9, 9, 9}, {0, 5, 0}}, {{0, 1, 1, 1}, {0, 1, 1, 1}, {1, 0, 1, 1}, {1, 0, 1, 1}, {}, {1, 1, 1, 1}});
    SetVectorFlags(channel, 0, POINT_COMPUTED);
    cube.mesh.faces->SetFaceFlags(5, FACE_INVALID, true);
    channel.ComputeNormals(&cube.info, NORMAL_AREA);
    const Vector& computed = *channel.GetNormalVectorList()->ElementAt(0);
    ExpectDirection(&computed, 1, -1, 0);
    EXPECT_EQ(channel.GetNormalVectorList()->ElementAt(1)->y, 5);
    EXPECT_FALSE(channel.IsFlagSet(CHANNEL_STALE));

    // Up to date: nothing happens until the channel is told.
    channel.GetNormalVectorList()->ElementAt(0)->x = 3;
    channel.ComputeNormals(&cube.info, NORMAL_AREA);
    EXPECT_EQ(computed.x, 3);
    channel.SetFlag(CHANNEL_STALE, true);
    channel.ComputeNormals(&cube.info, NORMAL_AREA);
    ExpectDirection(&computed, 1, -1, 0);
}

TEST(SpecNormals, NormalizeUnsetsWhatHasNoLength)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct {
        const char* name;
        XYZ first, second;
        bool set1, set2, result;
    } const rows[] = {
        {"lengths", {0, 3, 0}, {1e-3f, 0, 0}, true, true, true},
        {"one zero", {0, 0, 0}, {0, 0, 2}, false, true, true},
        {"no number", {nan, 0, 0}, {0, 0, 2}, false, true, true},
        {"all zero", {0, 0, 0}, {0, 0, 0}, false, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NormalMesh mesh(TwoQuads());
        CSpecNormalChannel& channel = mesh.Give({row.first, row.second}, {{0, 0, 0, 0}, {1, 1, 1, 1}});
        EXPECT_EQ(channel.Normalize(), row.result);
        EXPECT_EQ(channel.IsFlagSet(CHANNEL_INVALID), !row.result);
        for (int i = 0; i < 2; i++) {
            const bool set = i ? row.set2 : row.set1;
            const Vector& vector = *channel.GetNormalVectorList()->ElementAt(i);
            EXPECT_EQ(vector.IsFlagSet(POINT_UNSET), !set);
            EXPECT_NEAR(vector.Length(), set ? 1 : 0, 1e-6);
            EXPECT_EQ(channel.GetNormalFaceList()->IsFaceFlagSet(i, FACE_EMPTY), !set);
            EXPECT_EQ(Corners(*channel.GetNormalFaceList(), i).size(), set ? 4u : 0u);
        }
    }

    // A face with one set corner keeps all of them.
    NormalMesh mesh(TwoQuads());
    CSpecNormalChannel& channel = mesh.Give({{0, 0, 0}, {0, 0, 2}}, {{0, 0, 1, 0}, {}});
    EXPECT_TRUE(channel.Normalize());
    EXPECT_EQ(Corners(*channel.GetNormalFaceList(), 0), (std::vector<int>{0, 0, 1, 0}));
}

TEST(SpecNormals, GenerateFillsFacesWithoutData)
{
    struct {
        const char* name;
        unsigned int options;
        double angle;
        int vectors;
        bool filled;
    } const rows[] = {
        {"neither dead faces nor unset", 4, 100, 0, false},
        {"only if unset", 1 | 2 | 8, 100, 0, false},
        {"flat", 1 | 8, 100, 6, true},
        {"smooth, shared by the corners of a point", 1 | 4, 100, 8, true},
        {"smooth, each side for itself", 1 | 4, 30, 24, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NormalMesh cube(Cube());
        CSpecNormalChannel& channel = cube.Give({}, {{}, {}, {}, {}, {}, {}});
        channel.GenerateNormals(&cube.info, row.options, Degrees(row.angle), NORMAL_AREA);
        EXPECT_EQ(channel.GetNormalVectorList()->GetSize(), row.vectors);
        EXPECT_FALSE(cube.mesh.faces->HasPointToFaceGraph());
        for (int face = 0; face < 6; face++) {
            EXPECT_EQ(channel.GetNormalFaceList()->IsFaceOneFlagSet(face, FACE_DEAD), !row.filled);
            ASSERT_EQ(Corners(*channel.GetNormalFaceList(), face).size(), row.filled ? 4u : 0u);
            for (int k = 0; k < 4 && row.filled; k++) {
                const C3DTPoint<float>& p = *cube.mesh.points->ElementAt(Corners(*cube.mesh.faces, face)[k]);
                const Vector& n = *cube.channels->GetFaceNormalChannel()->GetNormalVectorList()->ElementAt(face);
                if (row.vectors == 8)
                    ExpectDirection(AtCorner(channel, face, k), p.x, p.y, p.z);
                else
                    ExpectDirection(AtCorner(channel, face, k), n.x, n.y, n.z);
            }
        }
    }
}

TEST(SpecNormals, GenerateReplacesUnsetVectorsAlone)
{
    for (const unsigned int how : {4u, 8u}) {
        SCOPED_TRACE(how);
        NormalMesh cube(Cube());
        // Vector 1 is unset and used twice by face 0 and once by face 1; face 2 has no data, face 3 went from the mesh.
        CSpecNormalChannel& channel =
            cube.Give({{1, 0, 0}, {0, 0, 0}}, {{0, 1, 0, 1}, {1, 0, 0, 0}, {}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}});
        SetVectorFlags(channel, 1, POINT_UNSET);
        cube.mesh.faces->SetFaceFlags(3, FACE_INVALID, true);
        channel.GenerateNormals(&cube.info, 2 | how, Degrees(30), NORMAL_AREA);
        const C3DVectorList& vectors = *channel.GetNormalVectorList();
        EXPECT_EQ(vectors.GetNumberOfPoints(static_cast<unsigned int>(POINT_UNSET), true), 0);
        EXPECT_EQ(vectors.GetSize(), how == 4 ? 1 + 3 : 1 + 2);
        for (const auto& [face, corner, z] : {std::tuple(0, 1, -1), {0, 3, -1}, {1, 0, 1}})
            ExpectDirection(AtCorner(channel, face, corner), 0, 0, z);
        for (const auto& [face, corner] : {std::pair(0, 0), {0, 2}, {1, 1}, {4, 2}})
            ExpectDirection(AtCorner(channel, face, corner), 1, 0, 0);
        for (const int face : {2, 3}) {
            EXPECT_TRUE(channel.GetNormalFaceList()->IsFaceFlagSet(face, FACE_EMPTY));
            EXPECT_TRUE(Corners(*channel.GetNormalFaceList(), face).empty());
        }
        CheckConsistent(*channel.GetNormalFaceList(), vectors.GetSize());
    }

    NormalMesh complete(TwoQuads());
    CSpecNormalChannel& channel = complete.Give({{0, 0, 1}}, {{0, 0, 0, 0}, {0, 0, 0, 0}});
    channel.GenerateNormals(&complete.info, 1 | 4, Degrees(30), NORMAL_AREA);
    EXPECT_EQ(channel.GetNormalVectorList()->GetSize(), 1);
}

TEST(SpecNormals, BreakWhereVectorsAtAPointDiffer)
{
    struct {
        const char* name;
        std::vector<XYZ> vectors;
        std::vector<std::vector<int>> corners;
        int unset;
        std::vector<int> breaks;
    } const rows[] = {
        {"one vector", {{0, 0, 1}}, {{0, 0, 0, 0}, {0, 0, 0, 0}}, -1, {}},
        {"20 degrees", {Tilted(0), Tilted(20)}, {{0, 0, 0, 0}, {1, 1, 1, 1}}, -1, {}},
        {"40 degrees", {Tilted(0), Tilted(40)}, {{0, 0, 0, 0}, {1, 1, 1, 1}}, -1, {1, 4}},
        {"no data in one face", {Tilted(0)}, {{0, 0, 0, 0}, {}}, -1, {1, 4}},
        // Face 0 has no vector at point 4. Both edges from there find 4 marked already or mark it again.
        {"an unset corner", {Tilted(0), Tilted(0)}, {{0, 0, 1, 0}, {0, 0, 0, 0}}, 1, {4}},
        // The lower points have one vector, the upper ones the other. Each edge up or down breaks at its start; 4-1 finds 1 marked.
        {"inside a face", {Tilted(0), Tilted(40)}, {{0, 0, 1, 1}, {0, 0, 1, 1}}, -1, {1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NormalMesh mesh(TwoQuads());
        CSpecNormalChannel& channel = mesh.Give(row.vectors, row.corners);
        if (row.unset >= 0)
            SetVectorFlags(channel, row.unset, POINT_UNSET);
        mesh.mesh.points->SetPointsFlags(POINT_NORMAL_BREAK, true);
        channel.InitNormalBreakFlag(&mesh.info, Degrees(30), true, NORMAL_AREA);
        std::vector<int> breaks;
        for (int p = 0; p < 6; p++)
            if (mesh.HasPointFlag(p, POINT_NORMAL_BREAK))
                breaks.push_back(p);
        EXPECT_EQ(breaks, row.breaks);
        EXPECT_EQ(channel.GetNormalVectorList()->GetNumberOfPoints(static_cast<unsigned int>(POINT_NORMAL_BREAK), true) == 0,
                  row.breaks.empty());
        mesh.mesh.points->SetPointsFlags(POINT_NORMAL_BREAK, true);
        channel.InitNormalBreakFlag(&mesh.info, Degrees(30), false, NORMAL_AREA);
        EXPECT_EQ(mesh.CountPoints(POINT_NORMAL_BREAK), 6) << "flags of the source stay unless they are asked for";
    }
}

TEST(SpecNormals, FrontierBetweenTwoFaces)
{
    // Two quads that share the edge 1-4. Corners: face 0 is {0, 1, 4, 3}, face 1 is {1, 2, 5, 4}.
    struct {
        const char* name;
        std::vector<std::vector<int>> corners;
        int unset;
        std::pair<int, int> edge;
        bool frontier;
    } const rows[] = {
        {"both ends differ", {{0, 0, 0, 0}, {2, 2, 2, 2}}, -1, {1, 4}, true},
        {"one end differs", {{0, 0, 0, 0}, {0, 0, 0, 2}}, -1, {1, 4}, true},
        {"other corners differ", {{2, 0, 0, 2}, {0, 2, 2, 0}}, -1, {1, 4}, false},
        {"one end unset in one face", {{0, 0, 0, 0}, {2, 0, 0, 0}}, 2, {1, 4}, true},
        {"one end unset in both", {{0, 2, 0, 0}, {2, 0, 0, 0}}, 2, {1, 4}, false},
        {"one without data", {{0, 0, 0, 0}, {}}, -1, {1, 4}, true},
        {"across the edge and both sides of it", {{0, 2, 0, 2}, {2, 2, 0, 0}}, -1, {1, 4}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NormalMesh mesh(TwoQuads());
        CSpecNormalChannel& channel = mesh.Give({Tilted(0), Tilted(5), Tilted(60)}, row.corners);
        if (row.unset >= 0)
            SetVectorFlags(channel, row.unset, POINT_UNSET);
        EXPECT_EQ(channel.IsNormalFrontier(&mesh.info, Degrees(10), C3DEdge(row.edge.first, row.edge.second), 0, 1), row.frontier);
        EXPECT_EQ(channel.IsNormalFrontier(&mesh.info, Degrees(10), C3DEdge(row.edge.first, row.edge.second), 1, 0), row.frontier);
    }

    NormalMesh mesh(TwoQuads());
    CSpecNormalChannel& channel = mesh.Give({Tilted(0)}, {{0, 0, 0, 0}, {}});
    channel.GetNormalFaceList()->SetFaceFlags(1, FACE_INVALID, true);
    EXPECT_FALSE(channel.IsNormalFrontier(&mesh.info, Degrees(10), C3DEdge(1, 4), 0, 1));
}

TEST(SpecNormals, GenerateSumsManyFacesOfAPointAsFewOnes)
{
    // A rough cone of 131 faces, one of them dead and one without area. Faults in mind: a block of faces mixes up its lanes, a face adds
    // its part twice, a normal that decides nothing in float is passed over.
    Mesh cone = Fan(131);
    std::mt19937 random(5);
    for (int i = 1; i < cone.points->GetSize(); i++)
        cone.points->ElementAt(i)->z = static_cast<float>(random() % 1000) / 1000;
    cone.faces->SetFaceFlags(70, FACE_INVALID, true);
    *cone.points->ElementAt(91) = *cone.points->ElementAt(90);
    NormalMesh mesh(std::move(cone));
    CSpecNormalChannel& channel = mesh.Give({}, std::vector<std::vector<int>>(131));
    const double angle = Degrees(25);
    channel.GenerateNormals(&mesh.info, 1 | 4, angle, NORMAL_AREA);

    const C3DFaceList& faces = *mesh.mesh.faces;
    Checksum sum;
    for (int face = 0; face < 131; face++)
        if (face != 70) {
            const std::vector<int> corners = Corners(faces, face);
            const Vector& at = *AtCorner(channel, face, static_cast<int>(std::find(corners.begin(), corners.end(), 0) - corners.begin()));
            sum.Add(std::vector<float>{at.x, at.y, at.z});
        }
    EXPECT_EQ(sum.Get(), 0xD5B499BBD60D6F82u);
}

TEST(SpecNormals, UnitVectorsKeepTheirBits)
{
    NormalMesh cube(Cube());
    std::mt19937 random(9);
    std::vector<XYZ> values(1000);
    for (XYZ& v : values)
        v = {static_cast<float>(random() % 2001) - 1000, static_cast<float>(random() % 2001) - 1000, 7};
    CSpecNormalChannel& channel = cube.Give(values, std::vector<std::vector<int>>(6, {0, 1, 2, 3}));
    channel.Normalize();
    std::vector<Vector> once;
    for (int i = 0; i < 1000; i++) {
        once.push_back(*channel.GetNormalVectorList()->ElementAt(i));
        EXPECT_NEAR(once.back().Length(), 1, 1e-6);
    }
    channel.Normalize();
    for (int i = 0; i < 1000; i++)
        EXPECT_EQ(*channel.GetNormalVectorList()->ElementAt(i), once[i]);
}
