// GIF, by giflib. Frames are whole pictures: each is laid over what the frames before leave.

#include <algorithm>
#include <cstring>

#include <gif_lib.h>

#include "images/ImageCodec.h"
#include "images/Palette.h"
#include "tools/FourCC.h"

namespace {

constexpr int MOST_SIDE = 0xFFFF;
constexpr int TIME_UNIT = 10;    // milliseconds

enum Disposal { DISPOSAL_NONE = 0, DISPOSAL_KEEP = 1, DISPOSAL_CLEAR = 2, DISPOSAL_RESTORE = 3 };

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    return size >= 6 && (std::memcmp(data, "GIF87a", 6) == 0 || std::memcmp(data, "GIF89a", 6) == 0) ? PROBE_SURE : PROBE_NO;
}

struct Stream {
    const unsigned char* data;
    std::size_t left;
    bool ended = false;
};

int ReadBytes(GifFileType* gif, GifByteType* to, int count)
{
    Stream& stream = *static_cast<Stream*>(gif->UserData);
    const std::size_t take = std::min(static_cast<std::size_t>(count), stream.left);
    if (take < static_cast<std::size_t>(count))
        stream.ended = true;
    std::memcpy(to, stream.data, take);
    stream.data += take;
    stream.left -= take;
    return static_cast<int>(take);
}

struct ReadCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

/// Walks over the blocks of a file and keeps the canvas.
class Reader {
public:
    Reader(GifFileType* gif, CImageTarget& target) : m_gif(gif), m_target(target) {}
    /// False where the file is not as it should be; a failure may be kept besides.
    bool Read();

private:
    bool ReadExtension();
    bool ReadFrame();
    bool MakeCanvas();
    bool DrawImage();
    void DrawRow(int y, const unsigned char* indices, const ColorMapObject& map);
    void Dispose();
    bool Emit();

    GifFileType* m_gif;
    CImageTarget& m_target;
    std::unique_ptr<Bitmap> m_canvas, m_before;    // the latter for DISPOSAL_RESTORE
    // Of the next frame
    int m_disposal = DISPOSAL_NONE, m_transparent = -1, m_duration = 0;
    // Of the frame before
    int m_lastDisposal = DISPOSAL_NONE;
    GifImageDesc m_last{};
};

bool Reader::Read()
{
    m_target.SetLoopCount(1);    // unless the file says more
    while (!m_target.IsDone()) {
        GifRecordType type;
        if (DGifGetRecordType(m_gif, &type) != GIF_OK)
            return false;
        if (type == TERMINATE_RECORD_TYPE)
            return true;
        if (type == EXTENSION_RECORD_TYPE ? !ReadExtension() : type != IMAGE_DESC_RECORD_TYPE || !ReadFrame())
            return false;
    }
    return true;
}

bool Reader::ReadExtension()
{
    int code;
    GifByteType* block;    // its length, then its bytes
    if (DGifGetExtension(m_gif, &code, &block) != GIF_OK)
        return false;
    bool isLoop = false;
    for (int number = 0; block; number++) {
        if (code == GRAPHICS_EXT_FUNC_CODE && number == 0 && block[0] >= 4) {
            m_disposal = block[1] >> 2 & 7;
            m_transparent = block[1] & 1 ? block[4] : -1;
            m_duration = (block[2] | block[3] << 8) * TIME_UNIT;
        } else if (code == APPLICATION_EXT_FUNC_CODE && number == 0) {
            isLoop = block[0] == 11 && (std::memcmp(block + 1, "NETSCAPE2.0", 11) == 0 || std::memcmp(block + 1, "ANIMEXTS1.0", 11) == 0);
        } else if (isLoop && block[0] >= 3 && (block[1] & 7) == 1) {
            const int repeats = block[2] | block[3] << 8;
            m_target.SetLoopCount(repeats == 0 ? 0 : repeats + 1);
        }
        if (DGifGetExtensionNext(m_gif, &block) != GIF_OK)
            return false;
    }
    return true;
}

bool Reader::ReadFrame()
{
    if (DGifGetImageDesc(m_gif) != GIF_OK || !MakeCanvas())
        return false;
    const GifImageDesc& image = m_gif->Image;
    if (!m_target.Fits(image.Width, image.Height, 1))
        return false;
    Dispose();
    if (m_disposal == DISPOSAL_RESTORE)
        m_before.reset(m_canvas->ConvertToType(BITMAP_RGBA));
    if (!DrawImage() || !Emit())
        return false;
    m_last = image;
    m_lastDisposal = m_disposal;
    m_disposal = DISPOSAL_NONE;
    m_transparent = -1;
    m_duration = 0;
    return true;
}

bool Reader::MakeCanvas()
{
    if (m_canvas)
        return true;
    // Some files give no size, or too small a one for their first image.
    const GifImageDesc& image = m_gif->Image;
    const int width = std::max(m_gif->SWidth, image.Left + image.Width), height = std::max(m_gif->SHeight, image.Top + image.Height);
    m_canvas = m_target.NewPicture(BITMAP_RGBA, width, height, 8);
    return m_canvas != nullptr;
}

bool Reader::DrawImage()
{
    const GifImageDesc& image = m_gif->Image;
    const ColorMapObject* const map = image.ColorMap ? image.ColorMap : m_gif->SColorMap;
    if (!map)
        return false;
    std::vector<unsigned char> row(static_cast<std::size_t>(image.Width));
    constexpr int FIRST[] = {0, 4, 2, 1}, STEP[] = {8, 8, 4, 2};    // the passes of an interlaced image
    for (int pass = 0; pass < (image.Interlace ? 4 : 1); pass++)
        for (int y = image.Interlace ? FIRST[pass] : 0; y < image.Height; y += image.Interlace ? STEP[pass] : 1) {
            if (DGifGetLine(m_gif, row.data(), image.Width) != GIF_OK)
                return false;
            DrawRow(y, row.data(), *map);
        }
    return true;
}

void Reader::DrawRow(int y, const unsigned char* indices, const ColorMapObject& map)
{
    const GifImageDesc& image = m_gif->Image;
    unsigned char* pixel = m_canvas->GetLine(image.Top + y);
    if (!pixel)
        return;
    pixel += static_cast<std::ptrdiff_t>(image.Left) * 4;
    const int width = std::min(image.Width, m_canvas->GetWidth() - image.Left);
    for (int x = 0; x < width; x++, pixel += 4) {
        const int index = indices[x];
        if (index == m_transparent || index >= map.ColorCount)
            continue;
        const GifColorType& color = map.Colors[index];
        pixel[0] = color.Red;
        pixel[1] = color.Green;
        pixel[2] = color.Blue;
        pixel[3] = 255;
    }
}

// Does to the canvas what the frame before asked for.
void Reader::Dispose()
{
    if (m_lastDisposal == DISPOSAL_RESTORE && m_before)
        m_canvas = std::move(m_before);
    else if (m_lastDisposal == DISPOSAL_CLEAR) {
        const int width = std::min(m_last.Width, m_canvas->GetWidth() - m_last.Left);
        for (int y = 0; y < m_last.Height && width > 0; y++)
            if (unsigned char* const line = m_canvas->GetLine(m_last.Top + y))
                std::memset(line + static_cast<std::ptrdiff_t>(m_last.Left) * 4, 0, static_cast<std::size_t>(width) * 4);
    }
}

bool Reader::Emit()
{
    if (!m_target.WantsFrame()) {
        m_target.SkipFrame();
        return true;
    }
    const BitmapType type = m_canvas->HasAlpha() ? BITMAP_RGBA : BITMAP_RGB;
    if (!m_target.Fits(m_canvas->GetWidth(), m_canvas->GetHeight(), 4, 8))
        return false;
    return m_target.AddFrame(std::unique_ptr<Bitmap>(m_canvas->ConvertToType(type)), m_duration);
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    Stream stream{data, size};
    const std::unique_ptr<GifFileType, ReadCloser> gif(DGifOpen(&stream, &ReadBytes, nullptr));
    if (!gif || !Reader(gif.get(), target).Read())
        return target.Fail(stream.ended ? IMAGE_TRUNCATED : IMAGE_DAMAGED);
    return target.GetResult();
}

int Append(GifFileType* gif, const GifByteType* bytes, int count)
{
    return AppendBytes(*static_cast<CImageBytes*>(gif->UserData), bytes, static_cast<std::size_t>(count)) ? count : 0;
}

struct WriteCloser {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};
struct MapDeleter {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};

bool WriteLoop(GifFileType* gif, int loopCount)
{
    // The file says how often it is run again.
    const int repeats = std::min(loopCount == 0 ? 0 : loopCount - 1, 0xFFFF);
    const unsigned char block[] = {1, static_cast<unsigned char>(repeats), static_cast<unsigned char>(repeats >> 8)};
    return EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK && EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(gif, sizeof block, block) == GIF_OK && EGifPutExtensionTrailer(gif) == GIF_OK;
}

bool WriteFrame(GifFileType* gif, const CImageSource::Frame& frame, bool clear)
{
    CPaletteImage image(*frame.picture);
    const int count = 1 << std::max(1, GifBitSize(static_cast<int>(image.GetColors().size())));
    const std::unique_ptr<ColorMapObject, MapDeleter> map(GifMakeMapObject(count, nullptr));
    if (!map)
        return false;
    for (std::size_t i = 0; i < image.GetColors().size(); i++) {
        const CRGBColor& color = image.GetColors()[i];
        map->Colors[i] = {color.red, color.green, color.blue};
    }
    const int transparent = image.GetTransparent(), delay = std::min(frame.duration / TIME_UNIT, 0xFFFF);
    const unsigned char control[] = {static_cast<unsigned char>((clear ? DISPOSAL_CLEAR : DISPOSAL_KEEP) << 2 | (transparent >= 0)),
                                     static_cast<unsigned char>(delay), static_cast<unsigned char>(delay >> 8),
                                     static_cast<unsigned char>(std::max(transparent, 0))};
    const int width = frame.picture->GetWidth(), height = frame.picture->GetHeight();
    if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, sizeof control, control) != GIF_OK ||
        EGifPutImageDesc(gif, 0, 0, width, height, false, map.get()) != GIF_OK)
        return false;
    for (int y = 0; y < height; y++)
        if (EGifPutLine(gif, image.GetLine(y), width) != GIF_OK)
            return false;
    return true;
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions&, CImageBytes& out)
{
    const Bitmap& first = *source.frames.front().picture;
    int width = 0, height = 0;
    bool clear = false;    // a frame must not show through the next
    for (const CImageSource::Frame& frame : source.frames) {
        width = std::max(width, frame.picture->GetWidth());
        height = std::max(height, frame.picture->GetHeight());
        clear = clear || frame.picture->HasAlpha() || frame.picture->GetWidth() != first.GetWidth() ||
                frame.picture->GetHeight() != first.GetHeight();
    }
    if (std::max(width, height) > MOST_SIDE)
        return IMAGE_SIDES;
    std::unique_ptr<GifFileType, WriteCloser> gif(EGifOpen(&out, &Append, nullptr));
    if (!gif)
        return IMAGE_NO_MEMORY;
    EGifSetGifVersion(gif.get(), true);
    bool good = EGifPutScreenDesc(gif.get(), width, height, 8, 0, nullptr) == GIF_OK;
    if (source.frames.size() > 1 && source.loopCount != 1)
        good = good && WriteLoop(gif.get(), source.loopCount);
    for (const CImageSource::Frame& frame : source.frames)
        good = good && WriteFrame(gif.get(), frame, clear && source.frames.size() > 1);
    return EGifCloseFile(gif.release(), nullptr) == GIF_OK && good ? IMAGE_OK : IMAGE_NO_MEMORY;
}

}

const CImageCodec g_gifCodec = {FourCC("GIF "), L"GIF", L".gif", true, &Probe, &Read, &Write};
