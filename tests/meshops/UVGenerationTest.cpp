#include <cmath>

#include "meshops/ObjectCase.h"
#include "meshops/UVGeneration.h"
#include "scene/3DScene.h"

namespace {

constexpr unsigned int MATERIAL = 5;

/// A scene with one object, whose faces have a material with a map.
struct Projected {
    Owned<C3DScene> scene{C3DScene::Create()};
    C3DObject* object;
    CMaterialMap* map;

    Projected(Mesh mesh, MapProjection projection, MapAxis axis = MAP_AXIS_X)
        : object(new C3DObject(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr)),
          map(scene->CreateNewMaterial(MATERIAL)->AddMaterialMap(L"a.png", NO_CHANNEL_ID, MAP_DIFFUSE, projection))
    {
        map->SetAxis(axis);
        for (int face = 0; face < object->GetFaceNbr(); face++)
            object->GetFaceList()->SetFaceMaterial(face, MATERIAL);
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetObject(object, true);
        scene->AddNode(nullptr, node);
    }
    const CUVWChannel* Channel() const { return static_cast<CUVWChannel*>(object->GetChannelByID(map->GetChannelID(), CHANNEL_UVW)); }
    std::pair<double, double> At(int face, int corner) const
    {
        const CUVWPoint& uv = *(*Channel()->GetUVWPointList())[Corners(*Channel()->GetFaceList(), face)[corner]];
        return {uv.u, uv.v};
    }
};

Mesh OneTriangle(XYZ a) { return MakeMesh({a, {9, 9, 9}, {8, 9, 9}}, {{0, 1, 2}}); }

}

TEST(UVGeneration, ProjectsByRuleAndAxis)
{
    const double turn = 6.2831832;
    const struct {
        MapProjection projection;
        MapAxis axis;
        XYZ point;
        double u, v;
    } rows[] = {
        {PROJECTION_PLANAR, MAP_AXIS_X, {1, 2, 3}, 3.5, -1.5},
        {PROJECTION_PLANAR, MAP_AXIS_Y, {1, 2, 3}, 1.5, -2.5},
        {PROJECTION_PLANAR, MAP_AXIS_Z, {1, 2, 3}, 1.5, -1.5},
        {PROJECTION_CYLINDRICAL, MAP_AXIS_Z, {0, 0, 3}, 1, -2.5},    // on the axis
        {PROJECTION_CYLINDRICAL, MAP_AXIS_Z, {0, -1, 0}, 1, 0.5},    // -atan2(0, 1)
        {PROJECTION_CYLINDRICAL, MAP_AXIS_Z, {1, -1, 0}, 1 - std::atan2(1, 1) / turn, 0.5},
        {PROJECTION_CYLINDRICAL, MAP_AXIS_Z, {-1, -1, 0}, std::atan2(1, 1) / turn, 0.5},
        {PROJECTION_CYLINDRICAL, MAP_AXIS_Z, {1, 0, 0}, 1 - 1.5707958 / turn, 0.5},
        {PROJECTION_CYLINDRICAL, MAP_AXIS_X, {2, 0, 1}, 1 - (turn - 1.5707958) / turn, -1.5},
        {PROJECTION_SPHERICAL, MAP_AXIS_Z, {0, 0, 2}, 1, 0.5 - 1.5707958 / 3.141592653589793},
        {PROJECTION_SPHERICAL, MAP_AXIS_Z, {0, 0, 0}, 1, 0.5},
        {PROJECTION_SPHERICAL, MAP_AXIS_Y, {0, 1, 1}, 1, 0.25},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.projection << " " << row.axis << " " << row.point.x << row.point.y << row.point.z);
        Projected scene(OneTriangle(row.point), row.projection, row.axis);
        ASSERT_TRUE(scene.object->GenerateUVW(scene.scene.get()));
        EXPECT_NEAR(scene.At(0, 0).first, row.u, 1e-6);
        EXPECT_NEAR(scene.At(0, 0).second, row.v, 1e-6);
    }
    Projected tiled(OneTriangle({-1, -1, 0}), PROJECTION_CYLINDRICAL, MAP_AXIS_Z);
    tiled.map->SetTile(0, C3DTVector<float>(20, 1, 1));
    tiled.object->GenerateUVW(tiled.scene.get());
    EXPECT_NEAR(tiled.At(0, 0).first, 20 * std::atan2(1, 1) / turn - 2, 1e-5);
    Projected moved(OneTriangle({1, 2, 3}), PROJECTION_PLANAR, MAP_AXIS_Z);
    moved.map->SetTranslation(0, C3DTVector<float>(1, 1, 1));
    moved.object->GenerateUVW(moved.scene.get());
    EXPECT_NEAR(moved.At(0, 0).first, 0.5, 1e-6);
}

TEST(UVGeneration, ABoxHasFourPointsASideAndOthersStayWithoutData)
{
    Projected cube(Cube(), PROJECTION_BOX);
    cube.object->GetFaceList()->SetFaceMaterial(2, 0);
    ASSERT_TRUE(cube.scene->GenerateUVW());
    const CUVWChannel& channel = *cube.Channel();
    CheckConsistent(*channel.GetFaceList(), channel.GetPointList()->GetSize());
    EXPECT_TRUE(channel.GetFaceList()->IsFaceFlagSet(2, FACE_EMPTY));
    EXPECT_TRUE(Corners(*channel.GetFaceList(), 2).empty());
    // The two sides across an axis share no points; 8 a pair of sides.
    EXPECT_EQ(channel.GetPointList()->GetSize(), 20);
    EXPECT_FALSE(channel.IsFlagSet(CHANNEL_UNFOLLOWED));
    EXPECT_EQ(cube.map->GetProjection(), PROJECTION_UVW);
    EXPECT_FALSE(cube.scene->GenerateUVW());

    int count;
    int* found = GetUVVertexFromUVFace(cube.object, cube.map->GetChannelID(), count);
    ASSERT_EQ(count, 8);
    EXPECT_EQ(found[0], Corners(*channel.GetFaceList(), 5)[1]);    // the last face at point 0
    delete[] found;
    EXPECT_EQ(GetUVVertexFromUVFace(cube.object, 12345, count), nullptr);
}

TEST(UVGeneration, TwoMaterialsWriteIntoOneChannel)
{
    Projected cube(Cube(), PROJECTION_PLANAR);
    C3DMaterial* other = cube.scene->CreateNewMaterial(6);
    cube.map->SetChannelID(77);
    other->AddMaterialMap(L"b.png", 77, MAP_DIFFUSE, PROJECTION_PLANAR);
    cube.object->GetFaceList()->SetFaceMaterial(0, 6);
    cube.object->Invalidate(CHANGE_FACES, true);
    ASSERT_TRUE(cube.object->GenerateUVW(cube.scene.get()));
    EXPECT_EQ(cube.object->GetChannels()->GetChannelsNumber(CHANNEL_UVW, true), 1);
    EXPECT_EQ(cube.Channel()->GetPointList()->GetSize(), 8 + 4);
    EXPECT_EQ(cube.Channel()->GetFaceList()->GetNumberOfFaces(FACE_DEAD, true), 0);
    CheckConsistent(*cube.Channel()->GetFaceList(), 12);
}

TEST(UVGeneration, OtherFacesKeepTheirSideData)
{
    Projected cube(Cube(), PROJECTION_PLANAR);
    ASSERT_TRUE(cube.scene->GenerateUVW());
    cube.map->SetProjection(PROJECTION_PLANAR);    // the scene's run made it plain
    cube.Channel()->GetFaceList()->SaveFacesIndex();
    const unsigned int order[] = {5, 4, 3, 2, 1, 0};
    cube.Channel()->GetFaceList()->ReorderFaces(order, 6, false);
    cube.object->GetFaceList()->SetFaceMaterial(2, 0);
    ASSERT_TRUE(cube.object->GenerateUVW(cube.scene.get()));
    EXPECT_EQ(cube.Channel()->GetFaceList()->GetOriginalIndex(2), 3u);
}
