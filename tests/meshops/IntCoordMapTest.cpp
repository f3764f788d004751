#include "meshops/IntCoordMap.h"

#include <gtest/gtest.h>

TEST(IntCoordMap, RelativeDistanceLeavesFlatExtentsOut)
{
    const C3DTPoint<float> low(0, 0, 0);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {4, 2, 8}), 1);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {4, 0, 8}), 2);
    EXPECT_DOUBLE_EQ(CIntCoordMap::GetAbsoluteDistance(0.5, low, {0, 2, 8}), 1e-6);    // flat in x counts
}
