#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/GroupMap.h"
#include "meshops/ObjectCase.h"
#include "scene/3DScene.h"

namespace {

constexpr unsigned int POINT_MARKS = 0x90, FACE_MARKS = 0x5000;

/// Texture points with u = us[i], and the faces' corners in them; a face without corners has no data.
CUVWChannel* AddUVW(C3DObject& object, unsigned int id, const std::vector<float>& us, const std::vector<std::vector<int>>& faces)
{
    auto* channel = new CUVWChannel(id);
    AddFaces(*channel->GetFaceList(), faces);
    for (std::size_t face = 0; face < faces.size(); face++)
        channel->GetFaceList()->SetFaceFlag(face, FACE_EMPTY, faces[face].empty());
    channel->GetPointList()->SetSize(static_cast<int>(us.size()));
    for (std::size_t i = 0; i < us.size(); i++)
        (*channel->GetUVWPointList())[static_cast<int>(i)]->u = us[i];
    object.AddChannel(channel);
    return channel;
}

float UAt(const CUVWChannel& channel, int face, int corner)
{
    return (*channel.GetUVWPointList())[Corners(*channel.GetFaceList(), face)[corner]]->u;
}

}

TEST(Disconnect, SplitsACubeOfSixShells)
{
    Owned<C3DObject> cube = ObjectOf(Cube());
    std::vector<float> us;
    std::vector<std::vector<int>> faces;
    for (int face = 0; face < 6; face++) {
        faces.push_back({});
        for (int k = 0; k < 4; k++) {
            faces.back().push_back(static_cast<int>(us.size()));
            us.push_back(static_cast<float>(us.size()));
        }
    }
    CUVWChannel* uvw = AddUVW(*cube, 3, us, faces);
    auto* weights = new CWeightChannel(4, true);
    weights->GetPointList()->SetSize(8);
    for (int i = 0; i < 8; i++)
        (*weights->GetWeightPointList())[i]->SetWeight(cube->GetPointList()->ElementAt(i)->x);
    cube->AddChannel(weights);

    CGroupMap<int, unsigned short> groups;
    Owned<C3DFaceList> before(C3DFaceList::Create(nullptr));
    const auto corners = AllCorners(*cube->GetFaceList());
    ASSERT_TRUE(cube->DisconnectBorderFaces(CHANNEL_UVW, POINT_MARKS, FACE_MARKS, &groups, true, nullptr));    // only told
    EXPECT_EQ(cube->GetPointNbr(), 8);
    EXPECT_EQ(AllCorners(*cube->GetFaceList()), corners);
    EXPECT_EQ(groups.GetCount(), 8);
    EXPECT_EQ(groups.GetGroup(0), (std::vector<int>{0, 8, 9}));

    ASSERT_TRUE(cube->DisconnectBorderFaces(CHANNEL_UVW, POINT_MARKS, FACE_MARKS, &groups, false, before.get()));
    EXPECT_EQ(cube->GetPointNbr(), 24);
    EXPECT_EQ(AllCorners(*before), corners);
    EXPECT_EQ(AllCorners(*uvw->GetFaceList()), AllCorners(*cube->GetFaceList()));
    for (int face = 0; face < 6; face++)
        for (int k = 0; k < 4; k++)
            EXPECT_EQ(UAt(*uvw, face, k), us[face * 4 + k]);
    ASSERT_EQ(weights->GetPointList()->GetSize(), 24);
    for (int i = 0; i < 24; i++)
        EXPECT_EQ((*weights->GetWeightPointList())[i]->GetWeight(), cube->GetPointList()->ElementAt(i)->x);
    EXPECT_EQ(cube->GetPointList()->GetNumberOfPoints(POINT_MARKS, true), 24);
    EXPECT_FALSE(cube->DisconnectBorderFaces(CHANNEL_UVW, POINT_MARKS, FACE_MARKS, nullptr, false, nullptr));
    CheckConsistent(*cube->GetFaceList(), 24);
}

TEST(Disconnect, FacesWithEqualValuesStayTogether)
{
    const struct {
        const char* name;
        std::vector<float> us;    // at the hub, of each face
        std::vector<bool> empty;
        std::vector<int> hubs;    // point of each face afterwards
    } rows[] = {
        {"two of three", {1, 2, 1}, {false, false, false}, {0, 4, 0}},
        {"all differ", {1, 2, 3}, {false, false, false}, {0, 4, 5}},
        {"without data", {1, 1, 0}, {false, false, true}, {0, 0, 4}},
        {"negative zero", {0.0f, -0.0f, 5}, {false, false, false}, {0, 0, 4}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Owned<C3DObject> fan = ObjectOf(MakeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, -1, 0}}, {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}}));
        std::vector<std::vector<int>> faces;
        for (int face = 0; face < 3; face++)
            faces.push_back(row.empty[face] ? std::vector<int>() : std::vector<int>{face, 3, 3});
        std::vector<float> us = row.us;
        us.push_back(9);
        AddUVW(*fan, 3, us, faces);
        const bool split = row.hubs != std::vector<int>(3, 0);
        const bool elsewhere = row.empty[2];    // the rim has points with and without data, too
        EXPECT_EQ(fan->DisconnectBorderFaces(CHANNEL_UVW, 0, 0, nullptr, false, nullptr), split);
        for (int face = 0; face < 3; face++)
            EXPECT_EQ(Corners(*fan->GetFaceList(), face)[0], row.hubs[face]);
        if (!elsewhere) {
            EXPECT_EQ(fan->GetPointNbr(), 4 + std::max(0, *std::max_element(row.hubs.begin(), row.hubs.end()) - 3));
        }
    }
}

TEST(Disconnect, HardEdgesPartUnlessNormalsAreGiven)
{
    Owned<C3DObject> cube = ObjectOf(Cube());
    EXPECT_TRUE(cube->DisconnectBorderFaces(CHANNEL_ALL, POINT_MARKS, FACE_MARKS, nullptr, false, nullptr));
    EXPECT_EQ(cube->GetPointNbr(), 24);
    Owned<C3DObject> grid = ObjectOf(QuadGrid(3));
    EXPECT_FALSE(grid->DisconnectBorderFaces(CHANNEL_ALL, POINT_MARKS, FACE_MARKS, nullptr, false, nullptr));
}

TEST(GlobalChannel, GathersTheChannelsOfTheMaterials)
{
    Owned<C3DScene> scene(C3DScene::Create());
    scene->CreateNewMaterial(1)->AddMaterialMap(L"a.png", 11, MAP_DIFFUSE, PROJECTION_UVW);
    scene->CreateNewMaterial(2)->AddMaterialMap(L"b.png", 12, MAP_DIFFUSE, PROJECTION_UVW);
    scene->CreateNewMaterial(3)->AddMaterialMap(L"c.png", NO_CHANNEL_ID, MAP_DIFFUSE, PROJECTION_UVW);
    Owned<C3DObject> object = ObjectOf(MakeMesh(std::vector<XYZ>(6), {{0, 1, 2}, {1, 2, 3}, {2, 3, 4}, {3, 4, 5}}));
    for (int face = 0; face < 4; face++)
        object->GetFaceList()->SetFaceMaterial(face, std::vector<unsigned int>{1, 2, 3, 1}[face]);
    AddUVW(*object, 11, {10, 11, 12, 13}, {{0, 1, 2}, {}, {}, {1, 2, 3}});
    AddUVW(*object, 12, {20, 21, 22}, {{0, 1, 2}, {0, 1, 2}, {}, {}});

    const unsigned int id = object->GlobalizeChannels(scene.get(), true);
    ASSERT_NE(id, NO_CHANNEL_ID);
    EXPECT_EQ(object->GetGlobalUVWChannel(), id);
    ASSERT_EQ(object->GetChannels()->GetChannelsNumber(CHANNEL_UVW, true), 1);
    const auto& channel = static_cast<const CUVWChannel&>(*object->GetChannelByID(id, CHANNEL_UVW));
    EXPECT_EQ(AllCorners(*channel.GetFaceList()), (std::vector<std::vector<int>>{{0, 1, 2}, {3, 4, 5}, {}, {1, 2, 6}}));
    EXPECT_EQ(UAt(channel, 1, 0), 20);
    EXPECT_EQ(UAt(channel, 3, 2), 13);
    EXPECT_TRUE(channel.GetFaceList()->IsFaceFlagsSet(2, FACE_DEAD));
    EXPECT_EQ(object->GlobalizeChannels(scene.get(), true), id);
}

TEST(Disconnect, AMarkedPointOfOneFaceRenumbersItsChannelToo)
{
    // The face comes back to point 0 with another value. There is nothing to part; still the channel's corners become the object's.
    Owned<C3DObject> object = ObjectOf(MakeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2, 0, 3}}));
    CUVWChannel* uvw = AddUVW(*object, 3, {5, 6, 7, 8, 9}, {{4, 3, 2, 1, 0}});
    Owned<C3DFaceList> before(C3DFaceList::Create(nullptr));
    AddFaces(*before, {{7, 8, 9}, {7, 8, 9}});    // of an earlier call
    EXPECT_TRUE(object->DisconnectBorderFaces(CHANNEL_UVW, POINT_MARKS, FACE_MARKS, nullptr, false, before.get()));
    EXPECT_EQ(object->GetPointNbr(), 4);
    EXPECT_EQ(Corners(*uvw->GetFaceList(), 0), (std::vector<int>{0, 1, 2, 0, 3}));
    EXPECT_EQ(UAt(*uvw, 0, 1), 8);
    EXPECT_EQ(AllCorners(*before), (std::vector<std::vector<int>>{{0, 1, 2, 0, 3}}));
}

TEST(Disconnect, FacesThatWereNotTouchedAreMarkedInTheCopy)
{
    Owned<C3DObject> object = ObjectOf(
        MakeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {5, 5, 5}, {6, 5, 5}, {5, 6, 5}}, {{0, 1, 2}, {1, 3, 2}, {4, 5, 6}}));
    AddUVW(*object, 3, {0, 1, 2, 3, 4, 5, 6, 7, 8}, {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}});
    Owned<C3DFaceList> before(C3DFaceList::Create(nullptr));
    AddFaces(*before, {{7, 8, 9}, {7, 8, 9}, {7, 8, 9}});
    EXPECT_TRUE(object->DisconnectBorderFaces(CHANNEL_UVW, POINT_MARKS, FACE_MARKS, nullptr, false, before.get()));
    EXPECT_EQ(Corners(*before, 1), (std::vector<int>{1, 3, 2}));
    EXPECT_TRUE(before->IsFaceFlagSet(2, FACE_INVALID));
}
