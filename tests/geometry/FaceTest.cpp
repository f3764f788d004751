#include <gtest/gtest.h>

#include <vector>

#include "geometry/3DFaceList.h"
#include "support/Consistent.h"
#include "support/Meshes.h"

namespace {

// A list of one face, and its view.
struct OneFace : Mesh {
    explicit OneFace(const std::vector<int>& corners)
    {
        AddFaces(*faces, {corners});
        faces->GetFace(0, face);
    }
    C3DFace face;
};

}

TEST(Face, FindsAndReplacesCorners)
{
    OneFace one({4, 5, 6, 5});
    C3DFace& face = one.face;
    EXPECT_EQ(face.IsFacePoint(5), 1);
    EXPECT_EQ(face.IsFacePoint(7), -1);
    const struct {
        int a, b;
        bool directed;
        int position;
    } edges[] = {
        {4, 5, true, 0}, {5, 4, true, 3}, {5, 4, false, 0}, {6, 5, true, 2}, {5, 6, false, 1}, {4, 6, false, -1}, {6, 4, true, -1},
    };
    for (const auto& edge : edges)
        EXPECT_EQ(face.IsFaceEdge(edge.a, edge.b, edge.directed), edge.position) << edge.a << " " << edge.b;
    EXPECT_EQ(face.GetNextIndex(3), 4);
    EXPECT_EQ(face.GetPrevIndex(0), 5);
    EXPECT_EQ(face.GetPrevIndex(2), 5);

    EXPECT_EQ(face.ReplaceIndex(5, 5), 0);
    EXPECT_EQ(face.ReplaceIndex(9, 1), 0);
    EXPECT_EQ(face.ReplaceIndex(6, 8), 1);
    EXPECT_EQ(face.ReplaceIndex(5, 7), 5);
    EXPECT_EQ(Corners(*one.faces, 0), (std::vector<int>{4, 7, 8, 7}));
    EXPECT_TRUE(face.RemoveIndex(7));
    EXPECT_EQ(Corners(*one.faces, 0), (std::vector<int>{4, 7, 8})) << "the later one goes";
}

TEST(Face, ComparesAroundTheFace)
{
    const struct {
        std::vector<int> a, b;
        bool still, rotated;
    } rows[] = {
        {{0, 1, 2}, {0, 1, 2}, true, true},
        {{0, 1, 2}, {1, 2, 0}, false, true},
        {{0, 1, 2}, {2, 1, 0}, false, false},
        {{0, 1, 2}, {0, 1, 2, 3}, false, false},
        {{0, 1, 2}, {3, 4, 5}, false, false},
        {{0, 1, 0, 2}, {0, 2, 0, 1}, false, false},    // read from the first 0 alone
        {{}, {}, true, true},
    };
    for (const auto& row : rows) {
        const OneFace a(row.a), b(row.b);
        EXPECT_EQ(a.face.CompareIndexes(b.face, false), row.still);
        EXPECT_EQ(a.face.CompareIndexes(b.face, true), row.rotated);
    }
}

TEST(Face, CopiesCornersAndDataWithinAndAcrossLists)
{
    Mesh mesh, other;
    AddFaces(*mesh.faces, {{0, 1, 2}, {3, 4, 5, 6, 7, 8}});
    AddFaces(*other.faces, {{9, 8}});
    mesh.faces->SetBackFaceMaterial(1, 50);
    C3DFace first, second, foreign;
    mesh.faces->GetFace(0, first);
    mesh.faces->GetFace(1, second);
    other.faces->GetFace(0, foreign);
    second.SetMaterialID(20);

    first.Copy(1u);    // grows into a pool that moves
    EXPECT_EQ(AllCorners(*mesh.faces), (std::vector<std::vector<int>>{{3, 4, 5, 6, 7, 8}, {3, 4, 5, 6, 7, 8}}));
    EXPECT_EQ(mesh.faces->GetFaceMaterial(0), 20u);
    EXPECT_EQ(mesh.faces->GetBackFaceMaterial(0), 50u);
    mesh.faces->GetFace(1, second);
    foreign.Copy(second);
    EXPECT_EQ(Corners(*other.faces, 0).size(), 6u);
    EXPECT_EQ(other.faces->GetFaceMaterial(0), 20u);
    EXPECT_FALSE(other.faces->HasBackFaceMaterials()) << "a chunk that the target lacks is passed over";
    first.Copy(7u);
    EXPECT_EQ(Corners(*mesh.faces, 0).size(), 6u);
    foreign.SetMaterialID(3);
    first.Inherit(foreign);
    EXPECT_EQ(mesh.faces->GetFaceMaterial(0), 3u);
    CheckConsistent(*mesh.faces);
    CheckConsistent(*other.faces);
}

TEST(Face, AViewOfNothingIgnoresEdits)
{
    C3DFace face;
    EXPECT_TRUE(face.IsFlagSet(FACE_INVALID));
    EXPECT_FALSE(face.SetSize(3));
    face.SetTriangle(1, 2, 3);
    EXPECT_EQ(face.AddIndex(1), 0);
    face.SetFlags(0);
    face.Flip();
    face.Copy(face);
    EXPECT_EQ(face.GetNextIndex(0), -1);
    EXPECT_EQ(face.GetData(CHUNK_FACE_PROPERTIES), nullptr);
    EXPECT_EQ(face.GetMaterialID(), 0u);
}
