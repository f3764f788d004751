#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "images/2DIo.h"
#include "images/Pictures.h"
#include "support/TempFolder.h"

namespace {

constexpr unsigned int PNG = FourCC("PNG "), JPEG = FourCC("JPEG"), TIFF = FourCC("TIFF"), WEBP = FourCC("WEBP"), GIF = FourCC("GIF "),
                       BMP = FourCC("BMP "), TGA = FourCC("TGA ");

double MeanDifference(const Bitmap& a, const Bitmap& b)
{
    const Bytes left = PixelsOf(a), right = PixelsOf(b);
    double sum = left.size() == right.size() ? 0 : HUGE_VAL;
    for (std::size_t i = 0; i < left.size() && i < right.size(); i++)
        sum += std::abs(left[i] - right[i]);
    return sum / static_cast<double>(left.size());
}

std::unique_ptr<Bitmap> Filled(BitmapType type, int width, int height, const Bytes& color)
{
    Bytes pixels;
    for (int i = 0; i < width * height; i++)
        Add(pixels, color);
    return PictureOf(type, width, height, pixels);
}

// A file of each format, small enough to be cut and bent at each byte.
struct Sample {
    const char* name;
    unsigned int fileClass;
    Bytes file;
};

std::vector<Sample> Samples()
{
    std::vector<Sample> samples;
    CImageOptions plain;
    plain.compress = false;
    const auto rgba = Pattern(BITMAP_RGBA, 7, 5, 6), rgb = Pattern(BITMAP_RGB, 7, 5, 6);
    const struct {
        const char* name;
        unsigned int fileClass;
    } formats[] = {{"png", PNG}, {"jpeg", JPEG}, {"tiff", TIFF}, {"webp", WEBP}, {"gif", GIF}, {"bmp", BMP}, {"tga", TGA}};
    for (const auto& [name, fileClass] : formats)
        for (const Bitmap* picture : {rgba.get(), rgb.get()})
            samples.push_back({name, fileClass, WriteOne(fileClass, *picture)});
    samples.push_back({"plain tiff", TIFF, WriteOne(TIFF, *rgba, plain)});
    samples.push_back({"plain tga", TGA, WriteOne(TGA, *rgb, plain)});
    for (const unsigned int fileClass : {GIF, WEBP, TIFF}) {
        const auto red = Filled(BITMAP_RGBA, 3, 3, {255, 0, 0, 255}), none = Filled(BITMAP_RGBA, 3, 3, {0, 0, 0, 0});
        CImageBytes out;
        const CImageSource source{{{red.get(), 50}, {none.get(), 50}, {red.get(), 50}}, 3};
        WriteImage(*FindImageCodec(fileClass), source, {}, out);
        samples.push_back({"frames", fileClass, Bytes(out.begin(), out.end())});
    }
    Bytes hdr = BytesOf("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 8\n");
    for (int row = 0; row < 2; row++)
        Add(hdr, {2, 2, 0, 8, 0x88, 128, 0x88, 64, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0x88, 128});
    samples.push_back({"hdr", FourCC("HDR "), hdr});
    Bytes psd = BytesOf("8BPS");
    Add(psd, {0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 3, 0, 8, 0, 3, 0, 0, 0, 0, 0, 0, 0, 2, 9, 9, 0, 0, 0, 0, 0, 0});
    for (unsigned char i = 0; i < 18; i++)
        psd.push_back(i);
    samples.push_back({"psd", FourCC("PSD "), psd});
    Bytes pic = {0x53, 0x80, 0xF6, 0x34};
    pic.resize(88);
    Add(pic, BytesOf("PICT"));
    Add(pic, {0, 2, 0, 2, 0, 0, 0, 0, 0, 3, 0, 0, 0, 8, 2, 0xE0, 129, 10, 20, 30, 1, 1, 2, 3, 4, 5, 6});
    samples.push_back({"pic", FourCC("PIC "), pic});
    samples.push_back({"ppm", FourCC("PNM "), BytesOf("P6\n2 2\n255\nabcdefghijkl")});
    return samples;
}

}

TEST(Images, ComeBackAsTheyWereWritten)
{
    // Faults in mind: padded rows, channels in another order, a picture upside down, alpha lost or multiplied in, odd sizes.
    const struct {
        const char* name;
        unsigned int fileClass;
        bool alpha;
        int colors;          // of the picture
        double tolerance;    // mean difference of a byte
    } formats[] = {
        {"png", PNG, true, 256, 0},  {"jpeg", JPEG, false, 256, 12}, {"tiff", TIFF, true, 256, 0}, {"webp", WEBP, true, 256, 0},
        {"gif", GIF, false, 200, 0}, {"bmp", BMP, true, 256, 0},     {"tga", TGA, true, 256, 0},
    };
    const int sizes[][2] = {{1, 1}, {7, 3}, {3, 7}, {130, 2}, {64, 65}};
    for (const auto& format : formats)
        for (const auto& [width, height] : sizes)
            for (const BitmapType type : {BITMAP_RGB, BITMAP_RGBA, BITMAP_GREY})
                for (const bool compress : {false, true}) {
                    SCOPED_TRACE(std::string(format.name) + " " + std::to_string(width) + "x" + std::to_string(height) + " type " +
                                 std::to_string(type));
                    CImageOptions options;
                    options.compress = compress;
                    options.jpegFullColor = true;
                    options.jpegQuality = 95;
                    const auto picture = Pattern(type, width, height, format.colors);
                    const auto read = ReadOne(WriteOne(format.fileClass, *picture, options), format.fileClass);
                    ASSERT_NE(read, nullptr);
                    const bool alpha = type == BITMAP_RGBA && format.alpha;
                    if (!alpha && type == BITMAP_RGBA && format.fileClass == GIF)
                        continue;    // its alpha has two values: below
                    ASSERT_EQ(read->GetType(), alpha ? BITMAP_RGBA : BITMAP_RGB);
                    const std::unique_ptr<Bitmap> expected(picture->ConvertToType(read->GetType()));
                    EXPECT_LE(MeanDifference(*expected, *read), format.tolerance);
                }
}

TEST(Images, CutFilesAreRefusedOrWhole)
{
    // What is missing may be a mark at the end. A picture that is given must be the whole one.
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.name);
        IMAGE_RESULT result;
        const std::vector<Bytes> whole = ReadAll(sample.file, sample.fileClass, result);
        ASSERT_EQ(result, IMAGE_OK);
        std::size_t refused = 0;
        for (std::size_t size = 0; size < sample.file.size(); size++) {
            const Bytes cut(sample.file.begin(), sample.file.begin() + static_cast<std::ptrdiff_t>(size));
            const std::vector<Bytes> read = ReadAll(cut, sample.fileClass, result);
            refused += result != IMAGE_OK;
            EXPECT_TRUE(result != IMAGE_OK || read == whole) << size << " bytes";
        }
        EXPECT_GE(refused + 27, sample.file.size());
    }
}

TEST(Images, BentFilesDoNoHarm)
{
    // Only crashes, leaks and endless loops are looked for.
    for (const Sample& sample : Samples())
        for (std::size_t at = 0; at < sample.file.size(); at++)
            for (const unsigned char bend : {0x01, 0xFF}) {
                Bytes bent = sample.file;
                bent[at] ^= bend;
                CFrameBitmap frames;
                CImageRequest request;
                request.fileClass = sample.fileClass;
                request.options.maxBytes = 1 << 22;
                const IMAGE_RESULT result = ReadImage(bent.data(), bent.size(), request, frames);
                EXPECT_EQ(result == IMAGE_OK, frames.GetFrameCount() > 0);
            }
}

TEST(Images, LimitsHoldBeforeMemoryIsTaken)
{
    Bytes png = WriteOne(PNG, *Pattern(BITMAP_RGB, 7, 3, 6));
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.name);
        CFrameBitmap frames;
        CImageRequest request;
        request.fileClass = sample.fileClass;
        request.options.maxSide = 1;
        EXPECT_EQ(ReadImage(sample.file.data(), sample.file.size(), request, frames), IMAGE_TOO_LARGE);
        request.options.maxSide = 100;
        request.options.maxBytes = 11;
        EXPECT_EQ(ReadImage(sample.file.data(), sample.file.size(), request, frames), IMAGE_TOO_LARGE);
    }
    // 65,535 x 65,535 pixels in 33 bytes, with a check sum that fits no more: the size is what is complained of.
    std::memcpy(&png[16], "\0\0\xFF\xFF\0\0\xFF\xFF", 8);
    IMAGE_RESULT result;
    ReadAll(png, 0, result);
    EXPECT_EQ(result, IMAGE_TOO_LARGE);
}

TEST(Images, FramesKeepTimesLoopsAndTransparency)
{
    const auto red = Filled(BITMAP_RGBA, 4, 2, {255, 0, 0, 255}), blue = Filled(BITMAP_RGB, 4, 2, {0, 0, 255});
    auto hole = Filled(BITMAP_RGBA, 4, 2, {0, 255, 0, 255});
    std::memset(hole->GetLine(1), 0, 8);    // what stood here before must not show through
    for (const unsigned int fileClass : {GIF, WEBP, TIFF}) {
        SCOPED_TRACE(fileClass);
        CImageBytes out;
        const CImageSource source{{{red.get(), 100}, {hole.get(), 40}, {blue.get(), 250}}, 3};
        ASSERT_EQ(WriteImage(*FindImageCodec(fileClass), source, {}, out), IMAGE_OK);
        CFrameBitmap frames;
        ASSERT_EQ(ReadImage(out.data(), out.size(), {}, frames), IMAGE_OK);
        ASSERT_EQ(frames.GetFrameCount(), 3);
        for (int i = 0; i < 3; i++) {
            const std::unique_ptr<Bitmap> read(frames.GetFrame(i)->GetStandardLayer()->ConvertToType(BITMAP_RGBA));
            const std::unique_ptr<Bitmap> expected(source.frames[static_cast<std::size_t>(i)].picture->ConvertToType(BITMAP_RGBA));
            EXPECT_EQ(PixelsOf(*read), PixelsOf(*expected)) << i;
            EXPECT_EQ(frames.GetDuration(i), fileClass == TIFF ? 0 : source.frames[static_cast<std::size_t>(i)].duration);
        }
        EXPECT_EQ(frames.GetLoopCount(), fileClass == TIFF ? 0 : 3);

        // One frame alone, which may need those before.
        CImageRequest second;
        second.first = 1;
        second.count = 1;
        ASSERT_EQ(ReadImage(out.data(), out.size(), second, frames), IMAGE_OK);
        ASSERT_EQ(frames.GetFrameCount(), 1);
        EXPECT_EQ(PixelsOf(*frames.GetFrame(0)->GetStandardLayer()), PixelsOf(*hole));
        second.first = 3;
        EXPECT_EQ(ReadImage(out.data(), out.size(), second, frames), IMAGE_NO_FRAME);
    }
}

TEST(Images, FilesAreKnownByTheirContent)
{
    const TempFolder folder;
    const auto picture = Pattern(BITMAP_RGBA, 7, 3, 6);
    const auto save = [&](const char* name) { return C2DIo(folder.Wide(name), FILEIO_SILENT, nullptr).Save(picture.get()); };
    for (const char* name : {"a.png", "a.tga", "a.TIF"})
        ASSERT_EQ(save(name), IORESULT_OK) << name;
    folder.Write("png.tga", folder.Read("a.png"));
    folder.Write("tiff.jpg", folder.Read("a.TIF"));
    folder.Write("noname", folder.Read("a.png"));
    folder.Write("text.png", "no picture");
    const struct {
        const char* name;
        int result;
    } rows[] = {{"png.tga", IORESULT_OK}, {"tiff.jpg", IORESULT_OK},        {"noname", IORESULT_OK},
                {"a.tga", IORESULT_OK},   {"text.png", IORESULT_NO_PARSER}, {"missing.png", IORESULT_NO_FILE}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        C2DIo io(folder.Wide(row.name), FILEIO_READ | FILEIO_SILENT, nullptr);
        ASSERT_EQ(io.PrepareReading(), row.result);
        const std::unique_ptr<CLayerBitmap> read(io.Read(0));
        ASSERT_EQ(read != nullptr, row.result == IORESULT_OK);
        if (read) {
            EXPECT_EQ(PixelsOf(*read->GetStandardLayer()), PixelsOf(*picture));
        } else {
            EXPECT_GE(io.GetResultText().Find(Utf8ToWide(row.name)), 0);    // the message names the file
        }
    }
    EXPECT_EQ(save("a.psd"), IORESULT_FAILED);    // only read
    EXPECT_EQ(save("a.doc"), IORESULT_FAILED);
    EXPECT_EQ(save("none/a.png"), IORESULT_FAILED);
}

TEST(Images, SeveralFramesBecomeOneFileOrNumberedFiles)
{
    const TempFolder folder;
    CFrameBitmap frames;
    for (unsigned char i = 0; i < 3; i++)
        frames.AddFrame(new CLayerBitmap(Filled(BITMAP_RGB, 2, 2, {i, 0, 0}).release()), 100);
    C2DIo many(folder.Wide("a.gif"), FILEIO_SILENT, nullptr), single(folder.Wide("a.png"), FILEIO_SILENT, nullptr);
    ASSERT_EQ(many.PrepareSaving(&frames, 3), IORESULT_OK);
    EXPECT_EQ(many.Save(&frames, 0), IORESULT_OK);
    EXPECT_EQ(single.PrepareSaving(&frames, 4), IORESULT_FAILED);
    EXPECT_FALSE(single.GetResultText().IsEmpty());
    ASSERT_EQ(single.PrepareSaving(&frames, 3), IORESULT_OK);
    EXPECT_EQ(single.Save(&frames, 0), IORESULT_OK);
    EXPECT_EQ(folder.CountFiles(), 4u);
    C2DIo last(folder.Wide("a0002.png"), FILEIO_READ, nullptr);
    const std::unique_ptr<CLayerBitmap> read(last.Read(0));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetStandardLayer()->GetLine(0)[0], 2);
    C2DIo all(folder.Wide("a.gif"), FILEIO_READ, nullptr);
    const std::unique_ptr<CFrameBitmap> back(all.ReadFrames());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->GetFrameCount(), 3);
}
