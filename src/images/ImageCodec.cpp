#include "images/ImageCodec.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

unsigned int TextOf(IMAGE_RESULT result)
{
    constexpr unsigned int FIRST_TEXT = 7340;    // in the string table, in the order of the results
    return FIRST_TEXT + static_cast<unsigned int>(result);
}

}

const std::vector<const CImageCodec*>& GetImageCodecs()
{
    // Formats without a sure mark come last.
    static const std::vector<const CImageCodec*>& codecs = *new std::vector<const CImageCodec*>{
        &g_pngCodec, &g_jpegCodec, &g_tiffCodec, &g_webpCodec, &g_gifCodec, &g_bmpCodec,
        &g_psdCodec, &g_hdrCodec,  &g_picCodec,  &g_pnmCodec,  &g_tgaCodec,
    };
    return codecs;
}

const CImageCodec* FindImageCodec(unsigned int fileClass)
{
    for (const CImageCodec* const codec : GetImageCodecs())
        if (codec->fileClass == fileClass)
            return codec;
    return nullptr;
}

const CImageCodec* ProbeImage(const unsigned char* data, std::size_t size, unsigned int fileClass)
{
    for (const CImageCodec* const codec : GetImageCodecs())
        if (codec->probe(data, size) == PROBE_SURE)
            return codec;
    const CImageCodec* const named = FindImageCodec(fileClass);
    return named && named->probe(data, size) == PROBE_POSSIBLE ? named : nullptr;
}

IMAGE_RESULT ReadImage(const unsigned char* data, std::size_t size, const CImageRequest& request, CFrameBitmap& frames)
{
    frames.RemoveAll();
    const CImageCodec* const codec = ProbeImage(data, size, request.fileClass);
    if (!codec)
        return IMAGE_UNKNOWN;
    CImageTarget target(request, frames);
    IMAGE_RESULT result;
    try {
        result = codec->read(data, size, target);
    } catch (const std::bad_alloc&) {
        result = IMAGE_NO_MEMORY;
    }
    if (result == IMAGE_OK)
        result = target.GetResult();
    if (result == IMAGE_OK && frames.GetFrameCount() == 0)
        result = IMAGE_NO_FRAME;
    if (result != IMAGE_OK)
        frames.RemoveAll();
    return result;
}

IMAGE_RESULT WriteImage(const CImageCodec& codec, const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    if (!codec.write)
        return IMAGE_UNSUPPORTED;
    if (source.frames.empty())
        return IMAGE_NO_PICTURE;
    try {
        return codec.write(source, options, out);
    } catch (const std::bad_alloc&) {
        return IMAGE_NO_MEMORY;
    }
}

CXTString<wchar_t> GetImageResultText(IMAGE_RESULT result)
{
    CXTString<wchar_t> text;
    if (result != IMAGE_OK)
        text.LoadStringW(TextOf(result));
    return text;
}

IMAGE_RESULT CImageTarget::Fail(IMAGE_RESULT result)
{
    if (m_result == IMAGE_OK)
        m_result = result;
    return m_result;
}

bool CImageTarget::Fits(long long width, long long height, int bytesPerPixel, int extra)
{
    const CImageOptions& limits = m_request.options;
    const long long side = std::min<long long>(limits.maxSide, BITMAP_MAX_SIDE);
    if (width < 1 || height < 1)
        Fail(IMAGE_DAMAGED);
    else if (width > side || height > side || width * height > BITMAP_MAX_PIXELS ||
             width * height * (bytesPerPixel + extra) > limits.maxBytes - m_bytes)
        Fail(IMAGE_TOO_LARGE);
    return m_result == IMAGE_OK;
}

std::unique_ptr<Bitmap> CImageTarget::NewPicture(BitmapType type, long long width, long long height, int extra)
{
    const int bytes = type == BITMAP_RGBA ? 4 : type == BITMAP_RGB ? 3 : 1;
    if (!Fits(width, height, bytes, extra))
        return nullptr;
    const int w = static_cast<int>(width), h = static_cast<int>(height);
    if (type == BITMAP_RGBA)
        return std::unique_ptr<Bitmap>(rgbaBitmap::Create(w, h));
    if (type == BITMAP_RGB)
        return std::unique_ptr<Bitmap>(rgbBitmap::Create(w, h));
    return std::unique_ptr<Bitmap>(greyBitmap::Create(w, h));
}

bool CImageTarget::AddFrame(std::unique_ptr<Bitmap> picture, int duration)
{
    if (m_frames.GetFrameCount() >= m_request.options.maxFrames) {
        Fail(IMAGE_TOO_LARGE);
        return false;
    }
    m_next++;
    m_bytes += static_cast<long long>(picture->GetWidth()) * picture->GetHeight() * picture->GetBytesPerPixel();
    m_frames.AddFrame(new CLayerBitmap(picture.release()), duration);
    return true;
}

void CImageTarget::AddMask(std::unique_ptr<Bitmap> mask)
{
    if (m_frames.GetFrameCount() == 0)
        return;
    m_bytes += static_cast<long long>(mask->GetWidth()) * mask->GetHeight();
    m_frames.GetFrame(m_frames.GetFrameCount() - 1)->AddLayer(mask.release(), LAYER_MASK);
}

std::unique_ptr<Bitmap> MakeUpright(std::unique_ptr<Bitmap> picture, int orientation)
{
    if (orientation < 2 || orientation > 8)
        return picture;
    // Where the upright picture's pixel (x, y) lies in the kept one: along its row or its column, from the one end or the other.
    const bool turned = orientation >= 5;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    const int oldWidth = picture->GetWidth(), oldHeight = picture->GetHeight(), size = picture->GetBytesPerPixel();
    const int width = turned ? oldHeight : oldWidth, height = turned ? oldWidth : oldHeight;
    std::unique_ptr<Bitmap> upright(picture->GetType() == BITMAP_RGBA  ? static_cast<Bitmap*>(rgbaBitmap::Create(width, height))
                                    : picture->GetType() == BITMAP_RGB ? static_cast<Bitmap*>(rgbBitmap::Create(width, height))
                                                                       : static_cast<Bitmap*>(greyBitmap::Create(width, height)));
    for (int y = 0; y < height; y++) {
        unsigned char* target = upright->GetLine(y);
        for (int x = 0; x < width; x++, target += size) {
            const int alongX = turned ? y : x, alongY = turned ? x : y;
            const int oldX = fromRight ? oldWidth - 1 - alongX : alongX, oldY = fromBottom ? oldHeight - 1 - alongY : alongY;
            std::memcpy(target, picture->GetLine(oldY) + static_cast<std::ptrdiff_t>(oldX) * size, static_cast<std::size_t>(size));
        }
    }
    return upright;
}

bool IsInvisible(const Bitmap& picture)
{
    if (picture.GetType() != BITMAP_RGBA)
        return false;
    for (int y = 0; y < picture.GetHeight(); y++) {
        const unsigned char* alpha = picture.GetLine(y) + 3;
        for (int x = 0; x < picture.GetWidth(); x++, alpha += 4)
            if (*alpha)
                return false;
    }
    return true;
}

bool AppendBytes(CImageBytes& out, const unsigned char* bytes, std::size_t count) noexcept
{
    try {
        out.insert(out.end(), bytes, bytes + count);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
