#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

#include "support/TempFolder.h"
#include "tools/Pictures.h"

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

void AppendPng(png_structp png, png_bytep bytes, png_size_t size)
{
    Bytes& out = *static_cast<Bytes*>(png_get_io_ptr(png));
    out.insert(out.end(), bytes, bytes + size);
}

// `rows` as libpng packs them.
Bytes Png(int width, int bits, int color, int interlace, std::vector<Bytes> rows, const std::vector<png_color>& palette = {},
          const Bytes& alpha = {})
{
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, &AppendPng, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(rows.size()), bits, color, interlace, 0, 0);
    if (!palette.empty())
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    png_color_16 key{};
    key.gray = 1;
    if (!alpha.empty())
        png_set_tRNS(png, info, alpha.data(), color == PNG_COLOR_TYPE_PALETTE ? static_cast<int>(alpha.size()) : 0, &key);
    png_write_info(png, info);
    std::vector<png_bytep> lines;
    for (Bytes& row : rows)
        lines.push_back(row.data());
    png_write_image(png, lines.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

// A JPEG with four inks and the mark of the maker whose programs invert them.
Bytes CmykJpeg(const Bytes& inks, J_COLOR_SPACE space)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = jpeg.image_height = 8;
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, space);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    Bytes row;
    for (int x = 0; x < 8; x++)
        Add(row, inks);
    for (int y = 0; y < 8; y++) {
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&jpeg, &line, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const Bytes file(bytes, bytes + size);
    std::free(bytes);
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

// Writes a page and reads the file.
struct TiffKind {
    const char* name;
    int bits, samples, photometric, planes, extra;    // extra: kind of the fourth sample; -1: none
    int tile, orientation;
    int kind;    // of page
};

void WriteTiffPage(TIFF* tiff, const TiffKind& kind, int width, int height, const Bytes& samples)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, kind.planes);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, kind.orientation);
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, kind.kind);
    const std::uint16_t extra = static_cast<std::uint16_t>(kind.extra);
    if (kind.extra >= 0)
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
    const std::size_t pixel = static_cast<std::size_t>(kind.bits / 8 * kind.samples), row = static_cast<std::size_t>(width) * pixel;
    Bytes bytes = samples;
    if (kind.tile) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kind.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, kind.tile);
        Bytes tile(static_cast<std::size_t>(kind.tile * kind.tile) * pixel);
        for (int y = 0; y < height; y++)
            std::memcpy(&tile[static_cast<std::size_t>(y * kind.tile) * pixel], &bytes[static_cast<std::size_t>(y) * row], row);
        TIFFWriteTile(tiff, tile.data(), 0, 0, 0, 0);
    } else if (kind.planes == PLANARCONFIG_SEPARATE) {
        for (int s = 0; s < kind.samples; s++)
            for (int y = 0; y < height; y++) {
                Bytes line;
                for (int x = 0; x < width; x++)
                    line.push_back(bytes[static_cast<std::size_t>((y * width + x) * kind.samples + s)]);
                TIFFWriteScanline(tiff, line.data(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(s));
            }
    } else {
        const std::size_t size = kind.bits == 1 ? 1 : row;
        for (int y = 0; y < height; y++)
            TIFFWriteScanline(tiff, &bytes[static_cast<std::size_t>(y) * size], static_cast<std::uint32_t>(y), 0);
    }
    TIFFWriteDirectory(tiff);
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
        {"2 bits", Bmp(3, 1, 2, 0, 3, palette, {0x18, 0, 0, 0}), "rgb 3 2 1 6 5 4 9 8 7"},
        {"4 bits", Bmp(3, 1, 4, 0, 3, palette, {0x21, 0, 0, 0}), "rgb 9 8 7 6 5 4 3 2 1"},
        {"8 bits, an index without colour", Bmp(2, 1, 8, 0, 3, palette, {2, 200, 0, 0}), "rgb 9 8 7 0 0 0"},
        {"padding left out at the end", Bmp(2, 1, 8, 0, 3, palette, {2, 1}), "rgb 9 8 7 6 5 4"},
        {"16 bits", Bmp(2, 1, 16, 0, 0, {}, {0x00, 0x7C, 0xFF, 0x03}), "rgb 255 0 0 0 255 255"},
        {"16 bits, 5 6 5", Bmp(2, 1, 16, 3, 0, Masks({0xF800, 0x7E0, 0x1F}), {0xE0, 0x07, 0x00, 0x80}), "rgb 0 255 0 132 0 0"},
        {"32 bits without alpha", Bmp(1, 1, 32, 0, 0, {}, {1, 2, 3, 0}), "rgb 3 2 1"},
        {"32 bits with it", Bmp(1, 1, 32, 0, 0, {}, {1, 2, 3, 4}), "rgba 3 2 1 4"},
        {"32 bits, masks with alpha", Bmp(1, 1, 32, 6, 0, Masks({0xFF, 0xFF00, 0xFF0000, 0xF0000000}), {1, 2, 3, 0x80}), "rgba 1 2 3 136"},
        {"32 bits, masks of 10", Bmp(1, 1, 32, 3, 0, Masks({0x3FF00000, 0xFFC00, 0x3FF}), {0xFF, 0x03, 0, 0}), "rgb 0 0 255"},
        {"8 bits in runs", Bmp(4, 2, 8, 1, 3, palette, {3, 1, 0, 0, 0, 3, 2, 1, 2, 0, 1, 0, 0, 1}),
         "rgb 9 8 7 6 5 4 9 8 7 3 2 1 6 5 4 6 5 4 6 5 4 3 2 1"},
        {"8 bits in runs with a jump", Bmp(3, 2, 8, 1, 3, palette, {1, 2, 0, 2, 1, 1, 1, 1, 0, 1}),
         "rgb 3 2 1 3 2 1 6 5 4 9 8 7 3 2 1 3 2 1"},
        {"4 bits in runs", Bmp(5, 1, 4, 2, 3, palette, {3, 0x12, 0, 3, 0x21, 0x00, 0, 1}), "rgb 6 5 4 9 8 7 6 5 4 9 8 7 6 5 4"},
        {"a run over the end", Bmp(2, 1, 8, 1, 3, palette, {200, 1, 9, 2, 0, 1}), "rgb 6 5 4 6 5 4"},
        {"no end of the runs", Bmp(2, 1, 8, 1, 3, palette, {2, 1}), "-"},
        {"pixels missing", Bmp(2, 2, 24, 0, 0, {}, Bytes(13)), "-"},
        {"no width", Bmp(0, 2, 24, 0, 0, {}, Bytes(13)), "-"},
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
        {"palette, indices of 16 bits", Tga(1, spec, 1, 1, 16, 0, withPalette({2, 0})), "rgb 6 5 4"},
        {"palette in runs", Tga(9, spec, 3, 1, 8, 0, withPalette({0x81, 2, 0, 1})), "rgb 6 5 4 6 5 4 3 2 1"},
        {"15 bits", Tga(2, {}, 2, 1, 15, 0, {0x00, 0x7C, 0x1F, 0x00}), "rgb 255 0 0 0 0 255"},
        {"16 bits with alpha", Tga(2, {}, 2, 1, 16, 1, {0x00, 0xFC, 0x1F, 0x00}), "rgba 255 0 0 255 0 0 255 0"},
        {"24 bits from the right", Tga(2, {}, 2, 1, 24, 0x30, {1, 2, 3, 4, 5, 6}), "rgb 6 5 4 3 2 1"},
        {"24 bits in runs over the rows", Tga(10, {}, 2, 2, 24, 0x20, {0x82, 1, 2, 3, 0, 4, 5, 6}), "rgb 3 2 1 3 2 1 3 2 1 6 5 4"},
        {"32 bits", Tga(2, {}, 1, 1, 32, 8, {1, 2, 3, 4}), "rgba 3 2 1 4"},
        {"32 bits, nothing seen", Tga(2, {}, 1, 1, 32, 8, {1, 2, 3, 0}), "rgb 3 2 1"},
        {"grey", Tga(3, {}, 2, 1, 8, 0, {7, 9}), "rgb 7 7 7 9 9 9"},
        {"grey with alpha", Tga(3, {}, 1, 1, 16, 8, {7, 9}), "rgba 7 7 7 9"},
        {"grey in runs", Tga(11, {}, 2, 1, 8, 0, {0x81, 7}), "rgb 7 7 7 7 7 7"},
        {"pixels missing", Tga(2, {}, 2, 2, 24, 0, Bytes(11)), "-"},
        {"a run missing", Tga(10, {}, 2, 2, 24, 0, {0x82, 1, 2, 3}), "-"},
        {"no kind of picture", Tga(4, {}, 1, 1, 24, 0, Bytes(3)), "-"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(ReadOne(row.file, FourCC("TGA ")).get()), row.expected) << row.name;
}

TEST(ImageVariants, Png)
{
    const std::vector<png_color> palette = {{1, 2, 3}, {4, 5, 6}};
    const struct {
        const char* name;
        Bytes file;
        const char* expected;
    } rows[] = {
        {"palette", Png(2, 1, PNG_COLOR_TYPE_PALETTE, 0, {{0x40}}, palette), "rgb 1 2 3 4 5 6"},
        {"palette with alpha", Png(2, 1, PNG_COLOR_TYPE_PALETTE, 0, {{0x40}}, palette, {9}), "rgba 1 2 3 9 4 5 6 255"},
        {"grey of 2 bits", Png(2, 2, PNG_COLOR_TYPE_GRAY, 0, {{0x60}}), "rgb 85 85 85 170 170 170"},
        {"grey with a colour that is transparent", Png(2, 2, PNG_COLOR_TYPE_GRAY, 0, {{0x60}}, {}, {1}), "rgba 85 85 85 0 170 170 170 255"},
        {"grey and alpha", Png(1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, 0, {{7, 9}}), "rgba 7 7 7 9"},
        {"16 bits are rounded", Png(1, 16, PNG_COLOR_TYPE_RGB, 0, {{0x12, 0xFF, 0, 0x80, 0xFF, 0xFF}}), "rgb 19 0 255"},
        {"interlaced", Png(3, 8, PNG_COLOR_TYPE_GRAY, 1, {{1, 2, 3}, {4, 5, 6}}), "rgb 1 1 1 2 2 2 3 3 3 4 4 4 5 5 5 6 6 6"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(ReadOne(row.file).get()), row.expected) << row.name;
}

TEST(ImageVariants, Pnm)
{
    const struct {
        const char* name;
        std::string file;
        const char* expected;
    } rows[] = {
        {"bits as text", "P1\n# comment\n2 2\n10\n0 1\n", "rgb 0 0 0 255 255 255 255 255 255 0 0 0"},
        {"grey as text", "P2 2 1 15 15 1", "rgb 255 255 255 17 17 17"},
        {"colour as text", "P3\n1 1\n255\n1 2 3\n", "rgb 1 2 3"},
        {"bits", "P4 3 1\n\x40", "rgb 255 255 255 0 0 0 255 255 255"},
        {"grey of 16 bits", std::string("P5 1 1 65535\n\x80\x00", 15), "rgb 128 128 128"},
        {"colour", "P6 1 1 255 abc", "rgb 97 98 99"},
        {"a value too high", "P2 1 1 15 16 ", "-"},
        {"no most", "P2 1 1 0 0 ", "-"},
        {"pixels missing", "P6 1 2 255 abcde", "-"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(ReadOne(BytesOf(row.file)).get()), row.expected) << row.name;
}

TEST(ImageVariants, WhatStbReads)
{
    Bytes hdr = BytesOf("#?RGBE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n");
    Add(hdr, {128, 0, 64, 129, 0, 0, 0, 0});    // 1, 0, 0.5 and black; the display's curve is a power of 2.2
    EXPECT_EQ(Told(ReadOne(hdr).get()), "rgb 255 0 186 0 0 0");

    Bytes pic = {0x53, 0x80, 0xF6, 0x34};
    pic.resize(88);
    Add(pic, BytesOf("PICT"));
    Add(pic, {0, 3, 0, 1, 0, 0, 0, 0, 0, 3, 0, 0, 1, 8, 2, 0xE0, 0, 8, 2, 0x10, 129, 10, 20, 30, 0, 1, 2, 3, 130, 77});
    EXPECT_EQ(Told(ReadOne(pic).get()), "rgba 10 20 30 77 10 20 30 77 1 2 3 77");

    Bytes psd = BytesOf("8BPS");
    Add(psd, {0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 2, 0, 8, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    Add(psd, {0, 2, 0, 3, 0, 2, 0xFF, 9, 1, 5, 6, 0xFF, 7});    // runs of each channel, behind their lengths
    EXPECT_EQ(Told(ReadOne(psd).get()), "rgb 9 5 7 9 6 7");
}

TEST(ImageVariants, JpegInksBecomeLight)
{
    // Inks as they are kept, inverted: red is full, the others half, black a quarter taken away.
    for (const J_COLOR_SPACE space : {JCS_CMYK, JCS_YCCK}) {
        const auto read = ReadOne(CmykJpeg({255, 128, 128, 192}, space));
        ASSERT_NE(read, nullptr);
        EXPECT_NEAR(read->GetLine(4)[12], 192, 3);
        EXPECT_NEAR(read->GetLine(4)[13], 96, 3);
        EXPECT_NEAR(read->GetLine(4)[14], 96, 3);
    }
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

TEST(ImageVariants, Tiff)
{
    const Bytes rgb = {1, 2, 3, 4, 5, 6};
    const struct {
        TiffKind kind;
        int width, height;
        Bytes samples;
        const char* expected;
    } rows[] = {
        {{"planes", 8, 3, PHOTOMETRIC_RGB, 2, -1, 0, 1, 0}, 1, 2, rgb, "rgb 1 2 3 4 5 6"},
        {{"planes with alpha", 8, 4, PHOTOMETRIC_RGB, 2, EXTRASAMPLE_UNASSALPHA, 0, 1, 0}, 1, 1, {1, 2, 3, 4}, "rgba 1 2 3 4"},
        {{"tile", 8, 3, PHOTOMETRIC_RGB, 1, -1, 16, 1, 0}, 2, 1, rgb, "rgb 1 2 3 4 5 6"},
        {{"16 bits", 16, 3, PHOTOMETRIC_RGB, 1, -1, 0, 1, 0}, 1, 1, {0x00, 0x80, 0xFF, 0xFF, 0x7F, 0x00}, "rgb 128 255 0"},
        {{"multiplied alpha", 8, 4, PHOTOMETRIC_RGB, 1, EXTRASAMPLE_ASSOCALPHA, 0, 1, 0}, 1, 1, {50, 100, 0, 128}, "rgba 100 199 0 128"},
        {{"grey upside down", 8, 1, PHOTOMETRIC_MINISBLACK, 1, -1, 0, 4, 0}, 1, 2, {7, 9}, "rgb 9 9 9 7 7 7"},
        {{"white is 0", 8, 1, PHOTOMETRIC_MINISWHITE, 1, -1, 0, 1, 0}, 1, 1, {7}, "rgb 248 248 248"},
        {{"grey and alpha", 8, 2, PHOTOMETRIC_MINISBLACK, 1, EXTRASAMPLE_UNASSALPHA, 0, 1, 0}, 1, 1, {7, 9}, "rgba 7 7 7 9"},
        {{"1 bit, turned", 1, 1, PHOTOMETRIC_MINISBLACK, 1, -1, 0, 6, 0}, 2, 1, {0x40}, "rgb 0 0 0 255 255 255"},
        {{"inks", 8, 4, PHOTOMETRIC_SEPARATED, 1, -1, 0, 1, 0}, 1, 1, {0, 255, 255, 0}, "rgb 255 0 0"},
    };
    const TempFolder folder;
    for (const auto& row : rows) {
        TIFF* const tiff = TIFFOpen(folder.Name("a.tif").c_str(), "w");
        WriteTiffPage(tiff, row.kind, row.width, row.height, row.samples);
        TIFFClose(tiff);
        EXPECT_EQ(Told(ReadOne(BytesOf(folder.Read("a.tif"))).get()), row.expected) << row.kind.name;
    }

    // Two pages; the first has a mask of one bit and a reduced copy.
    TIFF* const tiff = TIFFOpen(folder.Name("b.tif").c_str(), "w");
    WriteTiffPage(tiff, {"", 8, 1, PHOTOMETRIC_MINISBLACK, 1, -1, 0, 1, FILETYPE_PAGE}, 2, 1, {1, 2});
    WriteTiffPage(tiff, {"", 1, 1, PHOTOMETRIC_MASK, 1, -1, 0, 1, FILETYPE_MASK}, 2, 1, {0x40});
    WriteTiffPage(tiff, {"", 8, 1, PHOTOMETRIC_MINISBLACK, 1, -1, 0, 1, FILETYPE_REDUCEDIMAGE}, 1, 1, {1});
    WriteTiffPage(tiff, {"", 8, 1, PHOTOMETRIC_MINISBLACK, 1, -1, 0, 1, FILETYPE_PAGE}, 1, 1, {3});
    TIFFClose(tiff);
    const Bytes file = BytesOf(folder.Read("b.tif"));
    CFrameBitmap frames;
    ASSERT_EQ(ReadImage(file.data(), file.size(), {}, frames), IMAGE_OK);
    ASSERT_EQ(frames.GetFrameCount(), 2);
    EXPECT_EQ(Told(frames.GetFrame(1)->GetStandardLayer()), "rgb 3 3 3");
    ASSERT_EQ(frames.GetFrame(0)->GetLayerType(1), static_cast<unsigned int>(LAYER_MASK));
    EXPECT_EQ(PixelsOf(*frames.GetFrame(0)->GetLayer(1)), (Bytes{0, 255}));
}
