#include "ChannelMesh.h"

#include <random>

#include "channels/SpecNormalChannel.h"

TEST(ChannelGraph, HoldsEachCornerWithDataOnceInOrder)
{
    // Faults in mind: entries shifted against their points, dead faces counted, a corner counted per face.
    std::mt19937 random(1);
    const auto upTo = [&](int n) { return static_cast<int>(random() % n); };
    Corners corners, data;
    for (int f = 0; f < 300; f++) {
        const int size = upTo(6);
        corners.emplace_back();
        data.emplace_back();
        for (int k = 0; k < size; k++) {
            corners.back().push_back(upTo(40));
            data.back().push_back(upTo(50));
        }
    }
    CMesh mesh(45, corners);
    CUVWChannel* channel = mesh.AddUVW(std::vector<float>(50), data);
    CFaceList& faces = *channel->GetFaceList();
    for (int f = 0; f < 300; f++) {
        mesh.faces->SetFaceFlags(f, FACE_INVALID, upTo(5) == 0);
        faces.SetFaceFlags(f, FACE_EMPTY, upTo(5) == 0);
        faces.SetFaceFlags(f, FACE_INVALID, upTo(9) == 0);
    }
    CheckGraph(mesh, *channel);

    // broken data is no data
    mesh.faces->SetFlag(FACELIST_CHANGED, true);
    for (int f = 0; f < 300; f += 7) {
        int count;
        if (int* indexes = mesh.faces->GetIndexes(f, count))
            indexes[0] = f % 2 ? 45 : 44;
        if (int* indexes = faces.GetIndexes(f, count))
            indexes[count - 1] = f % 2 ? -1 : 50;
    }
    for (int f = 1; f < 300; f += 7)
        if (CFace face; faces.GetFace(f, face))
            face.SetSize(face.GetSize() + (f % 2 ? 1 : -1));
    const CGeomInfo info = mesh.Info();
    channel->InitGraph(&info);
    for (int p = 0; p < 45; p++) {
        int count;
        const _ChannelConnectionInfo* items = channel->GetChannelPointsConnectedToPoint(p, count);
        for (int i = 0; i < count; i++)
            EXPECT_LT(static_cast<unsigned int>(items[i].channelPoint), 50u);
    }
    channel->DeleteGraph();
}

TEST(ChannelGraph, IsSharedByItsUsersAndRebuiltAfterAnEdit)
{
    CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
    CUVWChannel* channel = mesh.AddUVW({0, 1, 2, 3}, {{0, 1, 2}, {3, 2, 1}});
    const CGeomInfo info = mesh.Info();
    channel->InitGraph(&info);
    channel->InitGraph(&info);
    channel->DeleteGraph();
    EXPECT_EQ(channel->GetChannelPointIndex(1, 0), channel->GetPointList()->ElementAt(3));
    EXPECT_EQ(channel->GetChannelPointIndex(1, 1), nullptr);    // face 1 does not use point 1
    EXPECT_EQ(channel->GetChannelPointIndex(1, 77), nullptr);
    EXPECT_EQ(channel->GetChannelPointIndex(1, -1), nullptr);

    int count;
    channel->GetFaceList()->GetIndexes(1, count)[0] = 0;
    channel->GetFaceList()->SetFlag(FACELIST_CHANGED, true);
    channel->InitGraph(&info);    // the edit is seen although the graph is in use
    EXPECT_EQ(channel->GetChannelPointIndex(1, 0), channel->GetPointList()->ElementAt(0));
    channel->DeleteGraph();
    channel->DeleteGraph();
    EXPECT_EQ(channel->GetChannelPointIndex(1, 0), nullptr);
    channel->DeleteGraph();
    channel->InitGraph(&info);    // one too many has taken nothing from the next user
    EXPECT_NE(channel->GetChannelPointIndex(1, 0), nullptr);
    channel->DeleteGraph();
}

TEST(ChannelGraph, CountsCornersWithUnsetNormalsAsReferences)
{
    CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
    CSpecNormalChannel* channel = new CSpecNormalChannel;
    mesh.channels->AddChannel(channel);
    channel->GetPointList()->SetSize(2, false, 0);
    channel->GetPointList()->ElementAt(1)->SetFlag(POINT_UNSET, true);
    SetFaces(*channel->GetFaceList(), {{0, 0, 0}, {1, 0, 1}});
    CheckGraph(mesh, *channel);
    const CGeomInfo info = mesh.Info();
    channel->InitGraph(&info);
    int count, references;
    channel->GetChannelPointsConnectedToPoint(0, count, references);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(references, 2);
    EXPECT_EQ(channel->GetChannelPointsConnectedToPoint(3, count, references), nullptr);
    EXPECT_EQ(references, 0);
    channel->DeleteGraph();
}

TEST(ChannelGraph, HoldsAHubOfMoreCornersThan16BitsCount)
{
    const int spokes = 100000;
    CMesh mesh(spokes + 2, {});
    Corners corners, data;
    for (int i = 0; i < spokes; i++) {
        corners.push_back({0, i + 1, i + 2});
        data.push_back({i, i, i});
    }
    SetFaces(*mesh.faces, corners);
    CUVWChannel* channel = mesh.AddUVW(std::vector<float>(spokes), data);
    const CGeomInfo info = mesh.Info();
    channel->InitGraph(&info);
    int count, references;
    const _ChannelConnectionInfo* items = channel->GetChannelPointsConnectedToPoint(0, count, references);
    ASSERT_EQ(count, spokes);
    EXPECT_EQ(references, spokes);
    EXPECT_EQ(items[spokes - 1].face, spokes - 1);
    channel->DeleteGraph();
    EXPECT_TRUE(channel->Weld(&info, 0));    // all have u 0
    EXPECT_EQ(channel->GetPointList()->GetSize(), 1);
}
