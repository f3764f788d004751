#include <gtest/gtest.h>

#include <map>

#include "support/Checksum.h"
#include "support/RandomMesh.h"
#include "tools/AssociationMap.h"

namespace {

std::vector<int> OfPoint(const CFaceList& faces, int point)
{
    int count;
    const int* found = faces.GetFacesConnectedToPoint(point, count);
    EXPECT_EQ(found == nullptr, count == 0);
    return List(found, count);
}

std::vector<int> OfEdge(CFaceList& faces, const C3DEdge& edge)
{
    int count;
    const int* found = faces.GetFacesConnectedToEdge(edge, count);
    EXPECT_EQ(found == nullptr, count == 0);
    return List(found, count);
}

}

TEST(Edge, HasNoDirectionAndHashesItsLowerEndFirst)
{
    EXPECT_EQ(C3DEdge(5, 2), C3DEdge(2, 5));
    EXPECT_EQ(C3DEdge(5, 2).GetFirst(), 2);
    EXPECT_EQ(C3DEdge(5, 2).GetHash(), 2u * 256 + 5);
    EXPECT_EQ(C3DEdge(0x01000001, 0x01000002).GetHash(), 0x01000102u) << "unsigned, 32 bits";
}

// The sums are those of searches through all faces, on meshes of every kind, with the walk in the order of a hash table.
TEST(FaceGraph, PointsAndEdgesKnowTheirLiveFaces)
{
    Checksum points, edges;
    for (unsigned int seed = 0; seed < 400; seed++) {
        SCOPED_TRACE(seed);
        const RandomMesh m(seed, seed % 4 ? RandomMesh::MIXED : RandomMesh::BROKEN);
        const CGeomInfo info = m.mesh.Info();
        CFaceList& faces = *m.mesh.faces;
        faces.InitPointToFaceGraph(&info);
        for (int point = -4; point < m.pointCount + 4; point++)
            points.Add(OfPoint(faces, point));
        faces.DeletePointToFaceGraph();
        EXPECT_TRUE(OfPoint(faces, 0).empty());

        faces.InitEdgeToFaceGraph(&info);
        auto& graph = faces.GetEdgeGraph();
        const auto add = [&](const C3DEdge& edge) { edges.Add(edge.GetFirst(), edge.GetSecond(), OfEdge(faces, edge)); };
        for (unsigned int entry = 0; entry < graph.GetCount(); entry++)    // in the order of their first faces
            add(graph.GetKey(entry));
        for (unsigned int pos = graph.GetFirst(); pos != HASH_END;)
            add(graph.GetKey(graph.GetNext(pos)));
        EXPECT_TRUE(OfEdge(faces, C3DEdge(500, 5000)).empty());
        faces.DeleteEdgeToFaceGraph();
        EXPECT_TRUE(OfEdge(faces, C3DEdge(0, 1)).empty());
    }
    EXPECT_EQ(points.Get(), 0xAD48058CCF840CA4u);
    EXPECT_EQ(edges.Get(), 0x88D5A941B65D2182u);
}

TEST(FaceGraph, AFaceIsListedOnceAtARepeatedPointAndTwiceOnADoubledEdge)
{
    const Mesh m = MakeMesh(std::vector<XYZ>(4), {{0, 1, 0, 2}, {1, 0, 3}});
    const CGeomInfo info = m.Info();
    m.faces->InitPointToFaceGraph(&info);
    m.faces->InitEdgeToFaceGraph(&info);
    EXPECT_EQ(OfPoint(*m.faces, 0), (std::vector<int>{0, 1}));
    EXPECT_EQ(OfEdge(*m.faces, {0, 1}), (std::vector<int>{0, 0, 1}));
    EXPECT_EQ(OfEdge(*m.faces, {2, 0}), (std::vector<int>{0, 0}));
}

TEST(FaceGraph, LargeMeshesGrowAndFillLikeSmallOnes)
{
    // Faults in mind: batches that end inside a face, tables that grow in a batch, entry counts of 16 bits at the hub of a fan.
    constexpr int SPOKES = 70000;
    const Mesh fan = Fan(SPOKES);
    const CGeomInfo fanInfo = fan.Info();
    fan.faces->InitPointToFaceGraph(&fanInfo);
    const std::vector<int> hub = OfPoint(*fan.faces, 0);
    ASSERT_EQ(hub.size(), static_cast<std::size_t>(SPOKES));
    for (int i = 0; i < SPOKES; i++)
        ASSERT_EQ(hub[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(OfPoint(*fan.faces, 7), (std::vector<int>{5, 6}));

    constexpr int SIDE = 60;
    const Mesh grid = QuadGrid(SIDE);
    std::vector<int> wide(5000);    // more edges than the faces before let expect
    for (std::size_t k = 0; k < wide.size(); k++)
        wide[k] = static_cast<int>(k * 7 % (61 * 61));
    AddFaces(*grid.faces, {wide});
    const CGeomInfo info = grid.Info();
    grid.faces->InitEdgeToFaceGraph(&info);
    std::map<std::pair<int, int>, std::vector<int>> expected;
    for (int i = 0; i < grid.faces->GetSize(); i++) {
        const std::vector<int> c = Corners(*grid.faces, i);
        for (std::size_t k = 0; k < c.size(); k++)
            expected[std::minmax(c[k], c[(k + 1) % c.size()])].push_back(i);
    }
    EXPECT_EQ(grid.faces->GetEdgeGraph().GetCount(), expected.size());
    for (const auto& [ends, faces] : expected)
        ASSERT_EQ(OfEdge(*grid.faces, C3DEdge(ends.first, ends.second)), faces);
}

TEST(FaceGraph, LivesAsLongAsSomeoneUsesIt)
{
    const Mesh cube = Cube();
    const CGeomInfo info = cube.Info();
    CFaceList& faces = *cube.faces;
    EXPECT_FALSE(faces.UpdatePointToFaceGraph(&info));
    EXPECT_FALSE(faces.UpdateEdgeToFaceGraph(&info)) << "nobody uses it";
    faces.DeletePointToFaceGraph();    // one too many is ignored

    faces.InitPointToFaceGraph(&info);
    faces.InitPointToFaceGraph(&info);
    faces.DeletePointToFaceGraph();
    EXPECT_TRUE(faces.HasPointToFaceGraph());
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 2, 5}));
    faces.DeletePointToFaceGraph();
    EXPECT_FALSE(faces.HasPointToFaceGraph());
    EXPECT_TRUE(OfPoint(faces, 0).empty());

    faces.InitEdgeToFaceGraph(&info);
    faces.InitEdgeToFaceGraph(&info);
    faces.DeleteEdgeToFaceGraph();
    EXPECT_EQ(OfEdge(faces, {0, 1}), (std::vector<int>{0, 2}));
    faces.DeleteEdgeToFaceGraph();
    EXPECT_TRUE(OfEdge(faces, {0, 1}).empty());

    const Mesh none = MakeMesh({}, {});
    const CGeomInfo noneInfo = none.Info();
    none.faces->InitPointToFaceGraph(&noneInfo);
    none.faces->InitEdgeToFaceGraph(&noneInfo);
    EXPECT_TRUE(none.faces->HasPointToFaceGraph() && none.faces->HasEdgeToFaceGraph()) << "without faces the use still counts";
    none.faces->InitPointToFaceGraph(nullptr);
}

TEST(FaceGraph, FollowsChangesOfTheList)
{
    const Mesh cube = Cube();
    const CGeomInfo info = cube.Info();
    CFaceList& faces = *cube.faces;
    faces.InitPointToFaceGraph(&info);
    faces.InitEdgeToFaceGraph(&info);

    faces.SetFaceFlag(2, FACE_INVALID, true);    // in place: seen by an update, not before
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 2, 5}));
    EXPECT_FALSE(faces.UpdatePointToFaceGraph(&info)) << "false though it built";
    EXPECT_TRUE(faces.UpdateEdgeToFaceGraph(&info));
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 5}));
    EXPECT_EQ(OfEdge(faces, {0, 1}), (std::vector<int>{0}));

    AddFaces(faces, {{0, 1, 7}});    // marks the list: the next Init builds for all users
    faces.InitPointToFaceGraph(&info);
    faces.InitEdgeToFaceGraph(&info);
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 5, 6}));
    EXPECT_EQ(OfEdge(faces, {0, 1}), (std::vector<int>{0, 6}));
    faces.DeletePointToFaceGraph();
    EXPECT_TRUE(faces.HasPointToFaceGraph());

    faces.RemoveAll();
    EXPECT_FALSE(faces.HasPointToFaceGraph());
    EXPECT_FALSE(faces.HasEdgeToFaceGraph());
    EXPECT_TRUE(OfPoint(faces, 0).empty());
    EXPECT_TRUE(OfEdge(faces, {0, 1}).empty());
}

TEST(FaceGraph, IsKeptRightWhileFacesAreEdited)
{
    const Mesh cube = Cube();
    CGeomInfo info = cube.Info();
    CFaceList& faces = *cube.faces;
    EXPECT_FALSE(faces.GraphConnectFace(0, 1));
    EXPECT_FALSE(faces.GraphDisconnectFace(0, 0));
    EXPECT_EQ(faces.GraphRemoveFaceReference(&info, 0, true), 0);
    EXPECT_EQ(faces.GraphMergePointConnectivity(0, 1), 0) << "nothing without a graph";

    faces.InitPointToFaceGraph(&info);
    EXPECT_FALSE(faces.GraphConnectFace(0, 2)) << "there already";
    EXPECT_TRUE(faces.GraphConnectFace(0, 1));
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 2, 5, 1})) << "at the end, out of order";
    EXPECT_TRUE(faces.GraphConnectFace(8, 1)) << "beyond the graph: true, and nothing happens";
    EXPECT_TRUE(faces.GraphDisconnectFace(0, 2));
    EXPECT_FALSE(faces.GraphDisconnectFace(0, 2));
    EXPECT_FALSE(faces.GraphDisconnectFace(-1, 2));
    EXPECT_EQ(OfPoint(faces, 0), (std::vector<int>{0, 5, 1})) << "the others keep their order";

    EXPECT_EQ(faces.GraphMergePointConnectivity(0, 7), 5);
    EXPECT_EQ(OfPoint(faces, 7), (std::vector<int>{1, 3, 4, 0, 5}));
    EXPECT_TRUE(OfPoint(faces, 0).empty());
    EXPECT_EQ(faces.GraphMergePointConnectivity(7, 7), 5) << "with itself nothing changes";
    EXPECT_EQ(faces.GraphMergePointConnectivity(3, 8), 0);
    EXPECT_EQ(OfPoint(faces, 3), (std::vector<int>{0, 3, 4})) << "nothing goes to a point beyond the graph";
}

TEST(FaceGraph, CountsThePointsThatLoseTheirLastFace)
{
    const Mesh m = MakeMesh(std::vector<XYZ>(5), {{0, 1, 2, 1}, {2, 3, 4}});
    CGeomInfo info = m.Info();
    m.faces->InitPointToFaceGraph(&info);
    EXPECT_EQ(m.faces->GraphRemoveFaceReference(&info, 0, false), 2) << "0 and, once, 1; 2 has another face";
    EXPECT_EQ(m.points->GetNumberOfPoints(POINT_INVALID, true), 0);
    EXPECT_EQ(m.faces->GraphRemoveFaceReference(&info, 0, true), 0) << "gone already";
    EXPECT_EQ(m.faces->GraphRemoveFaceReference(&info, 1, true), 3);
    for (int point = 0; point < 5; point++)
        EXPECT_EQ(m.points->ElementAt(point)->IsFlagSet(POINT_INVALID), point >= 2) << point;
}
