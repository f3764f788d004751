#include "ChannelMesh.h"

#include <cmath>
#include <limits>
#include <random>

#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/VCChannel.h"
#include "channels/VCPointList.h"

TEST(ChannelWeld, JoinsWhatMeetsAtOnePoint)
{
    // Two triangles with the edge 0-2: corners 0 and 2 of face 0 meet corners 0 and 1 of face 1.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char* name;
        std::vector<float> us;
        Corners data;
        double tolerance;
        bool joined;
        std::vector<float> us0, us1;
        int points;
    } rows[] = {
        {"equal along the edge", {1, 2, 3, 1, 3, 4}, {{0, 1, 2}, {3, 4, 5}}, 0, true, {1, 2, 3}, {1, 3, 4}, 4},
        {"equal elsewhere stays", {1, 2, 3, 4, 5, 2}, {{0, 1, 2}, {3, 4, 5}}, 0, false, {1, 2, 3}, {4, 5, 2}, 6},
        {"near, first survives", {1, 2, 3, 1.25f, 3.25f, 4}, {{0, 1, 2}, {3, 4, 5}}, 0.25, true, {1, 2, 3}, {1, 3, 4}, 4},
        {"tolerance above 1 is 0", {1, 2, 3, 1.25f, 3.25f, 4}, {{0, 1, 2}, {3, 4, 5}}, 2, false, {1, 2, 3}, {1.25f, 3.25f, 4}, 6},
        {"shared already", {1, 2, 3, 4}, {{0, 1, 2}, {0, 2, 3}}, 1, false, {1, 2, 3}, {1, 3, 4}, 4},
        {"no data", {1, 2, 3}, {{0, 1, 2}, {}}, 1, false, {1, 2, 3}, {}, 3},
        {"crossed: two points met in both orders", {7, 7, 2, 4}, {{0, 2, 1}, {1, 0, 3}}, 0, true, {7, 2, 7}, {7, 7, 4}, 3},
        {"not a number", {nan, 2, 3, nan, 3, 4}, {{0, 1, 2}, {3, 4, 5}}, 0, true, {nan, 2, 3}, {nan, 3, 4}, 5},
    };
    const auto same = [](const std::vector<float>& a, const std::vector<float>& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); });
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
        CUVWChannel* channel = mesh.AddUVW(row.us, row.data);
        const CGeomInfo info = mesh.Info();
        EXPECT_EQ(channel->Weld(&info, row.tolerance), row.joined);
        EXPECT_TRUE(same(UsOf(*channel, 0), row.us0));
        EXPECT_TRUE(same(UsOf(*channel, 1), row.us1));
        EXPECT_EQ(channel->GetPointList()->GetSize(), row.points);
        CheckConsistent(mesh);
        EXPECT_FALSE(channel->Weld(&info, row.tolerance));
    }
}

TEST(ChannelWeld, LeavesMarkedPointsAndRefusesChannels)
{
    CMesh mesh(4, {{0, 1, 2}, {0, 2, 3}});
    CUVWChannel* channel = mesh.AddUVW({1, 2, 3, 1, 3, 4}, {{0, 1, 2}, {3, 4, 5}});
    const CGeomInfo info = mesh.Info();
    EXPECT_FALSE(channel->Weld(nullptr, 0));
    for (const _CHANNEL_PROPERTIES flag : {CHANNEL_INVALID, CHANNEL_UNFOLLOWED}) {
        channel->SetFlag(flag, true);
        EXPECT_FALSE(channel->Weld(&info, 0));
        channel->SetFlag(flag, false);
    }
    channel->GetPointList()->ElementAt(3)->SetFlag(POINT_UNSET, true);
    channel->GetPointList()->ElementAt(4)->SetFlag(POINT_INVALID, true);
    EXPECT_FALSE(mesh.channels->Weld(&info, 0, CHANNEL_ALL));
}

TEST(ChannelWeld, TableAndPairsGiveTheSame)
{
    // One fan whose hub carries many coordinates with few values; a tolerance too small to matter takes the road of pairs.
    std::mt19937 random(2);
    std::vector<float> us;
    Corners corners, data;
    for (int i = 0; i < 200; i++) {
        us.push_back(static_cast<float>(random() % 40));
        us.push_back(static_cast<float>(1000 + i));
        corners.push_back({0, i + 1, i + 2});
        data.push_back({2 * i, 2 * i + 1, 2 * i + 1});
    }
    us[10] = -0.0f, us[20] = 0.0f;
    std::vector<float> results[2];
    for (int road = 0; road < 2; road++) {
        CMesh mesh(202, corners);
        CUVWChannel* channel = mesh.AddUVW(us, data);
        const CGeomInfo info = mesh.Info();
        EXPECT_TRUE(channel->Weld(&info, road == 0 ? 0 : 1e-6));
        for (int f = 0; f < 200; f++)
            results[road].push_back((*channel->GetUVWPointList())[CornersOf(*channel->GetFaceList(), f)[0]]->u);
        results[road].push_back(static_cast<float>(channel->GetPointList()->GetSize()));
        CheckConsistent(mesh);
    }
    EXPECT_EQ(results[0], results[1]);
    EXPECT_TRUE(std::signbit(results[0][10 / 2]) == std::signbit(results[0][20 / 2]));    // -0 and 0 were joined
}

TEST(ChannelWeld, EachKindComparesInItsOwnWay)
{
    CMesh mesh(0, {});
    CVCChannel* colours = new CVCChannel;
    CSpecNormalChannel* normals = new CSpecNormalChannel;
    mesh.channels->AddChannel(colours);
    mesh.channels->AddChannel(normals);

    const CVCPoint grey(CRGBColor(100, 100, 100)), lighter(CRGBColor(100, 227, 100)), lightest(CRGBColor(100, 228, 100)),
        clear(CRGBColor(100, 100, 100, 0)), next(CRGBColor(100, 101, 100));
    EXPECT_TRUE(colours->Compare(&grey, &lighter, 0.5));    // 127 bytes
    EXPECT_FALSE(colours->Compare(&grey, &lightest, 0.5));
    EXPECT_TRUE(colours->Compare(&grey, &clear, 0.5));
    EXPECT_FALSE(colours->Compare(&grey, &clear, 0.001));    // less than a byte: all four equal
    EXPECT_FALSE(colours->Compare(&grey, &next, 0.001));

    C3DTVector<float> x(1, 0, 0), y(0, 1, 0), back(-1, 0, 0), unset(0, 0, 0), unset2(1, 0, 0);
    unset.SetFlag(POINT_UNSET, true);
    unset2.SetFlag(POINT_UNSET, true);
    EXPECT_FALSE(normals->Compare(&x, &y, 0.4));
    EXPECT_TRUE(normals->Compare(&x, &y, 0.51));
    EXPECT_FALSE(normals->Compare(&x, &back, 0.9));
    EXPECT_TRUE(normals->Compare(&x, &back, 1));
    EXPECT_FALSE(normals->Compare(&x, &unset, 1));
    EXPECT_TRUE(normals->Compare(&unset, &unset2, 0.1));

    CPointNormalChannel* derived = mesh.channels->GetPointNormalChannel();
    const CGeomInfo info = mesh.Info();
    EXPECT_FALSE(derived->Weld(&info, 0));
}
