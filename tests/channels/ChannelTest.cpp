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
