// Symmetry, corners and slices.

#include <random>

#include <gtest/gtest.h>

#include "geometry/Edge.h"
#include "meshops/IntCoordMap.h"
#include "meshops/Slice.h"
#include "meshops/SymetryMap.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "support/Checksum.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "support/Owned.h"

// The sum is that of a search over all points: pairs by cell of the mirrored place, nearest first, first on ties.
TEST(Symetry, AgreesWithTheToldSearch)
{
    Checksum sum;
    int pairs = 0;
    for (unsigned int seed = 0; seed < 200; seed++) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto value = [&] { return static_cast<float>(std::uniform_int_distribution<int>(-15, 15)(random)) / 4; };
        std::vector<XYZ> points = {{-4, -4, -4}, {4, 4, 4}};    // the box: 8 wide, around 0
        for (int i = 0; i < 40; i++) {
            points.push_back({value(), value() / 4, value() / 4});
            if (i % 2)
                points.push_back({-points.back().x + static_cast<float>(i % 3) / 64, points.back().y, points.back().z});
        }
        Owned<C3DPointList> list(C3DPointList::Create());
        SetPoints(*list, points);
        Owned<C3DPointSymetryMap> map(list->InitSymetryMap(AXIS_X, 0.5));
        for (int p = 0; p < list->GetSize(); p++) {
            const int* partner = map->Find(p);
            sum.Add(partner ? *partner : -1);
            pairs += partner != nullptr;
        }
    }
    EXPECT_GT(pairs, 2000);
    EXPECT_EQ(sum.Get(), 0x5F2069AF3A1A81FEu);
}

TEST(Symetry, MirrorsEdges)
{
    Mesh cube = Cube();
    CGeomInfo info = cube.Info();
    cube.faces->InitPointToFaceGraph(&info);
    Owned<C3DPointSymetryMap> map(cube.points->InitSymetryMap(AXIS_X, 0.5));
    C3DEdge mirrored;
    EXPECT_EQ(map->GetSymetricEdge(cube.faces, C3DEdge(0, 2), mirrored, false), C3DPointSymetryMap::SYMETRIC_EDGE_FOUND);
    EXPECT_EQ(mirrored, C3DEdge(1, 3));
    EXPECT_EQ(map->GetSymetricEdge(cube.faces, C3DEdge(0, 1), mirrored, false), C3DPointSymetryMap::SYMETRIC_EDGE_SELF);
    EXPECT_EQ(map->GetSymetricEdge(cube.faces, C3DEdge(0, 99), mirrored, false), C3DPointSymetryMap::SYMETRIC_EDGE_NONE);
    cube.faces->DeletePointToFaceGraph();

    Mesh flat = QuadGrid(2);
    Owned<C3DPointSymetryMap> none(flat.points->InitSymetryMap(AXIS_Z, 0.5));
    ASSERT_TRUE(none);
    EXPECT_EQ(none->GetCount(), 0u);
    Owned<C3DPointList> empty(C3DPointList::Create());
    EXPECT_EQ(empty->InitSymetryMap(AXIS_X, 0.5), nullptr);
}

TEST(Corners, OfBordersAndFolds)
{
    constexpr double ANGLE = 0.785398;
    Mesh grid = QuadGrid(3);
    CGeomInfo info = grid.Info();
    grid.faces->InitEdgeToFaceGraph(&info);
    EXPECT_EQ(grid.points->Set2DCornerPointsStatus(grid.faces->GetEdgeGraph(), ANGLE), 4u);
    for (const int corner : {0, 3, 12, 15})
        EXPECT_TRUE(grid.points->ElementAt(corner)->IsFlagSet(POINT_2D_CORNER));
    EXPECT_EQ(grid.points->Set3DCornerPointsStatus(grid.faces, ANGLE), 0u);
    grid.faces->DeleteEdgeToFaceGraph();
    Mesh cube = Cube();
    EXPECT_EQ(cube.points->Set3DCornerPointsStatus(cube.faces, ANGLE), 8u);
    EXPECT_EQ(cube.points->Set3DCornerPointsStatus(nullptr, ANGLE), 0u);
}

TEST(Slice, PartsKeepAllFacesAndStayBelowTheLimit)
{
    for (const unsigned int most : {60u, 24u, 9u}) {
        SCOPED_TRACE(most);
        Owned<C3DScene> scene(C3DScene::Create());
        Mesh grid = QuadGrid(12);
        auto* object = new C3DObject(std::exchange(grid.points, nullptr), std::exchange(grid.faces, nullptr), nullptr);
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetName(L"grid");
        node->SetObject(object, true);
        scene->AddNode(nullptr, node);
        C3DSceneNode* sharer = C3DSceneNode::Create();
        sharer->SetObject(scene->CreateObjectInstance(object), true);
        scene->AddNode(nullptr, sharer);

        CCustomData parameters;
        parameters.SetUnsigned(SLICE_MODE, 7);
        EXPECT_FALSE(SliceScene(parameters, scene.get()));
        parameters.SetUnsigned(SLICE_MODE, SLICE_SPLIT);
        parameters.SetUnsigned(SLICE_POINTS, 169);
        EXPECT_FALSE(SliceScene(parameters, scene.get()));
        parameters.SetUnsigned(SLICE_POINTS, most);
        ASSERT_TRUE(SliceScene(parameters, scene.get()));

        int faces = 0, parts = 0;
        CHashTable<unsigned int> objects;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL); pos;) {
            C3DSceneNode* part = scene->GetNextNode(pos);
            const C3DGeomObject& mesh = *part->GetGeomObject();
            EXPECT_LE(mesh.GetPointNbr(), static_cast<int>(most));
            EXPECT_EQ(mesh.GetInstanceCount(), 2);
            CheckConsistent(*mesh.GetFaceList(), mesh.GetPointNbr());
            if (objects.Insert(part->GetObjectID())) {
                faces += mesh.GetFaceNbr();
                parts++;
            }
        }
        EXPECT_EQ(faces, 144);
        EXPECT_GE(parts, 144 / static_cast<int>(most));
        EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 2 * parts);
        EXPECT_TRUE(scene->GetFirstNode(OBJECT_POLYGONAL).GetNode()->GetName() == CXTString<wchar_t>(L"grid-0"));
    }
}

TEST(Slice, WhatCannotBeCutStaysWhole)
{
    Owned<C3DScene> scene(C3DScene::Create());
    std::vector<std::vector<int>> faces;
    for (int i = 0; i < 30; i++)
        faces.push_back({3 * i, 3 * i + 1, 3 * i + 2});
    Mesh pile = MakeMesh(std::vector<XYZ>(90), faces);
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(new C3DObject(std::exchange(pile.points, nullptr), std::exchange(pile.faces, nullptr), nullptr), true);
    scene->AddNode(nullptr, node);
    CCustomData parameters;
    parameters.SetUnsigned(SLICE_POINTS, 10);
    SliceScene(parameters, scene.get());
    EXPECT_EQ(scene->GetFaceNbr(), 30);
}
