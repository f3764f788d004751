#include <gtest/gtest.h>

#include <set>

#include "geometry/ConnectionInfo.h"
#include "geometry/FaceGraphHelper.h"
#include "support/RandomMesh.h"
#include "support/SlotOrder.h"
#include "tools/AssociationMap.h"

// Each query against a search through all faces. Results must also stand in the slot order of a hash set.

namespace {

using Ints = std::vector<int>;
constexpr int KINDS[] = {CONNECT_ANY, CONNECT_BOTH, CONNECT_FIRST_ONLY, CONNECT_SECOND_ONLY, CONNECT_ONE_ONLY, 6, 0};

_ConnectionInfoType Kind(int value) { return static_cast<_ConnectionInfoType>(value); }

Ints InSlots(const Ints& items)
{
    SlotOrder<int> order;
    for (const int item : items)
        order.Insert(item);
    return order.Keys();
}

Ints InSlots(const CHashTable<int>& set)
{
    Ints items;
    for (const int item : set)
        items.push_back(item);
    return items;
}

bool Has(const Ints& items, int item) { return std::find(items.begin(), items.end(), item) != items.end(); }

Ints Joined(const Ints& a, const Ints& b, int kind)
{
    Ints joined;
    for (const int item : a)
        if (kind == CONNECT_ANY || (kind == CONNECT_BOTH && Has(b, item)) ||
            ((kind == CONNECT_FIRST_ONLY || kind == CONNECT_ONE_ONLY) && !Has(b, item)))
            joined.push_back(item);
    for (const int item : b)
        if (kind == CONNECT_ANY || ((kind == CONNECT_SECOND_ONLY || kind == CONNECT_ONE_ONLY) && !Has(a, item)))
            joined.push_back(item);
    return joined;
}

// With the graph built.
struct Graphed : RandomMesh {
    explicit Graphed(unsigned int seed, Kind kind = MIXED) : RandomMesh(seed, kind), info(mesh.Info()), faces(*mesh.faces)
    {
        faces.InitPointToFaceGraph(&info);
    }
    Ints Around(int point, int kind) const
    {
        Ints points;
        for (const int face : FacesOf(point)) {
            const Ints& c = corners[static_cast<std::size_t>(face)];
            const std::size_t n = c.size(), first = static_cast<std::size_t>(std::find(c.begin(), c.end(), point) - c.begin());
            for (std::size_t k = 0; k < n; k++) {
                if (kind == CONNECT_BOTH && c[k] == point)
                    points.insert(points.end(), {c[(k + n - 1) % n], c[(k + 1) % n]});
                if (kind == CONNECT_FIRST_ONLY && c[k] != point)
                    points.push_back(c[k]);
                if (kind != CONNECT_BOTH && kind != CONNECT_FIRST_ONLY && k >= 2 && k + 2 <= n)
                    points.push_back(c[(first + k) % n]);
            }
        }
        return points;
    }
    Ints Together(int p, int q) const { return Joined(FacesOf(p), FacesOf(q), CONNECT_BOTH); }

    CGeomInfo info;
    CFaceList& faces;
};

template <class BODY> void OnRandomMeshes(int count, BODY body)
{
    for (int seed = 0; seed < count; seed++) {
        SCOPED_TRACE(seed);
        Graphed m(static_cast<unsigned int>(seed), seed % 5 ? RandomMesh::MIXED : RandomMesh::BROKEN);
        body(m);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

}

TEST(GraphQueries, FacesOfTwoPoints)
{
    CFaceGraphHelper helper;    // one for all: nothing is left of the query before
    OnRandomMeshes(200, [&](Graphed& m) {
        for (const int kind : KINDS)
            for (int p = -1; p <= m.pointCount; p++) {
                const int q = m.Below(m.pointCount + 2) - 1;
                const Ints expected = InSlots(Joined(m.FacesOf(p), m.FacesOf(q), kind));
                int count;
                const int* found = m.faces.GetFacesConnectedToPoints(helper, p, q, Kind(kind), count);
                ASSERT_EQ(List(found, count), expected);
                ASSERT_EQ(found == nullptr, count == 0);
                CHashTable<int> set;
                set.Insert(1000);
                const int size = m.faces.GetFacesConnectedToPoints(set, p, q, Kind(kind), false);
                ASSERT_EQ(set.GetSize(), static_cast<int>(expected.size()) + 1) << "what stood in the set stays";
                ASSERT_EQ(size, kind >= 1 && kind <= 5 ? set.GetSize() : 0);
            }
    });
}

TEST(GraphQueries, FacesAroundAFace)
{
    CFaceGraphHelper helper;
    OnRandomMeshes(200, [&](Graphed& m) {
        for (const int kind : KINDS)
            for (int face = -1; face <= m.FaceCount(); face++) {
                Ints all;
                int sum = 0;
                if ((kind == CONNECT_ANY || kind == CONNECT_BOTH) && face >= 0 && face < m.FaceCount()) {
                    const Ints& c = m.corners[static_cast<std::size_t>(face)];
                    for (std::size_t k = 0; k < c.size(); k++) {
                        const Ints more = Joined(m.FacesOf(c[k]), m.FacesOf(c[(k + 1) % c.size()]), kind);
                        all.insert(all.end(), more.begin(), more.end());
                        sum += static_cast<int>(InSlots(all).size());
                    }
                }
                int count;
                const int* found = m.faces.GetFacesNeighbourg(helper, face, Kind(kind), count);
                ASSERT_EQ(List(found, count), InSlots(all));
                CHashTable<int> set;
                set.Insert(1000);
                ASSERT_EQ(m.faces.GetFacesNeighbourg(set, face, Kind(kind), true), sum) << "the sizes on the way are added up";
                ASSERT_EQ(InSlots(set), InSlots(all));
            }
    });
}

TEST(GraphQueries, PointsAroundPoints)
{
    CFaceGraphHelper helper;
    OnRandomMeshes(200, [&](Graphed& m) {
        for (const int kind : KINDS)
            for (int p = -1; p <= m.pointCount; p++) {
                const int q = m.Below(m.pointCount);
                int count;
                const int* found = m.faces.GetPointsNeighbourg(helper, p, count, Kind(kind));
                if (kind == CONNECT_FIRST_ONLY) {    // the point leaves a mark in the table, not in the result
                    Ints sorted = List(found, count), expected = InSlots(m.Around(p, kind));
                    std::sort(sorted.begin(), sorted.end());
                    std::sort(expected.begin(), expected.end());
                    ASSERT_EQ(sorted, expected);
                } else
                    ASSERT_EQ(List(found, count), InSlots(m.Around(p, kind)));
                ASSERT_EQ(m.faces.IsPointNeighbourg(helper, p, q), Has(m.Around(p, CONNECT_BOTH), q));

                const Ints both = InSlots(Joined(InSlots(m.Around(p, CONNECT_BOTH)), InSlots(m.Around(q, CONNECT_BOTH)), kind));
                found = m.faces.GetPointsConnectedToPoints(helper, p, q, Kind(kind), count);
                ASSERT_EQ(List(found, count), both);
                CHashTable<int> set;
                set.Insert(-7);
                m.faces.GetPointsConnectedToPoints(set, p, q, Kind(kind));
                ASSERT_EQ(set.GetSize(), static_cast<int>(both.size()) + (Has(both, -7) ? 0 : 1));
            }
    });
}

TEST(GraphQueries, PointsAroundAnEdge)
{
    CFaceGraphHelper helper;
    OnRandomMeshes(200, [&](Graphed& m) {
        for (int p = 0; p < m.pointCount; p++)
            for (int q = 0; q < m.pointCount; q++) {
                Ints all;
                for (const int face : InSlots(m.Together(p, q)))
                    all.insert(all.end(), m.corners[static_cast<std::size_t>(face)].begin(),
                               m.corners[static_cast<std::size_t>(face)].end());
                all = InSlots(all);
                if (p == q || all.size() == 2)
                    all.clear();
                Ints inner = all;
                std::erase_if(inner, [&](int point) { return point == p || point == q; });
                for (const bool excludeEnds : {false, true}) {
                    int count = 99;
                    const int* found = m.faces.GetPointsConnectedToEdge(helper, p, q, count, excludeEnds);
                    ASSERT_EQ(List(found, count), excludeEnds ? inner : all);
                }
            }
    });
}

TEST(GraphQueries, EdgesAndLonelyFaces)
{
    OnRandomMeshes(200, [&](Graphed& m) {
        for (int p = -2; p <= m.pointCount; p++)
            for (int q = p; q <= m.pointCount; q++) {
                const C3DEdge edge(q, p);
                const Ints along = p >= 0 && p < m.pointCount ? m.FacesOf(edge) : Ints();
                ASSERT_EQ(m.faces.DoesEdgeExists(edge, -1), !along.empty()) << p << ' ' << q;
                const int face = m.Below(m.FaceCount() + 1);
                ASSERT_EQ(m.faces.DoesEdgeExists(edge, face), Has(along, face));
            }
        for (int face = 0; face < m.FaceCount(); face++) {
            const Ints& c = m.corners[static_cast<std::size_t>(face)];
            ASSERT_EQ(m.faces.IsIsolatedFace(face), std::all_of(c.begin(), c.end(), [&](int p) { return m.FacesOf(p).size() <= 1; }));
        }
        ASSERT_FALSE(m.faces.IsIsolatedFace(m.FaceCount())) << "a query beyond the list answers empty";
        ASSERT_FALSE(m.faces.IsIsolatedFace(-1));
    });
}

TEST(GraphQueries, FacesHangTogetherThroughPointsOfTheSetAlone)
{
    OnRandomMeshes(300, [&](Graphed& m) {
        CHashTable<int> faces;
        Ints members;
        for (int face = 0; face < m.FaceCount(); face++)
            if (m.Below(3))
                if (faces.Insert(face); true)
                    members.push_back(face);
        std::set<int> reached;    // spreads until nothing is added
        if (!members.empty())
            for (const int corner : m.corners[static_cast<std::size_t>(InSlots(members)[0])])
                for (const int face : m.FacesOf(corner))
                    if (Has(members, face))
                        reached.insert(face);
        for (std::size_t before = 0; before != reached.size();) {
            before = reached.size();
            for (const int from : std::set<int>(reached))
                for (const int corner : m.corners[static_cast<std::size_t>(from)])
                    for (const int face : m.FacesOf(corner))
                        if (Has(members, face))
                            reached.insert(face);
        }
        m.faces.DeletePointToFaceGraph();
        ASSERT_EQ(m.faces.AreFacesConnected(&m.info, faces), reached.size() == members.size());
        ASSERT_TRUE(m.faces.HasPointToFaceGraph()) << "the caller balances the use";
    });
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
    for (unsigned int seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        Graphed m(seed, RandomMesh::TRIANGLES);
        for (int options = 0; options < 8; options++)
            for (int p = 0; p < m.pointCount; p++) {
                const int q = m.Below(m.pointCount);
                if (p == q)
                    continue;
                const Ints start = InSlots(m.Together(p, q));
                SlotOrder<C3DEdge> sides[2];
                for (const int face : start)
                    for (const int third : m.corners[static_cast<std::size_t>(face)])
                        if (third != p && third != q) {
                            if (options & 1)
                                sides[0].Insert({p, third});
                            if (options & 2)
                                sides[1].Insert({q, third});
                        }
                std::vector<std::pair<C3DEdge, Ints>> expected;
                for (const auto& side : sides)
                    for (const C3DEdge& edge : side.Keys()) {
                        Ints across = InSlots(m.Together(edge.GetFirst(), edge.GetSecond()));
                        std::erase_if(across, [&](int face) { return (options & 4) && Has(start, face); });
                        if (!across.empty())
                            expected.emplace_back(edge, across);
                    }
                CFaceList::EdgeGraph out;
                out.Add({900, 901}, 1);
                ASSERT_EQ(m.faces.GetFacesByOppositeEdges(helper, p, q, Kind(options), out), static_cast<int>(expected.size()));
                ASSERT_EQ(out.GetCount(), expected.size());
                for (unsigned int entry = 0; entry < expected.size(); entry++) {
                    int count;
                    const int* values = out.GetValues(entry, count);
                    ASSERT_EQ(out.GetKey(entry), expected[entry].first);
                    ASSERT_EQ(List(values, count), expected[entry].second);
                }
            }
    }
}

TEST(GraphQueries, OnWellKnownMeshes)
{
    CFaceGraphHelper helper;
    int count;
    const auto sorted = [&](const int* items) {
        Ints list = List(items, count);
        std::sort(list.begin(), list.end());
        return list;
    };
    const Mesh cube = Cube();
    CGeomInfo info = cube.Info();
    EXPECT_EQ(cube.faces->GetFacesNeighbourg(helper, 0, CONNECT_BOTH, count), nullptr) << "no graph, no answer";
    EXPECT_FALSE(cube.faces->DoesEdgeExists({0, 1}, -1));
    EXPECT_FALSE(cube.faces->IsIsolatedFace(0));
    cube.faces->InitPointToFaceGraph(&info);
    EXPECT_EQ(sorted(cube.faces->GetFacesNeighbourg(helper, 0, CONNECT_BOTH, count)), (Ints{0, 2, 3, 4, 5})) << "all but the one opposite";
    EXPECT_EQ(sorted(cube.faces->GetFacesNeighbourg(helper, 0, CONNECT_ANY, count)), (Ints{0, 2, 3, 4, 5}));
    EXPECT_EQ(sorted(cube.faces->GetPointsNeighbourg(helper, 0, count, CONNECT_BOTH)), (Ints{1, 2, 4}));

    const Mesh quad = MakeMesh(std::vector<XYZ>(4), {{0, 1, 2, 3}});
    CGeomInfo quadInfo = quad.Info();
    quad.faces->InitPointToFaceGraph(&quadInfo);
    EXPECT_EQ(sorted(quad.faces->GetPointsNeighbourg(helper, 0, count, CONNECT_BOTH)), (Ints{1, 3}));
    EXPECT_EQ(sorted(quad.faces->GetPointsNeighbourg(helper, 0, count, CONNECT_FIRST_ONLY)), (Ints{1, 2, 3}));
    EXPECT_EQ(sorted(quad.faces->GetPointsNeighbourg(helper, 0, count, CONNECT_ANY)), (Ints{2}));
    EXPECT_TRUE(quad.faces->IsIsolatedFace(0));

    const Mesh kite = MakeMesh(std::vector<XYZ>(6), {{0, 1, 2}, {1, 0, 3}, {4, 5}});
    CGeomInfo kiteInfo = kite.Info();
    kite.faces->InitPointToFaceGraph(&kiteInfo);
    EXPECT_EQ(sorted(kite.faces->GetPointsConnectedToEdge(helper, 0, 1, count, false)), (Ints{0, 1, 2, 3}));
    EXPECT_EQ(sorted(kite.faces->GetPointsConnectedToEdge(helper, 1, 0, count, true)), (Ints{2, 3}));
    EXPECT_EQ(sorted(kite.faces->GetPointsConnectedToEdge(helper, 1, 2, count, false)), (Ints{0, 1, 2}));
    EXPECT_EQ(sorted(kite.faces->GetPointsConnectedToEdge(helper, 1, 2, count, true)), (Ints{0}));
    EXPECT_EQ(kite.faces->GetPointsConnectedToEdge(helper, 4, 5, count, false), nullptr) << "a face of nothing but the edge";
    EXPECT_EQ(count, 0);
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
    Ints a, b;
    for (int i = 0; i < SPOKES; i++) {
        if (i % 3 != 1)
            a.push_back(i);
        if (i % 3 != 0)
            b.push_back(i);
    }
    CFaceGraphHelper helper;
    int count;
    for (const int kind : KINDS) {
        const int* found = m.faces->GetFacesConnectedToPoints(helper, 0, 1, Kind(kind), count);
        EXPECT_EQ(List(found, count), InSlots(Joined(a, b, kind))) << kind;
    }
}
