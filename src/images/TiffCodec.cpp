// TIFF, by libtiff. Pages are frames; a page that is a mask goes to the page before it, reduced copies of pages are left out.
//
// Red, green, blue and grey of 8 and 16 bits, and grey of 1 bit, are taken as they stand, strip by strip or tile by tile. All else (palettes, inks, other
// colour spaces, other depths) comes through libtiff's own conversion.

#include <algorithm>
#include <cstring>

#include <tiffio.h>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

constexpr int MOST_SAMPLES = 32;

int Silent(TIFF*, void*, const char*, const char*, va_list) { return 1; }

// A file in memory, as libtiff's callbacks see it.
struct Stream {
    const unsigned char* data = nullptr;    // reading
    std::size_t size = 0;
    CImageBytes* out = nullptr;    // writing
    std::uint64_t position = 0;
    bool ended = false;    // something was wanted from behind the end

    std::uint64_t GetSize() const { return out ? out->size() : size; }
};

Stream& StreamOf(thandle_t handle) { return *static_cast<Stream*>(handle); }

tmsize_t ReadBytes(thandle_t handle, void* to, tmsize_t count)
{
    Stream& stream = StreamOf(handle);
    const std::uint64_t left = stream.position < stream.GetSize() ? stream.GetSize() - stream.position : 0;
    if (static_cast<std::uint64_t>(count) > left)
        stream.ended = true;
    const std::size_t take = static_cast<std::size_t>(std::min<std::uint64_t>(left, static_cast<std::uint64_t>(count)));
    if (take)
        std::memcpy(to, (stream.out ? stream.out->data() : stream.data) + stream.position, take);
    stream.position += take;
    return static_cast<tmsize_t>(take);
}

tmsize_t WriteBytes(thandle_t handle, void* from, tmsize_t count) noexcept
{
    Stream& stream = StreamOf(handle);
    if (!stream.out)
        return 0;
    try {
        const std::size_t end = static_cast<std::size_t>(stream.position) + static_cast<std::size_t>(count);
        if (end > stream.out->capacity())
            stream.out->reserve(std::max(end, stream.out->capacity() * 2));
        if (end > stream.out->size())
            stream.out->resize(end);
        std::memcpy(stream.out->data() + stream.position, from, static_cast<std::size_t>(count));
        stream.position = end;
        return count;
    } catch (...) {
        return 0;
    }
}

toff_t Seek(thandle_t handle, toff_t offset, int from)
{
    Stream& stream = StreamOf(handle);
    const std::uint64_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? stream.position : stream.GetSize();
    stream.position = base + offset;
    return stream.position;
}

int Close(thandle_t) { return 0; }
toff_t Size(thandle_t handle) { return StreamOf(handle).GetSize(); }

struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using File = std::unique_ptr<TIFF, Closer>;

File Open(Stream& stream, const char* mode, long long mostMemory)
{
    const std::unique_ptr<TIFFOpenOptions, Closer> options(TIFFOpenOptionsAlloc());
    if (!options)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &Silent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &Silent, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(mostMemory));
    return File(TIFFClientOpenExt("", mode, &stream, &ReadBytes, &WriteBytes, &Seek, &Close, &Size, nullptr, nullptr, options.get()));
}

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    const auto starts = [&](const char(&mark)[5]) { return size >= 8 && std::memcmp(data, mark, 4) == 0; };
    return starts("II*\0") || starts("MM\0*") || starts("II+\0") || starts("MM\0+") ? PROBE_SURE : PROBE_NO;
}

// What a page says of itself.
struct Page {
    std::uint32_t width = 0, height = 0, kind = 0, blockWidth = 0, blockHeight = 0;
    std::uint16_t bits = 1, samples = 1, format = SAMPLEFORMAT_UINT, photometric = 0, planes = PLANARCONFIG_CONTIG, orientation = 1;
    std::uint16_t compression = COMPRESSION_NONE;
    int alpha = -1;    // number of the sample; -1 for none
    bool premultiplied = false, tiled = false, isGrey = false;

    explicit Page(TIFF* tiff);
    bool IsPlain() const;
};

Page::Page(TIFF* tiff)
{
    std::uint16_t extras = 0;
    const std::uint16_t* kinds = nullptr;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planes);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
    if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric))
        photometric = samples - extras >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    tiled = TIFFIsTiled(tiff);
    if (tiled) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
        blockWidth = width;
        blockHeight = std::min(blockHeight, height);
    }
    isGrey = photometric != PHOTOMETRIC_RGB;
    const int colors = isGrey ? 1 : 3;
    if (samples > colors) {
        alpha = colors;
        premultiplied = extras > 0 && kinds && kinds[0] == EXTRASAMPLE_ASSOCALPHA;
    }
}

bool Page::IsPlain() const
{
    const bool isGreyscale =
        photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MASK;
    return (photometric == PHOTOMETRIC_RGB || isGreyscale) && (bits == 8 || bits == 16 || (bits == 1 && samples == 1 && isGreyscale)) &&
           TIFFIsCODECConfigured(compression) && (format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID) &&
           samples >= (isGrey ? 1 : 3) && samples <= MOST_SAMPLES && blockWidth > 0 && blockHeight > 0;
}

void Unpremultiply(Bitmap& picture)
{
    for (int y = 0; y < picture.GetHeight(); y++) {
        unsigned char* pixel = picture.GetLine(y);
        for (int x = 0; x < picture.GetWidth(); x++, pixel += 4)
            if (const int alpha = pixel[3]; alpha != 0 && alpha != 255)
                for (int c = 0; c < 3; c++)
                    pixel[c] = static_cast<unsigned char>(std::min((pixel[c] * 255 + alpha / 2) / alpha, 255));
    }
}

// One strip or tile of a page: its place, and its bytes.
struct Block {
    std::uint32_t x, y, columns, rows;
    int first, samples;    // samples in it
    const unsigned char* bytes;
};

std::size_t RowSize(const Page& page, int samples) { return (static_cast<std::size_t>(page.blockWidth) * samples * page.bits + 7) / 8; }

// One sample of a row to one channel, as 8 bits.
void CopySample(const Page& page, const unsigned char* row, int sample, int samples, std::uint32_t width, unsigned char* to, int step)
{
    if (page.bits == 1) {
        for (std::uint32_t x = 0; x < width; x++, to += step)
            *to = row[x / 8] >> (7 - x % 8) & 1 ? 255 : 0;
    } else if (page.bits == 8) {
        row += sample;
        for (std::uint32_t x = 0; x < width; x++, row += samples, to += step)
            *to = *row;
    } else {
        row += sample * 2;
        for (std::uint32_t x = 0; x < width; x++, row += samples * 2, to += step) {
            std::uint16_t value;
            std::memcpy(&value, row, sizeof value);
            *to = static_cast<unsigned char>((value * 255u + 32767u) / 65535u);
        }
    }
}

// A grey goes to all three colours.
void SpreadGrey(unsigned char* to, std::uint32_t width, int channels, bool inverted)
{
    for (std::uint32_t x = 0; x < width; x++, to += channels) {
        if (inverted)
            *to = static_cast<unsigned char>(255 - *to);
        if (channels > 1)
            to[1] = to[2] = to[0];
    }
}

void CopyBlock(const Page& page, const Block& block, Bitmap& picture)
{
    const int channels = picture.GetBytesPerPixel();
    const std::size_t rowSize = RowSize(page, block.samples);
    const std::uint32_t width = std::min(block.columns, page.width - block.x), height = std::min(block.rows, page.height - block.y);
    for (std::uint32_t y = 0; y < height; y++) {
        const unsigned char* const row = block.bytes + y * rowSize;
        unsigned char* const line = picture.GetLine(static_cast<int>(block.y + y)) + static_cast<std::size_t>(block.x) * channels;
        if (page.bits == 8 && !page.isGrey && block.samples == channels) {
            std::memcpy(line, row, static_cast<std::size_t>(width) * channels);
            continue;
        }
        for (int s = 0; s < block.samples; s++) {
            const int sample = block.first + s;
            const int channel = sample == page.alpha ? 3 : sample < (page.isGrey ? 1 : 3) ? sample : channels;
            if (channel < channels)
                CopySample(page, row, s, block.samples, width, line + channel, channels);
        }
        if (page.isGrey && block.first == 0)
            SpreadGrey(line, width, channels, page.photometric == PHOTOMETRIC_MINISWHITE);
    }
}

bool ReadBlocks(TIFF* tiff, const Page& page, Bitmap& picture)
{
    const bool separate = page.planes == PLANARCONFIG_SEPARATE;
    const tmsize_t size = page.tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    const int samples = separate ? 1 : page.samples;
    const std::size_t rowSize = RowSize(page, samples);
    if (size <= 0 || static_cast<std::size_t>(size) / rowSize < page.blockHeight)
        return false;
    std::vector<unsigned char, XBlockAllocator<unsigned char>> bytes(static_cast<std::size_t>(size));
    const std::uint32_t across = page.tiled ? (page.width - 1) / page.blockWidth + 1 : 1, down = (page.height - 1) / page.blockHeight + 1;
    std::uint32_t number = 0;
    for (int plane = 0; plane < (separate ? page.samples : 1); plane++)
        for (std::uint32_t i = 0; i < across * down; i++, number++) {
            const std::uint32_t x = i % across * page.blockWidth, y = i / across * page.blockHeight;
            const std::uint32_t rows = page.tiled ? page.blockHeight : std::min(page.blockHeight, page.height - y);
            const tmsize_t wanted = static_cast<tmsize_t>(rowSize * rows);
            const tmsize_t got = page.tiled ? TIFFReadEncodedTile(tiff, number, bytes.data(), wanted)
                                            : TIFFReadEncodedStrip(tiff, number, bytes.data(), wanted);
            if (got < wanted)
                return false;
            CopyBlock(page, {x, y, page.blockWidth, rows, plane, samples, bytes.data()}, picture);
        }
    return true;
}

// libtiff's conversion, which gives colours multiplied by alpha.
std::unique_ptr<Bitmap> ReadConverted(TIFF* tiff, const Page& page, CImageTarget& target)
{
    char message[1024];
    TIFFRGBAImage image;
    if (!target.Fits(page.width, page.height, 4, 4))
        return nullptr;
    if (!TIFFRGBAImageOK(tiff, message) || !TIFFRGBAImageBegin(&image, tiff, 1, message)) {
        target.Fail(IMAGE_UNSUPPORTED);
        return nullptr;
    }
    const std::unique_ptr<TIFFRGBAImage, decltype(&TIFFRGBAImageEnd)> end(&image, &TIFFRGBAImageEnd);
    image.req_orientation = image.orientation;    // as it lies in the file
    std::vector<std::uint32_t, XBlockAllocator<std::uint32_t>> raster(static_cast<std::size_t>(page.width) * page.height);
    if (!TIFFRGBAImageGet(&image, raster.data(), page.width, page.height))
        return nullptr;
    auto picture = target.NewPicture(image.alpha ? BITMAP_RGBA : BITMAP_RGB, page.width, page.height, 4);
    if (!picture)
        return nullptr;
    const int channels = picture->GetBytesPerPixel();
    const std::uint32_t* value = raster.data();
    for (int y = 0; y < picture->GetHeight(); y++) {
        unsigned char* pixel = picture->GetLine(y);
        for (int x = 0; x < picture->GetWidth(); x++, pixel += channels, value++)
            for (int c = 0; c < channels; c++)
                pixel[c] = static_cast<unsigned char>(*value >> (8 * c));
    }
    if (channels == 4)
        Unpremultiply(*picture);
    return picture;
}

// The page as it lies in the file. Null without a kept failure means damage.
std::unique_ptr<Bitmap> ReadPage(TIFF* tiff, const Page& page, BitmapType wanted, CImageTarget& target)
{
    if (!page.IsPlain())
        return ReadConverted(tiff, page, target);
    const int blockBytes = (page.bits + 7) / 8 * (page.planes == PLANARCONFIG_SEPARATE ? 1 : page.samples);
    // A tile may be larger than the picture, but not by more than its rim.
    if (!target.Fits(page.blockWidth, page.blockHeight, blockBytes))
        return nullptr;
    const BitmapType type = wanted == BITMAP_GREY ? BITMAP_GREY : page.alpha >= 0 ? BITMAP_RGBA : BITMAP_RGB;
    auto picture = target.NewPicture(type, page.width, page.height, blockBytes);
    if (!picture || !ReadBlocks(tiff, page, *picture))
        return nullptr;
    if (page.premultiplied && type == BITMAP_RGBA)
        Unpremultiply(*picture);
    return picture;
}

// Masks are mostly of one bit: 1 is where the picture shows.
std::unique_ptr<Bitmap> ReadMask(TIFF* tiff, const Page& page, CImageTarget& target)
{
    auto mask = ReadPage(tiff, page, BITMAP_GREY, target);
    if (mask && mask->GetType() != BITMAP_GREY)
        mask.reset(mask->ConvertToType(BITMAP_GREY));
    return mask;
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    Stream stream;
    stream.data = data;
    stream.size = size;
    const auto failure = [&] { return target.Fail(stream.ended ? IMAGE_TRUNCATED : IMAGE_DAMAGED); };
    constexpr long long DIRECTORY = 1 << 20;    // libtiff's own needs
    const File file = Open(stream, "rm", std::max(target.GetRequest().options.maxBytes, DIRECTORY));
    if (!file)
        return failure();
    TIFF* const tiff = file.get();
    bool wanted = false;    // the page before
    for (;;) {
        const Page page(tiff);
        const bool isFirst = target.GetFrameNumber() == 0;
        if (isFirst || !(page.kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK))) {
            wanted = target.WantsFrame();
            if (wanted) {
                auto picture = ReadPage(tiff, page, BITMAP_RGB, target);
                if (!picture)
                    return failure();
                if (!target.AddFrame(MakeUpright(std::move(picture), page.orientation)))
                    return target.GetResult();
            } else if (target.IsDone())
                break;
            else
                target.SkipFrame();
        } else if (wanted && !(page.kind & FILETYPE_REDUCEDIMAGE)) {
            auto mask = ReadMask(tiff, page, target);
            if (!mask)
                return failure();
            target.AddMask(MakeUpright(std::move(mask), page.orientation));
        }
        if (TIFFLastDirectory(tiff))
            break;
        if (!TIFFReadDirectory(tiff))
            return failure();
    }
    return target.GetResult();
}

bool WritePage(TIFF* tiff, const Bitmap& picture, bool compress, int number, int count)
{
    const int channels = picture.GetBytesPerPixel(), width = picture.GetWidth(), height = picture.GetHeight();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, channels);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compress ? COMPRESSION_LZW : COMPRESSION_NONE);
    if (compress)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (channels == 4) {
        const std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (count > 1) {
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        TIFFSetField(tiff, TIFFTAG_PAGENUMBER, number, count);
    }
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    std::vector<unsigned char> row(static_cast<std::size_t>(width) * channels);    // the predictor works in place
    for (int y = 0; y < height; y++) {
        std::memcpy(row.data(), picture.GetLine(y), row.size());
        if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0)
            return false;
    }
    return TIFFWriteDirectory(tiff) == 1;
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    Stream stream;
    stream.out = &out;
    const File file = Open(stream, "wm", 0);
    if (!file)
        return IMAGE_NO_MEMORY;
    const int count = static_cast<int>(source.frames.size());
    for (int i = 0; i < count; i++)
        if (!WritePage(file.get(), *source.frames[static_cast<std::size_t>(i)].picture, options.compress, i, count))
            return IMAGE_SIDES;    // beyond 4 GB
    return IMAGE_OK;
}

}

const CImageCodec g_tiffCodec = {FourCC("TIFF"), L"TIFF", L".tif;.tiff", true, &Probe, &Read, &Write};
