#include <gtest/gtest.h>

#include "ChannelMesh.h"

TEST(FaceOrder, SortingTakesTheValidChannelsAlong)
{
    CMesh mesh(9, {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}});
    const Corners uv = {{0, 1, 2}, {}, {2, 1, 0}};
    CUVWChannel* follows = mesh.AddUVW({10, 11, 12}, uv);
    CUVWChannel* invalid = mesh.AddUVW({10, 11, 12}, uv);
    invalid->SetFlag(CHANNEL_INVALID, true);
    mesh.faces->SetFaceMaterial(0, 5);
    mesh.faces->SetFaceMaterial(1, 2);
    mesh.faces->SetFaceMaterial(2, 5);
    const CGeomInfo info = mesh.Info();
    EXPECT_TRUE(mesh.faces->Sort(&info, FACE_SORT_MATERIAL));
    EXPECT_EQ(CornersOf(*mesh.faces, 0), (std::vector<int>{3, 4, 5}));
    EXPECT_EQ(CornersOf(*mesh.faces, 1), (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE(follows->GetFaceList()->IsFaceFlagSet(0, FACE_EMPTY));
    EXPECT_EQ(UsOf(*follows, 1), (std::vector<float>{10, 11, 12}));
    EXPECT_EQ(UsOf(*follows, 2), (std::vector<float>{12, 11, 10}));
    EXPECT_EQ(UsOf(*invalid, 0), (std::vector<float>{10, 11, 12})) << "stays as it is";

    for (CFaceList* faces : {static_cast<CFaceList*>(mesh.faces), follows->GetFaceList()})
        faces->SetFlag(FACELIST_CHANGED, false);
    EXPECT_FALSE(mesh.faces->Sort(&info, FACE_SORT_MATERIAL)) << "in order already";
    EXPECT_FALSE(follows->GetFaceList()->IsFlagSet(FACELIST_CHANGED));
    mesh.faces->SetFaceMaterial(0, 9);
    EXPECT_TRUE(mesh.faces->Sort(nullptr, FACE_SORT_MATERIAL)) << "without an info the list alone";
}

TEST(FaceOrder, FlipsAFaceAndItsLiveChannelFaces)
{
    CMesh mesh(6, {{0, 1, 2}, {3, 4, 5}});
    CUVWChannel* channel = mesh.AddUVW({10, 11, 12}, {{0, 1, 2}, {}});
    mesh.AddUVW({10}, {});                                   // of another size: no such face
    mesh.faces->SetFaceFlag(1, FACE_INVALID, true);
    const CGeomInfo info = mesh.Info();
    for (const int face : {0, 1, 2, -1})
        mesh.faces->Flip(&info, face);
    EXPECT_EQ(CornersOf(*mesh.faces, 0), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(CornersOf(*mesh.faces, 1), (std::vector<int>{3, 4, 5}));
    EXPECT_EQ(UsOf(*channel, 0), (std::vector<float>{12, 11, 10}));
    channel->GetFaceList()->SetFaceFlag(0, FACE_INVALID, true);
    mesh.faces->Flip(&info, 0);
    EXPECT_EQ(UsOf(*channel, 0), (std::vector<float>{12, 11, 10})) << "dead";
}
