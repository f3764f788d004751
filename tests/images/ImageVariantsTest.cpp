#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "images/Pictures.h"
#include "support/TempFolder.h"

// Files of kinds that this library does not write: by hand, or by the format's own library.

namespace {

// Type and pixels in the form of a text; "-" for a failure.
std::string Told(const Bitmap* picture)
{
    if (!picture)
        return "-";
    std::string text = picture->GetType() == BITMAP_RGBA ? "rgba" : "rgb";
    for (const unsigned char value : PixelsOf(*picture)) {
        char number[8];
        std::snprintf(number, sizeof number, " %d", value);
        text += number;
    }
    return text;
}

// A BMP with the header of 40 bytes: masks, palette and pixels follow as they are given.
Bytes Bmp(int width, int height, unsigned int bits, unsigned int compression, unsigned int colors, const Bytes& between,
          const Bytes& pixels)
{
    Bytes file = BytesOf("BM");
    AddNumber(file, 0, 8);
    AddNumber(file, static_cast<unsigned int>(54 + between.size()), 4);
    AddNumber(file, 40, 4);
    AddNumber(file, static_cast<unsigned int>(width), 4);
    AddNumber(file, static_cast<unsigned int>(height), 4);
    AddNumber(file, 1, 2);
    AddNumber(file, bits, 2);
    AddNumber(file, compression, 4);
    AddNumber(file, 0, 12);
    AddNumber(file, colors, 4);
    AddNumber(file, 0, 4);
    Add(file, between);
    Add(file, pixels);
    return file;
}

Bytes Masks(std::initializer_list<unsigned int> masks)
{
    Bytes bytes;
    for (const unsigned int mask : masks)
        AddNumber(bytes, mask, 4);
    return bytes;
}

Bytes Tga(unsigned char kind, Bytes paletteSpec, int width, int height, unsigned char bits, unsigned char flags, const Bytes& rest)
{
    Bytes file = {2, static_cast<unsigned char>(paletteSpec.empty() ? 0 : 1), kind};
    if (paletteSpec.empty())
        paletteSpec.resize(5);
    Add(file, paletteSpec);
    AddNumber(file, 0, 4);
    AddNumber(file, static_cast<unsigned int>(width), 2);
    AddNumber(file, static_cast<unsigned int>(height), 2);
    Add(file, {bits, flags, 'i', 'd'});
    Add(file, rest);
    return file;
}

// A JPEG with a block of camera data that tells the orientation.
Bytes WithOrientation(const Bytes& jpeg, unsigned char orientation, bool big)
{
    Bytes block = BytesOf("Exif");
    Add(block, {0, 0});
    if (big)
        Add(block, {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, orientation, 0, 0, 0, 0, 0, 0});
    else
        Add(block, {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, orientation, 0, 0, 0, 0, 0, 0, 0});
    Bytes file = {0xFF, 0xD8, 0xFF, 0xE1, 0, static_cast<unsigned char>(block.size() + 2)};
    Add(file, block);
    file.insert(file.end(), jpeg.begin() + 2, jpeg.end());
    return file;
}

// A GIF of 2 x 1 pixels, colours 0 red, 1 green, 2 blue, 3 black.
struct GifFrame {
    unsigned char x, width, disposal;
    int transparent;
    Bytes indices;    // one or two
};

Bytes Gif(const std::vector<GifFrame>& frames)
{
    Bytes file = BytesOf("GIF89a");
    Add(file, {2, 0, 1, 0, 0x81, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0});
    for (const GifFrame& frame : frames) {
        Add(file, {0x21, 0xF9, 4, static_cast<unsigned char>(frame.disposal << 2 | (frame.transparent >= 0)), 5, 0,
                   static_cast<unsigned char>(std::max(frame.transparent, 0)), 0});
        Add(file, {0x2C, frame.x, 0, 0, 0, frame.width, 0, 1, 0, 0, 2});
        // Codes of three bits: clear, the pixels, end.
        unsigned int codes = 4, bits = 3;
        for (const unsigned char index : frame.indices) {
            codes |= static_cast<unsigned int>(index) << bits;
            bits += 3;
        }
        codes |= 5u << bits;
        Add(file, {2, static_cast<unsigned char>(codes), static_cast<unsigned char>(codes >> 8), 0});
    }
    file.push_back(0x3B);
    return file;
}

}

TEST(ImageVariants, Bmp)
{
    const Bytes palette = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0};    // blue, green, red
    const struct {
        const char* name;
        Bytes file;
        const char* expected;
    } rows[] = {
        {"1 bit, bottom up", Bmp(2, 2, 1, 0, 2, palette, {0x40, 0, 0, 0, 0x80, 0, 0, 0}), "rgb 6 5 4 3 2 1 3 2 1 6 5 4"},
        {"1 bit, top down", Bmp(2, -2, 1, 0, 2, palette, {0x40, 0, 0, 0, 0x80, 0, 0, 0}), "rgb 3 2 1 6 5 4 6 5 4 3 2 1"},
        {"8 bits, an index without colour", Bmp(2, 1, 8, 0, 3, palette, {2, 200, 0, 0}), "rgb 9 8 7 0 0 0"},
        {"16 bits", Bmp(2, 1, 16, 0, 0, {}, {0x00, 0x7C, 0xFF, 0x03}), "rgb 255 0 0 0 255 255"},
        {"16 bits, 5 6 5", Bmp(2, 1, 16, 3, 0, Masks({0xF800, 0x7E0, 0x1F}), {0xE0, 0x07, 0x00, 0x80}), "rgb 0 255 0 132 0 0"},
        {"32 bits with it", Bmp(1, 1, 32, 0, 0, {}, {1, 2, 3, 4}), "rgba 3 2 1 4"},
        {"32 bits, masks with alpha", Bmp(1, 1, 32, 6, 0, Masks({0xFF, 0xFF00, 0xFF0000, 0xF0000000}), {1, 2, 3, 0x80}), "rgba 1 2 3 136"},
        {"8 bits in runs", Bmp(4, 2, 8, 1, 3, palette, {3, 1, 0, 0, 0, 3, 2, 1, 2, 0, 1, 0, 0, 1}),
         "rgb 9 8 7 6 5 4 9 8 7 3 2 1 6 5 4 6 5 4 6 5 4 3 2 1"},
        {"8 bits in runs with a jump", Bmp(3, 2, 8, 1, 3, palette, {1, 2, 0, 2, 1, 1, 1, 1, 0, 1}),
         "rgb 3 2 1 3 2 1 6 5 4 9 8 7 3 2 1 3 2 1"},
        {"4 bits in runs", Bmp(5, 1, 4, 2, 3, palette, {3, 0x12, 0, 3, 0x21, 0x00, 0, 1}), "rgb 6 5 4 9 8 7 6 5 4 9 8 7 6 5 4"},
        {"no end of the runs", Bmp(2, 1, 8, 1, 3, palette, {2, 1}), "-"},
        {"pixels missing", Bmp(2, 2, 24, 0, 0, {}, Bytes(13)), "-"},
        {"height of the lowest number", Bmp(1, INT_MIN, 24, 0, 0, {}, Bytes(13)), "-"},
        {"runs in 24 bits", Bmp(2, 1, 24, 1, 0, {}, Bytes(8)), "-"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(ReadOne(row.file).get()), row.expected) << row.name;
    // The oldest header: 12 bytes, colours of three.
    Bytes old = BytesOf("BM");
    Add(old, {0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0, 0, 12, 0, 0, 0, 2, 0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 4, 5, 6, 0x40, 0, 0, 0});
    EXPECT_EQ(Told(ReadOne(old).get()), "rgb 3 2 1 6 5 4");
}

TEST(ImageVariants, Tga)
{
    const Bytes spec = {1, 0, 2, 0, 24}, colors = {1, 2, 3, 4, 5, 6};    // palette from index 1 on
    const auto withPalette = [&](const Bytes& indices) {
        Bytes rest = colors;
        Add(rest, indices);
        return rest;
    };
    const struct {
        const char* name;
        Bytes file;
        const char* expected;
    } rows[] = {
        {"palette, bottom up", Tga(1, spec, 1, 2, 8, 0, withPalette({1, 2})), "rgb 6 5 4 3 2 1"},
        {"palette, top down, an index without colour", Tga(1, spec, 1, 2, 8, 0x20, withPalette({1, 9})), "rgb 3 2 1 0 0 0"},
        {"palette in runs", Tga(9, spec, 3, 1, 8, 0, withPalette({0x81, 2, 0, 1})), "rgb 6 5 4 6 5 4 3 2 1"},
        {"16 bits with alpha", Tga(2, {}, 2, 1, 16, 1, {0x00, 0xFC, 0x1F, 0x00}), "rgba 255 0 0 255 0 0 255 0"},
        {"24 bits from the right", Tga(2, {}, 2, 1, 24, 0x30, {1, 2, 3, 4, 5, 6}), "rgb 6 5 4 3 2 1"},
        {"24 bits in runs over the rows", Tga(10, {}, 2, 2, 24, 0x20, {0x82, 1, 2, 3, 0, 4, 5, 6}), "rgb 3 2 1 3 2 1 3 2 1 6 5 4"},
        {"32 bits", Tga(2, {}, 1, 1, 32, 8, {1, 2, 3, 4}), "rgba 3 2 1 4"},
        {"32 bits, nothing seen", Tga(2, {}, 1, 1, 32, 8, {1, 2, 3, 0}), "rgb 3 2 1"},
        {"grey with alpha", Tga(3, {}, 1, 1, 16, 8, {7, 9}), "rgba 7 7 7 9"},
        {"pixels missing", Tga(2, {}, 2, 2, 24, 0, Bytes(11)), "-"},
        {"a run missing", Tga(10, {}, 2, 2, 24, 0, {0x82, 1, 2, 3}), "-"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(ReadOne(row.file, FourCC("TGA ")).get()), row.expected) << row.name;
}

TEST(ImageVariants, PicturesAreTurnedUpright)
{
    const char* const expected[] = {"ABC/DEF", "CBA/FED", "FED/CBA", "DEF/ABC", "AD/BE/CF", "DA/EB/FC", "FC/EB/DA", "CF/BE/AD"};
    for (int orientation = 1; orientation <= 8; orientation++) {
        const auto upright = MakeUpright(PictureOf(BITMAP_GREY, 3, 2, BytesOf("ABCDEF")), orientation);
        std::string text;
        for (int y = 0; y < upright->GetHeight(); y++)
            text += (y ? "/" : "") +
                    std::string(reinterpret_cast<const char*>(upright->GetLine(y)), static_cast<std::size_t>(upright->GetWidth()));
        EXPECT_EQ(text, expected[orientation - 1]);
    }

    // Left half white: to be turned clockwise, it is the upper half.
    auto picture = NewPicture(BITMAP_RGB, 32, 16);
    for (int y = 0; y < 16; y++)
        std::memset(picture->GetLine(y), 255, 48);
    const Bytes file = WriteOne(FourCC("JPEG"), *picture);
    for (const bool big : {false, true}) {
        const auto read = ReadOne(WithOrientation(file, 6, big));
        ASSERT_NE(read, nullptr);
        ASSERT_EQ(read->GetWidth(), 16);
        ASSERT_EQ(read->GetHeight(), 32);
        EXPECT_GT(read->GetLine(4)[0], 240);
        EXPECT_LT(read->GetLine(28)[0], 15);
    }
}

TEST(ImageVariants, GifFramesLieOverWhatTheFormerLeave)
{
    const Bytes file = Gif({
        {0, 2, 1, -1, {0, 0}},    // red red, stays
        {1, 1, 2, -1, {1}},       // green to the right, cleared afterwards
        {0, 1, 3, -1, {2}},       // blue to the left, gives back what was there
        {0, 2, 1, 3, {3, 1}},     // nothing to the left, green to the right
    });
    CFrameBitmap frames;
    ASSERT_EQ(ReadImage(file.data(), file.size(), {}, frames), IMAGE_OK);
    const char* const expected[] = {"rgb 255 0 0 255 0 0", "rgb 255 0 0 0 255 0", "rgba 0 0 255 255 0 0 0 0", "rgb 255 0 0 0 255 0"};
    ASSERT_EQ(frames.GetFrameCount(), 4);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(Told(frames.GetFrame(i)->GetStandardLayer()), expected[i]) << i;
        EXPECT_EQ(frames.GetDuration(i), 50);
    }
    EXPECT_EQ(frames.GetLoopCount(), 1);
    EXPECT_EQ(Told(ReadOne(Gif({{0, 2, 0, 1, {0, 1}}})).get()), "rgba 255 0 0 255 0 0 0 0");
}
