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

TEST(Face, MarksItselfByItsSize)
{
    // Three corners make a face valid in SetSize, two in AddIndex; RemoveIndex only ever marks.
    OneFace one({});
    C3DFace& face = one.face;
    const struct {
        const char* name;
        bool (*edit)(CFace&);
        std::vector<int> corners;
        bool invalid;
    } rows[] = {
        {"SetSize(2)", [](CFace& f) { return f.SetSize(2); }, {0, 0}, true},
        {"SetTriangle",
         [](CFace& f) {
             f.SetTriangle(1, 2, 3);
             return true;
         },
         {1, 2, 3},
         false},
        {"RemoveIndex", [](CFace& f) { return f.RemoveIndex(2); }, {1, 3}, true},
        {"AddIndex to 3", [](CFace& f) { return f.AddIndex(4) == 3; }, {1, 3, 4}, false},
        {"SetSize(1)", [](CFace& f) { return f.SetSize(1); }, {1}, true},
        {"AddIndex to 2", [](CFace& f) { return f.AddIndex(5) == 2; }, {1, 5}, false},
        {"SetQuadrangle",
         [](CFace& f) {
             f.SetQuadrangle(6, 7, 8, 9);
             return true;
         },
         {6, 7, 8, 9},
         false},
        {"RemoveIndex of 4", [](CFace& f) { return f.RemoveIndex(6); }, {7, 8, 9}, false},
        {"RemoveIndex of a stranger", [](CFace& f) { return !f.RemoveIndex(6); }, {7, 8, 9}, false},
        {"SetSize(3)", [](CFace& f) { return f.SetSize(3); }, {7, 8, 9}, false},
        {"RemoveAll",
         [](CFace& f) {
             f.RemoveAll();
             return true;
         },
         {},
         true},
        {"AddIndex to 1", [](CFace& f) { return f.AddIndex(5) == 1; }, {5}, true},
        {"too large",
         [](CFace& f) {
             f.SetTriangle(1, 2, 3);
             return !f.SetSize(65536);
         },
         {1, 2, 3},
         false},
        {"negative", [](CFace& f) { return !f.SetSize(-1); }, {1, 2, 3}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(row.edit(face));
        EXPECT_EQ(Corners(*one.faces, 0), row.corners);
        EXPECT_EQ(face.IsFlagSet(FACE_INVALID), row.invalid);
        CheckConsistent(*one.faces);
    }
    EXPECT_TRUE(face.SetSize(65535));
    EXPECT_EQ(face.AddIndex(1), 65535);
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
