#include <gtest/gtest.h>

#include "support/Checksum.h"
#include "support/RandomMesh.h"
#include "tools/AssociationMap.h"

namespace {

struct Border {
    C3DEdge edge;
    int face;
    bool operator==(const Border&) const = default;
};

std::vector<Border> BorderOf(CFaceList& list, CHashTable<int>& faces)
{
    CFaceList::EdgeGraph out;
    out.Add({800, 801}, 5);    // goes
    list.GetEdgesOnBorder(out, faces);
    std::vector<Border> borders;
    for (unsigned int entry = 0; entry < out.GetCount(); entry++) {
        int count;
        const int* values = out.GetValues(entry, count);
        EXPECT_EQ(count, 1);
        borders.push_back({out.GetKey(entry), values[0]});
    }
    return borders;
}

CHashTable<int> Faces(const std::vector<int>& faces)
{
    CHashTable<int> set;
    for (const int face : faces)
        set.Insert(face);
    return set;
}

}

// The sum is that of a count over all edges of the set, walked in the order of a hash table; so is that of the marks.
TEST(Borders, AreTheEdgesOfOneFaceOfTheSet)
{
    Checksum sum, marks;
    for (unsigned int seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        RandomMesh m(seed, seed % 4 ? RandomMesh::MIXED : RandomMesh::BROKEN);
        CFaceList& faces = *m.mesh.faces;
        CHashTable<int> set;
        for (int face = 0; face < m.FaceCount(); face++)
            if (m.Below(3))
                set.Insert(face);
        for (const Border& border : BorderOf(faces, set))
            sum.Add(border.edge.GetFirst(), border.edge.GetSecond(), border.face);

        const CGeomInfo info = m.mesh.Info();
        faces.InitEdgeToFaceGraph(&info);
        faces.SetBorderFacesStatus();
        for (int face = 0; face < m.FaceCount(); face++)
            marks.Add(faces.IsFaceFlagSet(static_cast<unsigned int>(face), FACE_BORDER));
    }
    EXPECT_EQ(sum.Get(), 0x689DC5567EF1450Cu);
    EXPECT_EQ(marks.Get(), 0xC693E50B661F1EBCu);
}

TEST(Borders, OfClosedAndOpenMeshes)
{
    const Mesh cube = Cube();
    CHashTable<int> all = Faces({0, 1, 2, 3, 4, 5}), side = Faces({2});
    EXPECT_TRUE(BorderOf(*cube.faces, all).empty());
    EXPECT_EQ(BorderOf(*cube.faces, side).size(), 4u) << "what the rest of the mesh does there does not count";
    const Mesh book = MakeMesh(std::vector<XYZ>(5), {{0, 1, 2}, {0, 1, 3}, {1, 0, 4}});
    CHashTable<int> pages = Faces({0, 1, 2});
    EXPECT_EQ(BorderOf(*book.faces, pages).size(), 6u) << "the back of three pages is no border";
}

TEST(Borders, MarkPoints)
{
    // Four triangles all around 0, a fifth beside them; point 6 hangs on nothing.
    const Mesh m = MakeMesh(std::vector<XYZ>(7), {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}, {4, 3, 5}});
    const CGeomInfo info = m.Info();
    m.faces->InitEdgeToFaceGraph(&info);
    m.points->SetPointsFlags(POINT_BORDER_LINK | POINT_SLICED, true);
    const auto flags = [&] {
        std::vector<unsigned int> all;
        for (int i = 0; i < 7; i++)
            all.push_back(m.points->ElementAt(i)->GetFlags());
        return all;
    };
    const unsigned int other = POINT_SLICED, border = other | POINT_BORDER, inner = other | POINT_INNER_EDGE;
    const unsigned int both = border | POINT_INNER_EDGE;
    m.points->SetBorderPointsStatus(m.faces->GetEdgeGraph(), false);
    EXPECT_EQ(flags(), (std::vector<unsigned int>{inner, both, both, both, both, border, other})) << "old marks go, other flags stay";
    m.points->SetBorderPointsStatus(m.faces->GetEdgeGraph(), true);
    EXPECT_EQ(flags(), (std::vector<unsigned int>{inner | POINT_BORDER_LINK, both, both, both, both, border, other}));

    CFaceList::EdgeGraph broken;
    broken.Add({-3, 2}, 0);
    broken.Add({2, 7}, 0);
    m.points->SetBorderPointsStatus(broken, true);    // ends outside the list
    EXPECT_EQ(flags()[0], other);
}
