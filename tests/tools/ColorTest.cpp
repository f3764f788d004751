#include "tools/Color.h"

#include <gtest/gtest.h>

#include "tools/HashMix.h"

TEST(Color, RoundsAndClamps)
{
    const CRGBColor color(10, 101, 255, 200);
    EXPECT_EQ(color * 0.5, CRGBColor(5, 51, 128, 100));    // halves go up
    EXPECT_EQ(color * 10.0, CRGBColor(100, 255, 255, 255));
    EXPECT_EQ(color * -1.0, CRGBColor(0, 0, 0, 0));
    EXPECT_EQ(color + CRGBColor(250, 1, 1, 0), CRGBColor(255, 102, 255, 200));
    EXPECT_EQ(color.GetRGBAString(), L"10 101 255 200");
    EXPECT_DOUBLE_EQ(color.GetLuminance(), 265 / 510.0);
    CRGBColor dark, half(50, 100, 0);
    dark.SetLuminance(0.05);
    EXPECT_EQ(dark, CRGBColor(13, 13, 13));
    half.SetLuminance(100 / 255.0);    // was 50 / 255
    EXPECT_EQ(half, CRGBColor(100, 200, 0));
}

TEST(HashMix, KnownResults)
{
    // Worked out with unbounded integers, cut to 64 bits after each step.
    EXPECT_EQ(HashMix64(0), 0x77CFA1EEF01BCA90u);
    EXPECT_EQ(HashMix64(0x464350521234), 0x3F0EE16637F935BAu);
}
