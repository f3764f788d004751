#include "meshops/IntCoordMap.h"

#include <gtest/gtest.h>

#include <limits>

TEST(IntCoordMap, RelativeDistanceLeavesFlatExtentsOut)
{
    const C3DTPoint<float> low(0, 0, 0);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {4, 2, 8}), 1);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {4, 0, 8}), 2);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {0, 2, 8}), 1e-6);    // flat in x counts
}

TEST(IntCoordMap, OnlyFiniteCoordinatesHaveACell)
{
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    const CIntCoordMap map({0, 0, 0}, 1e-30);
    CIntCoordMap::Cell cell;
    for (const float value : {inf, -inf, nan})
        EXPECT_FALSE(map.GetCell({1, value, 1}, cell));
    EXPECT_TRUE(map.GetCell({std::numeric_limits<float>::max(), 0, 0}, cell));
}
