#include "ChannelMesh.h"

#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/VCChannel.h"
#include "geometry/4x4Matrix.h"

namespace {

constexpr struct {
    _Channel3DType type;
    unsigned int id;
    bool invalid;
} MIXED[] = {
    {CHANNEL_UVW, 5, true}, {CHANNEL_VC, 5, false}, {CHANNEL_UVW, 6, false}, {CHANNEL_POINT_NORMAL, 7, false}, {CHANNEL_UVW, 5, false},
};

void FillMixed(CDependentChannels& channels)
{
    for (const auto& row : MIXED) {
        CChannel* channel = CChannel::Create(row.type, row.id);
        channel->SetFlag(CHANNEL_INVALID, row.invalid);
        channels.AddChannel(channel);
    }
}

std::vector<unsigned int> Ids(const CDependentChannels& channels)
{
    std::vector<unsigned int> ids;
    for (CChannel* channel : channels)
        ids.push_back(channel->GetChannelID());
    return ids;
}

}    // namespace

TEST(DependentChannels, AnswerOnNull)
{
    CDependentChannels* volatile none = nullptr;    // volatile: the compiler would warn of a null it sees
    EXPECT_EQ(none->GetSize(), 0);
    EXPECT_EQ(none->GetChannelByID(1, CHANNEL_ANY), nullptr);
    EXPECT_EQ(none->GetChannelIndex(1, CHANNEL_UVW, false), -1);
    EXPECT_EQ(none->GetPointNormalChannel(), nullptr);
    EXPECT_EQ(none->CleanChannels(nullptr, nullptr, nullptr), 0);
    EXPECT_FALSE(none->Weld(nullptr, 0, CHANNEL_ALL));
    EXPECT_EQ(none->RemoveChannels(CHANNEL_ALL, 0, true), 0);
    none->Invalidate(CHANNEL_ALL);
    none->RemoveAll();
}

TEST(DependentChannels, CopyingFollowsItsOptions)
{
    const struct {
        const char* name;
        unsigned int mask, options;
        std::vector<unsigned int> ids;    // 0: a new one
    } rows[] = {
        {"all, new ids", CHANNEL_ALL, 0, {0, 0, 0, 0, 0}},
        {"keep ids", CHANNEL_ALL, CHANNEL_COPY_KEEP_ID, {5, 5, 6, 7, 5}},
        {"skip unfollowed", CHANNEL_ALL, CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_SKIP_UNFOLLOWED, {5, 5, 6, 5}},
        {"append one kind", CHANNEL_VC, CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_APPEND, {1, 5}},
        {"share", CHANNEL_UVW, CHANNEL_COPY_SHARE, {5, 6, 5}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CMesh source(0, {}), target(0, {});
        FillMixed(*source.channels);
        target.channels->AddChannel(new CVCChannel(1));
        const int before = row.options & CHANNEL_COPY_APPEND ? 1 : 0;
        EXPECT_EQ(target.channels->CopyChannels(*source.channels, row.mask, row.options), static_cast<int>(row.ids.size()) - before);
        const std::vector<unsigned int> ids = Ids(*target.channels);
        ASSERT_EQ(ids.size(), row.ids.size());
        for (std::size_t i = 0; i < ids.size(); i++)
            EXPECT_TRUE(row.ids[i] ? ids[i] == row.ids[i] : ids[i] >= 10000) << i;
        if (row.options & CHANNEL_COPY_SHARE) {
            EXPECT_EQ((*target.channels)[1], (*source.channels)[2]);
        }
    }
}

TEST(DependentChannels, TransformsReachNormalsAlone)
{
    CMesh mesh(0, {});
    CUVWChannel* uvw = mesh.AddUVW({1}, {});
    CSpecNormalChannel* normals = new CSpecNormalChannel;
    mesh.channels->AddChannel(normals);
    normals->GetPointList()->SetSize(1, false, 0);
    auto* vector = static_cast<C3DTVector<float>*>(normals->GetPointList()->ElementAt(0));
    *vector = C3DTVector<float>(1, 0, 0);

    EXPECT_FALSE(mesh.channels->SwapCoordinates(0, CHANNEL_ALL));
    EXPECT_TRUE(mesh.channels->SwapCoordinates(1, CHANNEL_ALL));
    EXPECT_TRUE(*vector == (C3DTVector<float>(0, 1, 0)));
    C4x4TMatrix<float> turn;
    EXPECT_FALSE(mesh.channels->MatrixTransform(turn, CHANNEL_ALL));
    turn.m[0][0] = turn.m[1][1] = 0, turn.m[0][1] = -1, turn.m[1][0] = 1;
    turn.SetTranslation(9, 9, 9);
    EXPECT_FALSE(mesh.channels->MatrixTransform(turn, CHANNEL_UVW));
    EXPECT_TRUE(mesh.channels->MatrixTransform(turn, CHANNEL_ALL));
    EXPECT_TRUE(*vector == (C3DTVector<float>(-1, 0, 0)));
    EXPECT_EQ((*uvw->GetUVWPointList())[0]->u, 1);
}
