#include <gtest/gtest.h>

#include <limits>

#include "channels/UVWPointList.h"
#include "channels/VCPointList.h"
#include "channels/WeightPointList.h"

TEST(ChannelElements, TextureCoordinatesInUse)
{
    const struct {
        CUVWPoint point;
        float a, b;
    } rows[] = {{{0.2f, 0.3f, 0}, 0.2f, 0.3f}, {{0.2f, 0, 0.7f}, 0.2f, 0.7f}, {{0.2f, 0.3f, 0.7f}, 0.3f, 0.7f}, {{0.2f, 0, 0}, 0.2f, 0}};
    for (const auto& row : rows) {
        float a, b;
        row.point.GetUVCoordinate(a, b);
        EXPECT_EQ(a, row.a);
        EXPECT_EQ(b, row.b);
    }
}

TEST(ChannelElements, CopyAndConvert)
{
    CUVWPoint uvw(1, 2, 3);
    uvw.SetFlags(0x40);
    CUVWPoint other(9, 9, 9);
    static_cast<CPt&>(other) = static_cast<const CPt&>(uvw);
    EXPECT_TRUE(other == uvw);
    EXPECT_EQ(other.GetFlags(), 0x40u);
    EXPECT_EQ((uvw + other).GetFlags(), 0u);
    uvw *= uvw.v;
    EXPECT_TRUE(uvw == CUVWPoint(2, 4, 6));

    CVCPoint colour;
    C4DPoint value(4, 1);
    value[0] = 300, value[1] = -1, value[2] = 12.9, value[3] = std::numeric_limits<double>::quiet_NaN();
    static_cast<CPt&>(colour) = value;
    EXPECT_EQ(colour.GetColor(), CRGBColor(255, 0, 12, 0));
    CWeightPoint weight;
    static_cast<CPt&>(weight) = static_cast<const CPt&>(other);    // another kind: what it has in common
    EXPECT_EQ(weight.GetWeight(), 1);
    static_cast<CPt&>(colour) = static_cast<const CPt&>(weight);
    EXPECT_EQ(colour.GetColor(), CRGBColor(1, 0, 0, 255));
}

TEST(ChannelElements, Checksums)
{
    CUVWPointList* uvw = CUVWPointList::Create();
    uvw->SetSize(3, false, 0);
    (*uvw)[0]->u = 1;    // 0x3F800000
    (*uvw)[1]->SetFlag(POINT_INVALID, true);
    (*uvw)[2]->v = 2;    // 0x40000000
    const unsigned int first = 0x3F800000u, sum = (first + 2) * 16 + 0x40000000u;
    EXPECT_EQ(uvw->GetChecksum(1), sum);
    (*uvw)[2]->w = -0.0f;
    EXPECT_EQ(uvw->GetChecksum(1), sum);
    EXPECT_EQ(uvw->GetChecksum(3), sum + 2 * 16);    // flags: (0 + 0) * 16, then (0 + 2) * 16
    EXPECT_EQ(uvw->GetChecksum(4), 0u);
    DeleteMe(uvw);
}
