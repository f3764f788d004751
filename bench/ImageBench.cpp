// Image files of 2048 x 2048 pixels in memory, a smooth picture with some grain. Beside them the work of libpng at its usual settings.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include <png.h>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

constexpr int SIDE = 2048;

const Bitmap& Picture()
{
    static const std::unique_ptr<Bitmap> picture = [] {
        std::unique_ptr<Bitmap> made(rgbaBitmap::Create(SIDE, SIDE));
        unsigned int grain = 1;
        for (int y = 0; y < SIDE; y++) {
            unsigned char* pixel = made->GetLine(y);
            for (int x = 0; x < SIDE; x++, pixel += 4) {
                grain = grain * 1664525 + 1013904223;
                for (int c = 0; c < 3; c++)
                    pixel[c] = static_cast<unsigned char>(120 + 100 * std::sin(x * 0.004 * (c + 1)) * std::cos(y * 0.003) +
                                                          (grain >> (28 - c)) % 4);
                pixel[3] = static_cast<unsigned char>(x / 8);
            }
        }
        return made;
    }();
    return *picture;
}

const CImageBytes& FileOf(unsigned int fileClass)
{
    static CImageBytes file;
    static unsigned int known = 0;
    if (known != fileClass) {
        file.clear();
        WriteImage(*FindImageCodec(fileClass), CImageSource{{{&Picture(), 0}}, 0}, {}, file);
        known = fileClass;
    }
    return file;
}

void WritePicture(benchmark::State& state, unsigned int fileClass)
{
    std::size_t size = 0;
    for (auto _ : state) {
        CImageBytes out;
        if (WriteImage(*FindImageCodec(fileClass), CImageSource{{{&Picture(), 0}}, 0}, {}, out) != IMAGE_OK)
            state.SkipWithError("not written");
        size = out.size();
    }
    state.counters["file MB"] = static_cast<double>(size) / 1e6;
}

void ReadPicture(benchmark::State& state, unsigned int fileClass)
{
    const CImageBytes& file = FileOf(fileClass);
    CImageRequest request;
    request.fileClass = fileClass;
    for (auto _ : state) {
        CFrameBitmap frames;
        if (ReadImage(file.data(), file.size(), request, frames) != IMAGE_OK || frames.GetFrame(0)->GetWidth() != SIDE)
            state.SkipWithError("not read");
    }
}

void PngUsual(benchmark::State& state)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = SIDE;
    image.format = PNG_FORMAT_RGBA;
    CImageBytes out(static_cast<std::size_t>(SIDE) * SIDE * 5);
    png_alloc_size_t size = 0;
    for (auto _ : state) {
        size = out.size();
        png_image_write_to_memory(&image, out.data(), &size, 0, Picture().GetLine(0), 0, nullptr);
    }
    state.counters["file MB"] = static_cast<double>(size) / 1e6;
}

#define BENCHMARK_FORMAT(name, code)                                                    \
    BENCHMARK_CAPTURE(WritePicture, name, FourCC(code))->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(ReadPicture, name, FourCC(code))->Unit(benchmark::kMillisecond)

BENCHMARK_FORMAT(png, "PNG ");
BENCHMARK(PngUsual)->Unit(benchmark::kMillisecond);
BENCHMARK_FORMAT(jpeg, "JPEG");
BENCHMARK_FORMAT(tiff, "TIFF");
BENCHMARK_FORMAT(webp, "WEBP");
BENCHMARK_FORMAT(gif, "GIF ");
BENCHMARK_FORMAT(bmp, "BMP ");
BENCHMARK_FORMAT(tga, "TGA ");

}
