#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "scene/SceneBuilders.h"

namespace {

std::vector<int> Corners(const C3DObject& object, unsigned int face)
{
    int count;
    const int* indexes = object.GetFaceList()->GetIndexes(face, count);
    return {indexes, indexes + count};
}

}

TEST(CreateFromArrays, TrianglesComeFirstAndRemaindersAreDropped)
{
    const float points[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};    // 4 points and 8 bytes
    const int triangles[] = {2, 1, 0, 1, 2, 3, 9};
    const int quads[] = {3, 2, 1, 0, 9, 9};
    const CRef<C3DObject> object(CreateObjectFromArrays(points, sizeof points, triangles, sizeof triangles, quads, sizeof quads));
    ASSERT_TRUE(object);
    ASSERT_EQ(object->GetPointNbr(), 4);
    ASSERT_EQ(object->GetFaceNbr(), 3);
    EXPECT_EQ(Values(PointOf(object, 3)), (std::vector<float>{9, 10, 11}));
    EXPECT_EQ(Corners(*object, 0), (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(Corners(*object, 1), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Corners(*object, 2), (std::vector<int>{3, 2, 1, 0}));
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(object->GetFaceList()->GetFaceMaterial(i), 0u);
        EXPECT_FALSE(object->GetFaceList()->IsFaceOneFlagSet(i, 0xFFFFFFFF));
    }
    EXPECT_EQ(object->GetChannels()->GetSize(), 0);
    EXPECT_TRUE(object->IsInvalidate(OBJECT_UPDATE_DISPLAY));
    EXPECT_FALSE(object->IsTriangular(_FACE_PROPERTIES{}, true));
}

TEST(CreateFromArrays, EmptyAndBrokenInput)
{
    const CRef<C3DObject> empty(CreateObjectFromArrays(nullptr, 120, nullptr, 120, nullptr, 160));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->GetPointNbr() + empty->GetFaceNbr(), 0);
    EXPECT_TRUE(empty->IsTriangular(_FACE_PROPERTIES{}, true));

    const float points[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    struct {
        const char* name;
        std::vector<int> corners;
        bool good;
    } const rows[] = {
        {"fine", {0, 1, 2}, true},
        {"behind the points", {0, 1, 3}, false},
        {"negative", {0, -1, 2}, false},
        {"degenerate", {1, 1, 1}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DObject> object(CreateObjectFromArrays(points, sizeof points, row.corners.data(), 12, nullptr, 0));
        EXPECT_EQ(object != nullptr, row.good);
    }
}

TEST(CreateFromArrays, TakesNoMoreMemoryThanItNeeds)
{
    // n triangles over n / 2 points: 40 bytes a triangle, that is 24 a point, 8 for flags and material, 20 for corners.
    constexpr int TRIANGLES = 3000;
    const std::vector<float> points(3 * TRIANGLES / 2);
    const std::vector<int> corners(3 * TRIANGLES, 7);
    const CRef<C3DObject> object(CreateObjectFromArrays(points.data(), points.size() * 4, corners.data(), corners.size() * 4, nullptr, 0));
    const C3DFaceList& faces = *object->GetFaceList();
    EXPECT_EQ(object->GetPointList()->GetCapacity(), TRIANGLES / 2);
    EXPECT_EQ(object->GetPointList()->GetStride(), 24u);
    EXPECT_LE(faces.GetIndexMemory(), 20u * TRIANGLES);
    EXPECT_EQ(faces.GetDataChunkNbr(), 1u);
    EXPECT_EQ(faces.GetDataChunks().GetMainArray()->GetCapacity(), TRIANGLES);
    EXPECT_EQ(faces.GetDataChunks().GetMainArray()->GetStride(), 8u);
}

TEST(Checksum, SeesWhatItIsAskedFor)
{
    const CRef<C3DObject> a(CreateSquare()), b(CreateSquare());
    EXPECT_EQ(a->GetChecksum(0xFFFF), b->GetChecksum(0xFFFF));
    const auto differ = [&](unsigned int mode) { return a->GetChecksum(mode) != b->GetChecksum(mode); };

    PointOf(b, 4).x = 5;    // the last one: each further one shifts it by 4 bits
    EXPECT_TRUE(differ(1));
    EXPECT_FALSE(differ(4));
    PointOf(b, 4).x = 9;
    PointOf(b, 0).y = -0.0f;
    EXPECT_FALSE(differ(1));

    CChannel* weights = CChannel::Create(CHANNEL_WEIGHT, NO_CHANNEL_ID);
    weights->GetPointList()->SetSize(3);
    b->AddChannel(weights);
    const unsigned int without = b->GetChecksum(1 | 4);
    EXPECT_EQ(without, a->GetChecksum(1 | 4));
    EXPECT_EQ(b->GetChecksum(1 | 4 | 16), without + weights->GetPointList()->GetChecksum(1 | 4 | 16));
    weights->SetFlag(CHANNEL_INVALID, true);
    EXPECT_FALSE(differ(16 | 1));
}
