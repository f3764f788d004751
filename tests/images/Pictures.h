#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

using Bytes = std::vector<unsigned char>;

inline std::unique_ptr<Bitmap> NewPicture(BitmapType type, int width, int height)
{
    return std::unique_ptr<Bitmap>(type == BITMAP_RGBA  ? static_cast<Bitmap*>(rgbaBitmap::Create(width, height))
                                   : type == BITMAP_RGB ? static_cast<Bitmap*>(rgbBitmap::Create(width, height))
                                                        : static_cast<Bitmap*>(greyBitmap::Create(width, height)));
}

/// Bytes of all pixels, row by row.
inline Bytes PixelsOf(const Bitmap& picture)
{
    Bytes bytes;
    for (int y = 0; y < picture.GetHeight(); y++) {
        const unsigned char* const line = picture.GetLine(y);
        bytes.insert(bytes.end(), line, line + static_cast<std::ptrdiff_t>(picture.GetWidth()) * picture.GetBytesPerPixel());
    }
    return bytes;
}

inline std::unique_ptr<Bitmap> PictureOf(BitmapType type, int width, int height, const Bytes& pixels)
{
    auto picture = NewPicture(type, width, height);
    for (std::size_t i = 0; i < pixels.size(); i++) {
        const std::size_t row = static_cast<std::size_t>(width) * picture->GetBytesPerPixel();
        picture->GetLine(static_cast<int>(i / row))[i % row] = pixels[i];
    }
    return picture;
}

/// Neighbours differ in every channel, no two corners are alike; `colors` different ones, smooth when there are many.
inline std::unique_ptr<Bitmap> Pattern(BitmapType type, int width, int height, int colors)
{
    auto picture = NewPicture(type, width, height);
    const int channels = picture->GetBytesPerPixel();
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            for (int c = 0; c < channels; c++) {
                const int value = (x * 3 + y * 5 + 1) % colors;
                picture->GetLine(y)[x * channels + c] = static_cast<unsigned char>(value * (c + 2) * 61 / 8 + c * 40);
            }
    return picture;
}

/// What the file's bytes hold: pixels of all frames, each behind its type and size; empty for a failure, which `result` tells.
inline std::vector<Bytes> ReadAll(const Bytes& file, unsigned int fileClass, IMAGE_RESULT& result, CFrameBitmap* out = nullptr)
{
    CFrameBitmap own;
    CFrameBitmap& frames = out ? *out : own;
    CImageRequest request;
    request.fileClass = fileClass;
    result = ReadImage(file.data(), file.size(), request, frames);
    std::vector<Bytes> pictures;
    for (int i = 0; i < frames.GetFrameCount(); i++) {
        const Bitmap& picture = *frames.GetFrame(i)->GetStandardLayer();
        Bytes bytes = PixelsOf(picture);
        for (const int value : {static_cast<int>(picture.GetType()), picture.GetWidth(), picture.GetHeight()})
            bytes.push_back(static_cast<unsigned char>(value));
        pictures.push_back(std::move(bytes));
    }
    return pictures;
}

/// The one picture of a file; null for a failure.
inline std::unique_ptr<Bitmap> ReadOne(const Bytes& file, unsigned int fileClass = 0, IMAGE_RESULT* result = nullptr)
{
    CFrameBitmap frames;
    CImageRequest request;
    request.fileClass = fileClass;
    const IMAGE_RESULT got = ReadImage(file.data(), file.size(), request, frames);
    if (result)
        *result = got;
    return std::unique_ptr<Bitmap>(got == IMAGE_OK ? frames.GetFrame(0)->DetachStandardLayer() : nullptr);
}

inline Bytes WriteOne(unsigned int fileClass, const Bitmap& picture, const CImageOptions& options = {})
{
    CImageBytes out;
    const CImageSource source{{{&picture, 0}}, 0};
    const bool good = WriteImage(*FindImageCodec(fileClass), source, options, out) == IMAGE_OK;
    return good ? Bytes(out.begin(), out.end()) : Bytes();
}

inline void Add(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }
/// `count` bytes of a value, the lowest first; 0 from the fifth on.
inline void AddNumber(Bytes& to, unsigned int value, int count)
{
    for (int i = 0; i < count; i++)
        to.push_back(static_cast<unsigned char>(i < 4 ? value >> (8 * i) : 0));
}
inline Bytes BytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }
