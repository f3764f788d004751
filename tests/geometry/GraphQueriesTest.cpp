#include <gtest/gtest.h>

#include "geometry/ConnectionInfo.h"
#include "geometry/FaceGraphHelper.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"
#include "tools/AssociationMap.h"

namespace {

using Ints = std::vector<int>;
constexpr int KINDS[] = {CONNECT_ANY, CONNECT_BOTH, CONNECT_FIRST_ONLY, CONNECT_SECOND_ONLY, CONNECT_ONE_ONLY, 6, 0};

_ConnectionInfoType Kind(int value) { return static_cast<_ConnectionInfoType>(value); }

Ints Walk(const CHashTable<int>& set)
{
    Ints items;
    for (const int item : set)
        items.push_back(item);
    return items;
}

// With the graph built.
struct Graphed : RandomMesh {
    explicit Graphed(unsigned int seed, Kind kind = MIXED) : RandomMesh(seed, kind), info(mesh.Info()), faces(*mesh.faces)
    {
        faces.InitPointToFaceGraph(&info);
    }
    CGeomInfo info;
    CFaceList& faces;
};

/// The sum over random meshes of what the body adds for each. Sums were written down while they were those of searches through all faces,
/// with results in the slot order of a hash set.
template <class BODY> std::uint64_t OnRandomMeshes(int count, BODY body)
{
    Checksum sum;
    for (int seed = 0; seed < count; seed++) {
        SCOPED_TRACE(seed);
        Graphed m(static_cast<unsigned int>(seed), seed % 5 ? RandomMesh::MIXED : RandomMesh::BROKEN);
        body(m, sum);
    }
    return sum.Get();
}

}

TEST(GraphQueries, FacesOfTwoPoints)
{
    CFaceGraphHelper helper;    // one for all: nothing is left of the query before
    const auto sum = OnRandomMeshes(200, [&](Graphed& m, Checksum& sum) {
        for (const int kind : KINDS)
            for (int p = -1; p <= m.pointCount; p++) {
                const int q = m.Below(m.pointCount + 2) - 1;
                int count;
                const int* found = m.faces.GetFacesConnectedToPoints(helper, p, q, Kind(kind), count);
                sum.Add(List(found, count));
                ASSERT_EQ(found == nullptr, count == 0);
                CHashTable<int> set;
                set.Insert(1000);
                const int size = m.faces.GetFacesConnectedToPoints(set, p, q, Kind(kind), false);
                ASSERT_EQ(set.GetSize(), count + 1) << "what stood in the set stays";
                ASSERT_EQ(size, kind >= 1 && kind <= 5 ? set.GetSize() : 0);
            }
    });
    EXPECT_EQ(sum, 0xE7A190DE9E23A43Cu);
}

TEST(GraphQueries, FacesAroundAFace)
{
    CFaceGraphHelper helper;
    const auto sum = OnRandomMeshes(200, [&](Graphed& m, Checksum& sum) {
        for (const int kind : KINDS)
            for (int face = -1; face <= m.FaceCount(); face++) {
                int count;
                const int* found = m.faces.GetFacesNeighbourg(helper, face, Kind(kind), count);
                sum.Add(List(found, count));
                CHashTable<int> set;
                set.Insert(1000);
                sum.Add(m.faces.GetFacesNeighbourg(set, face, Kind(kind), true));    // the sizes on the way are added up
                ASSERT_EQ(Walk(set), List(found, count));
            }
    });
    EXPECT_EQ(sum, 0x25B6FF4F80872A0u);
}

TEST(GraphQueries, PointsAroundPointsAndEdges)
{
    CFaceGraphHelper helper;
    const auto sum = OnRandomMeshes(200, [&](Graphed& m, Checksum& sum) {
        int count;
        for (const int kind : KINDS)
            for (int p = -1; p <= m.pointCount; p++) {
                const int q = m.Below(m.pointCount);
                const int* found = m.faces.GetPointsNeighbourg(helper, p, count, Kind(kind));
                sum.Add(List(found, count));
                sum.Add(m.faces.IsPointNeighbourg(helper, p, q));
                found = m.faces.GetPointsConnectedToPoints(helper, p, q, Kind(kind), count);
                sum.Add(List(found, count));
                CHashTable<int> set;
                set.Insert(-7);
                m.faces.GetPointsConnectedToPoints(set, p, q, Kind(kind));
                sum.Add(Walk(set));
            }
        for (int p = 0; p < m.pointCount; p++)
            for (int q = 0; q < m.pointCount; q++)
                for (const bool excludeEnds : {false, true}) {
                    count = 99;
                    const int* found = m.faces.GetPointsConnectedToEdge(helper, p, q, count, excludeEnds);
                    sum.Add(List(found, count));
                }
    });
    EXPECT_EQ(sum, 0xB8142A2201CFBB32u);
}

TEST(GraphQueries, EdgesAndLonelyFaces)
{
    const auto sum = OnRandomMeshes(200, [&](Graphed& m, Checksum& sum) {
        for (int p = -2; p <= m.pointCount; p++)
            for (int q = p; q <= m.pointCount; q++) {
                const C3DEdge edge(q, p);
                sum.Add(m.faces.DoesEdgeExists(edge, -1), m.faces.DoesEdgeExists(edge, m.Below(m.FaceCount() + 1)));
            }
        for (int face = 0; face < m.FaceCount(); face++)
            sum.Add(m.faces.IsIsolatedFace(face));
        ASSERT_FALSE(m.faces.IsIsolatedFace(m.FaceCount())) << "a query beyond the list answers empty";
        ASSERT_FALSE(m.faces.IsIsolatedFace(-1));
    });
    EXPECT_EQ(sum, 0x81069CA763D6746Eu);
}

TEST(GraphQueries, FacesHangTogetherThroughPointsOfTheSetAlone)
{
    const auto sum = OnRandomMeshes(300, [&](Graphed& m, Checksum& sum) {
        CHashTable<int> faces;
        for (int face = 0; face < m.FaceCount(); face++)
            if (m.Below(3))
                faces.Insert(face);
        m.faces.DeletePointToFaceGraph();
        sum.Add(m.faces.AreFacesConnected(&m.info, faces));
        ASSERT_TRUE(m.faces.HasPointToFaceGraph()) << "the caller balances the use";
    });
    EXPECT_EQ(sum, 0xC3C9478AA20AD0A6u);
    Mesh tie = BowTie();
    CGeomInfo info = tie.Info();
    CHashTable<int> both;
    both.Insert(0);
    both.Insert(1);
    EXPECT_TRUE(tie.faces->AreFacesConnected(&info, both)) << "one point is enough";
}

TEST(GraphQueries, TrianglesAcrossTheOtherSides)
{
    CFaceGraphHelper helper;
    Checksum sum;
    for (unsigned int seed = 0; seed < 300; seed++) {
        Graphed m(seed, RandomMesh::TRIANGLES);
        for (int options = 0; options < 8; options++)
            for (int p = 0; p < m.pointCount; p++) {
                const int q = m.Below(m.pointCount);
                if (p == q)
                    continue;
                CFaceList::EdgeGraph out;
                out.Add({900, 901}, 1);
                sum.Add(m.faces.GetFacesByOppositeEdges(helper, p, q, Kind(options), out));
                for (unsigned int entry = 0; entry < out.GetCount(); entry++) {
                    int count;
                    const int* values = out.GetValues(entry, count);
                    sum.Add(out.GetKey(entry).GetFirst(), out.GetKey(entry).GetSecond(), List(values, count));
                }
            }
    }
    EXPECT_EQ(sum.Get(), 0xF37FF3BA29E3FF93u);
}

TEST(GraphQueries, HubsWithManyFacesJoinLikeSmallPoints)
{
    // Faults in mind: long lists are joined through a table, and by another rule.
    constexpr int SPOKES = 300;
    std::vector<Ints> faces;
    for (int i = 0; i < SPOKES; i++)
        faces.push_back(i % 3 == 0 ? Ints{0, 2 + i, 3 + i} : i % 3 == 1 ? Ints{1, 2 + i, 3 + i} : Ints{0, 1, 2 + i});
    const Mesh m = MakeMesh(std::vector<XYZ>(SPOKES + 4), faces);
    CGeomInfo info = m.Info();
    m.faces->InitPointToFaceGraph(&info);
    CFaceGraphHelper helper;
    Checksum sum;
    for (const int kind : KINDS) {
        int count;
        const int* found = m.faces->GetFacesConnectedToPoints(helper, 0, 1, Kind(kind), count);
        sum.Add(List(found, count));
    }
    EXPECT_EQ(sum.Get(), 0xE7529D941CF5A77u);
}
