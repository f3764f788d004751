#include "ChannelMesh.h"

#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/VCChannel.h"
#include "channels/WeightChannel.h"
#include "channels/WeightFaceList.h"
#include "channels/WeightPointList.h"

TEST(Channel, IdsCountFrom10000WhileChannelsLive)
{
    CChannel* first = CChannel::Create(CHANNEL_UVW, NO_CHANNEL_ID);
    EXPECT_EQ(first->GetChannelID(), 10000u);
    CChannel* named = CChannel::Create(CHANNEL_VC, 7);
    EXPECT_EQ(named->GetChannelID(), 7u);
    EXPECT_EQ(CChannel::CreateID(), 10001u);
    DeleteMe(first);
    EXPECT_EQ(CChannel::CreateID(), 10002u);
    DeleteMe(named);
    EXPECT_EQ(CChannel::CreateID(), 10000u);
    CChannel::Create(CHANNEL_UVW, 1)->Delete();    // back to the start for the tests that follow
}

TEST(Channel, EachKindComesWithItsListsAndFlags)
{
    const unsigned int derived = CHANNEL_DERIVED | CHANNEL_STALE;
    const struct {
        int type;
        unsigned int flags;
        bool hasFaces, recomputed;
    } rows[] = {
        {1, 0, true, false},
        {4, 0, true, false},
        {8, 0, false, false},
        {16, derived | CHANNEL_UNFOLLOWED, true, true},
        {32, derived | CHANNEL_UNFOLLOWED, false, true},
        {64, derived | CHANNEL_SKIP_UNSET, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        CChannel* channel = CChannel::Create(static_cast<_Channel3DType>(row.type), 3);
        ASSERT_TRUE(channel);
        EXPECT_EQ(channel->GetType(), row.type);
        EXPECT_EQ(channel->GetFlags(), row.flags);
        EXPECT_EQ(channel->GetFaceList() != nullptr, row.hasFaces);
        EXPECT_EQ(channel->CanBeRecomputed(), row.recomputed);
        DeleteMe(channel);
    }
    EXPECT_EQ(CChannel::Create(static_cast<_Channel3DType>(2), 3), nullptr);
}

TEST(Channel, CopiesTakeWhatTheirOptionsSay)
{
    CMesh mesh(3, {{0, 1, 2}});
    CUVWChannel* channel = mesh.AddUVW({1, 2, 3}, {{0, 1, 2}});
    channel->GetPointList()->SavePointsIndex();
    channel->GetCustomData().SetInt(1, 5);
    channel->SetFlag(CHANNEL_DERIVED, true);

    CUVWChannel* copy = static_cast<CUVWChannel*>(channel->Copy(0));
    EXPECT_NE(copy->GetChannelID(), channel->GetChannelID());
    EXPECT_EQ(UsOf(*copy, 0), (std::vector<float>{1, 2, 3}));
    EXPECT_TRUE(copy->IsFlagSet(CHANNEL_DERIVED | CHANNEL_STALE));
    int value;
    EXPECT_TRUE(copy->GetCustomData().GetInt(1, value));
    DeleteMe(copy);

    copy = static_cast<CUVWChannel*>(channel->Copy(CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA));
    EXPECT_EQ(copy->GetChannelID(), channel->GetChannelID());
    EXPECT_EQ(copy->GetFaceList()->GetSize(), 0);
    EXPECT_EQ(copy->GetPointList()->GetSize(),
              channel->GetPointList()->GetDataChunks().GetDataSize() ? copy->GetPointList()->GetSize() : 0);
    DeleteMe(copy);
}

TEST(Channel, WeightsKeepTheirForm)
{
    for (const bool pointsOnly : {true, false}) {
        CWeightChannel* channel = new CWeightChannel(NO_CHANNEL_ID, pointsOnly);
        CChannel* copy = channel->Copy(0);
        EXPECT_EQ(copy->GetFaceList() == nullptr, pointsOnly);
        DeleteMe(copy);
        DeleteMe(channel);
    }
}

TEST(Channel, WeightsNormalize)
{
    const struct {
        std::vector<float> weights;
        bool invert;
        std::vector<float> expected;
    } rows[] = {
        {{-1, 0, 1}, false, {0, 0.5f, 1}},
        {{-1, 0, 1}, true, {1, 0.5f, 0}},
        {{3, 3}, false, {0, 0}},
        {{3, 3}, true, {1, 1}},
        {{}, false, {}},
    };
    for (const auto& row : rows) {
        CWeightChannel* channel = new CWeightChannel;
        const int count = static_cast<int>(row.weights.size());
        channel->GetPointList()->SetSize(count, false, 0);
        for (int i = 0; i < count; i++)
            (*channel->GetWeightPointList())[i]->SetWeight(row.weights[i]);
        float minimum, maximum;
        channel->GetLimits(minimum, maximum);
        EXPECT_EQ(minimum, count ? row.weights.front() : 0);
        EXPECT_EQ(maximum, count ? row.weights.back() : 0);
        channel->Normalize(row.invert);
        for (int i = 0; i < count; i++)
            EXPECT_EQ((*channel->GetWeightPointList())[i]->GetWeight(), row.expected[i]);
        DeleteMe(channel);
    }
}

TEST(Channel, WeightsPerCornerGiveMeansPerPoint)
{
    CMesh mesh(5, {{0, 1, 2}, {0, 2, 3}});
    CGeomInfo info = mesh.Info();
    CWeightChannel* channel = new CWeightChannel(NO_CHANNEL_ID, false);
    mesh.channels->AddChannel(channel);
    channel->GetPointList()->SetSize(3, false, 0);
    for (int i = 0; i < 3; i++)
        (*channel->GetWeightPointList())[i]->SetWeight(static_cast<float>(i));
    SetFaces(*channel->GetWeightFaceList(), {{0, 1, 2}, {1, 1, 1}});
    CWeightPointList* means = channel->GetWeightPointOnlyList(&info);
    ASSERT_EQ(means->GetSize(), 5);
    const float expected[] = {0.5f, 1, 1.5f, 1, 0};
    for (int i = 0; i < 5; i++)
        EXPECT_EQ((*means)[i]->GetWeight(), expected[i]);
    DeleteMe(means);

    CWeightChannel* simple = new CWeightChannel;
    means = simple->GetWeightPointOnlyList(&info);
    EXPECT_EQ(means, simple->GetWeightPointList());
    DeleteMe(simple);
    EXPECT_EQ(means->GetSize(), 0);    // the reference keeps it alive
    DeleteMe(means);
}
