#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "images/Bitmap.h"

namespace {

std::unique_ptr<Bitmap> Rgba(int width, int height, const std::vector<unsigned char>& bytes)
{
    std::unique_ptr<Bitmap> bitmap(rgbaBitmap::Create(width, height));
    for (int y = 0; y < height; y++)
        std::memcpy(bitmap->GetLine(y), &bytes[static_cast<size_t>(y) * width * 4], static_cast<size_t>(width) * 4);
    return bitmap;
}

std::vector<unsigned char> Bytes(const Bitmap& bitmap)
{
    std::vector<unsigned char> bytes;
    for (int y = 0; y < bitmap.GetHeight(); y++)
        bytes.insert(bytes.end(), bitmap.GetLine(y),
                     bitmap.GetLine(y) + static_cast<ptrdiff_t>(bitmap.GetWidth()) * bitmap.GetBytesPerPixel());
    return bytes;
}

}

TEST(Bitmap, RefusesSizesThatCannotBe)
{
    EXPECT_EQ(rgbBitmap::Create(0, 5), nullptr);
    EXPECT_EQ(rgbBitmap::Create(5, -1), nullptr);
    EXPECT_EQ(rgbaBitmap::Create(65536, 65536), nullptr);
    const auto bitmap = Rgba(1, 1, {1, 2, 3, 4});
    EXPECT_FALSE(bitmap->Resize(0, 1, 0));
    EXPECT_EQ(bitmap->GetLine(-1), nullptr);
    EXPECT_EQ(bitmap->GetLine(1), nullptr);
}

TEST(Bitmap, AveragesWhatAShrunkPixelCovers)
{
    // The unseen pixel is pure green: its colour must not bleed into the visible one's.
    const auto bitmap = Rgba(2, 2, {200, 0, 0, 255, 0, 255, 0, 0, 100, 0, 0, 255, 0, 255, 0, 0});
    ASSERT_TRUE(bitmap->Resize(1, 1, 1));
    EXPECT_EQ(Bytes(*bitmap), (std::vector<unsigned char>{150, 0, 0, 128}));

    const auto row = Rgba(3, 1, {0, 0, 0, 255, 90, 0, 0, 255, 240, 0, 0, 255});
    ASSERT_TRUE(row->Resize(2, 1, 1));    // (0 + 90/2) / 1.5, (90/2 + 240) / 1.5
    EXPECT_EQ(Bytes(*row), (std::vector<unsigned char>{30, 0, 0, 255, 190, 0, 0, 255}));
}

TEST(Bitmap, ShrinksByWholeNumbersToTheRoundedAverage)
{
    // Faults in mind: sums that run over, a division that is one off, rows of the block before. 9 by 9 goes the general way.
    for (const auto& [across, down] : {std::pair(2, 2), {1, 2}, {3, 2}, {7, 1}, {8, 8}, {9, 9}}) {
        SCOPED_TRACE(across * 100 + down);
        const std::unique_ptr<Bitmap> bitmap(rgbBitmap::Create(5 * across, 3 * down));
        unsigned int random = 1;
        for (int y = 0; y < 3 * down; y++)
            for (int x = 0; x < 15 * across; x++)
                bitmap->GetLine(y)[x] = static_cast<unsigned char>(x < 3 * across ? 255 : (random = random * 1664525 + 1013904223) >> 24);
        const std::unique_ptr<Bitmap> shrunk(bitmap->ConvertToType(BITMAP_RGB));
        ASSERT_TRUE(shrunk->Resize(5, 3, 1));
        for (int y = 0; y < 3; y++)
            for (int i = 0; i < 15; i++) {
                int sum = 0;
                for (int k = 0; k < across * down; k++)
                    sum += bitmap->GetLine(y * down + k / across)[(i / 3 * across + k % across) * 3 + i % 3];
                EXPECT_NEAR(shrunk->GetLine(y)[i], static_cast<double>(sum) / (across * down), 0.5001);
            }
    }
}

TEST(Bitmap, GrowsByNearestAndByMixing)
{
    const auto nearest = Rgba(2, 1, {0, 0, 0, 255, 80, 0, 0, 255});
    ASSERT_TRUE(nearest->Resize(4, 2, 0));
    EXPECT_EQ(nearest->GetLine(1)[4], 0);
    EXPECT_EQ(nearest->GetLine(1)[8], 80);
    const auto mixed = Rgba(2, 1, {0, 0, 0, 255, 80, 0, 0, 255});
    ASSERT_TRUE(mixed->Resize(4, 1, 1));
    EXPECT_EQ(Bytes(*mixed), (std::vector<unsigned char>{0, 0, 0, 255, 20, 0, 0, 255, 60, 0, 0, 255, 80, 0, 0, 255}));
}
