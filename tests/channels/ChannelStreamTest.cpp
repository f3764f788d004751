#include "ChannelMesh.h"

#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/VCChannel.h"
#include "channels/VCPointList.h"
#include "channels/WeightChannel.h"
#include "channels/WeightFaceList.h"
#include "channels/WeightPointList.h"
#include "support/Streams.h"

namespace {

void FillAllKinds(CMesh& mesh)
{
    CUVWChannel* uvw = mesh.AddUVW({1, 2, 3}, {{0, 1, 2}, {}});
    uvw->SetChannelID(20000);
    uvw->GetCustomData().SetInt(1, 5);
    uvw->GetPointList()->SavePointsIndex();
    CVCChannel* colours = new CVCChannel(5);
    colours->GetPointList()->SetSize(1, false, 0);
    (*colours->GetVCPointList())[0]->SetColor(CRGBColor(1, 2, 3, 4));
    SetFaces(*colours->GetFaceList(), {{0, 0, 0}, {0, 0, 0}});
    mesh.channels->AddChannel(colours);
    mesh.channels->GetPointNormalChannel();    // not stored
    CSpecNormalChannel* normals = new CSpecNormalChannel(6);
    normals->SetFlag(CHANNEL_STALE, false);
    mesh.channels->AddChannel(normals);
    for (const bool pointsOnly : {true, false}) {
        CWeightChannel* weights = new CWeightChannel(pointsOnly ? 7 : 8, pointsOnly);
        weights->GetPointList()->SetSize(2, false, 0);
        (*weights->GetWeightPointList())[1]->SetWeight(0.5f);
        if (!pointsOnly)
            SetFaces(*weights->GetFaceList(), {{0, 1, 0}, {1, 1, 1}});
        mesh.channels->AddChannel(weights);
    }
}

}    // namespace

TEST(ChannelStream, BringsChannelsBack)
{
    CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
    FillAllKinds(mesh);
    const std::vector<unsigned char> bytes = Stored(*mesh.channels);
    CDependentChannels* loaded = CDependentChannels::Create();
    loaded->AddChannel(new CUVWChannel);    // goes
    ASSERT_TRUE(Load(*loaded, bytes));
    ASSERT_EQ(loaded->GetSize(), 5);

    const struct {
        _Channel3DType type;
        unsigned int id;
    } expected[] = {{CHANNEL_UVW, 20000}, {CHANNEL_VC, 5}, {CHANNEL_SPEC_NORMAL, 6}, {CHANNEL_WEIGHT, 7}, {CHANNEL_WEIGHT, 8}};
    for (int i = 0; i < 5; i++) {
        EXPECT_EQ((*loaded)[i]->GetType(), expected[i].type);
        EXPECT_EQ((*loaded)[i]->GetChannelID(), expected[i].id);
    }
    EXPECT_GT(CChannel::CreateID(), 20000u);
    EXPECT_TRUE((*loaded)[2]->IsFlagSet(CHANNEL_STALE));    // though stored up to date
    (*loaded)[2]->SetFlag(CHANNEL_STALE, false);

    CUVWFaceList* faces;
    CUVWPointList* points;
    CUVWChannel* uvw = loaded->GetUVWChannelByID(20000, faces, points);
    EXPECT_EQ(UsOf(*uvw, 0), (std::vector<float>{1, 2, 3}));
    EXPECT_TRUE(faces->IsFaceFlagSet(1, FACE_EMPTY));
    EXPECT_EQ(points->GetOriginalIndex(2), 2u);
    int value;
    EXPECT_TRUE(uvw->GetCustomData().GetInt(1, value));
    EXPECT_EQ((*static_cast<CVCChannel*>((*loaded)[1])->GetVCPointList())[0]->GetColor(), CRGBColor(1, 2, 3, 4));
    EXPECT_EQ((*loaded)[3]->GetFaceList(), nullptr);
    ASSERT_NE((*loaded)[4]->GetFaceList(), nullptr);
    EXPECT_EQ(CornersOf(*(*loaded)[4]->GetFaceList(), 0), (std::vector<int>{0, 1, 0}));
    EXPECT_EQ(Stored(*loaded), bytes);
    DeleteMe(loaded);
}

TEST(ChannelStream, MovesTheIdCounterPastWhatItReads)
{
    CUVWChannel* channel = new CUVWChannel(20000);
    const std::vector<unsigned char> high = Stored(*channel);
    channel->SetChannelID(5);
    const std::vector<unsigned char> low = Stored(*channel);
    ASSERT_TRUE(Load(*channel, high));
    EXPECT_EQ(CChannel::CreateID(), 20001u);
    ASSERT_TRUE(Load(*channel, low));
    EXPECT_EQ(channel->GetChannelID(), 5u);
    EXPECT_EQ(CChannel::CreateID(), 20002u);
    DeleteMe(channel);
    DeleteMe(channel = new CUVWChannel);    // the last one gone: back to the start
    EXPECT_EQ(CChannel::CreateID(), 10000u);
    DeleteMe(new CUVWChannel);
}

TEST(ChannelStream, RefusesEveryCutAndSurvivesEveryDamagedByte)
{
    // Not what it reads, only that it ends: by an exception or with channels that can be cleaned and destroyed.
    CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
    FillAllKinds(mesh);
    const std::vector<unsigned char> bytes = Stored(*mesh.channels);
    for (std::size_t size = 0; size < bytes.size(); size++) {
        CMesh target(4, {{0, 1, 2}, {0, 2, 3}});
        EXPECT_FALSE(Load(*target.channels, {bytes.begin(), bytes.begin() + size})) << size;
    }
    for (std::size_t at = 0; at < bytes.size(); at++)
        for (const unsigned char value : {0x00, 0x7F, 0xFF}) {
            std::vector<unsigned char> damaged = bytes;
            damaged[at] = value;
            CMesh target(4, {{0, 1, 2}, {0, 2, 3}});
            Load(*target.channels, damaged);
            const CGeomInfo info = target.Info();
            target.channels->Weld(&info, 0.5, CHANNEL_ALL);
            target.faces->Clean(&info);
        }
}

TEST(ChannelStream, RefusesWhatIsNotTheChannel)
{
    CUVWChannel* uvw = new CUVWChannel(5);
    CVCChannel* colours = new CVCChannel(6);
    CWeightChannel* weights = new CWeightChannel(7);
    const std::vector<unsigned char> bytes = Stored(*uvw);
    EXPECT_FALSE(Load(*colours, bytes));
    EXPECT_EQ(colours->GetChannelID(), 6u);

    std::vector<unsigned char> other = bytes;
    other[8] = other[9] = other[10] = other[11] = 0xFF;    // the id
    EXPECT_FALSE(Load(*uvw, other));
    other = bytes;
    other[12] = 2;    // has face list
    EXPECT_FALSE(Load(*uvw, other));

    // the points of another kind under this channel's name
    other = Stored(*weights);
    other[0] = CHANNEL_UVW;
    EXPECT_FALSE(Load(*uvw, other));
    DeleteMe(uvw);
    DeleteMe(colours);
    DeleteMe(weights);
}
