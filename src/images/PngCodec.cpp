// PNG, by libpng.
//
// libpng leaves through longjmp. So all that has a destructor lives in the callers of the functions that call setjmp.

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <new>

#include <png.h>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

constexpr std::size_t SIGNATURE = 8;
constexpr long long MOST_DEFLATED = 1032;    // bytes that one byte of a compressed stream can become
constexpr png_alloc_size_t MOST_CHUNK = 8 << 20;

[[noreturn]] void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void OnWarning(png_structp, png_const_charp) {}

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    return size >= SIGNATURE && png_sig_cmp(data, 0, SIGNATURE) == 0 ? PROBE_SURE : PROBE_NO;
}

struct Reader {
    const unsigned char* data;
    std::size_t size, position;
    bool ended;
    png_structp png;
    png_infop info;

    Reader(const unsigned char* bytes, std::size_t count) : data(bytes), size(count), position(0), ended(false), info(nullptr)
    {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &OnError, &OnWarning);
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

void ReadBytes(png_structp png, png_bytep to, std::size_t count)
{
    Reader& reader = *static_cast<Reader*>(png_get_io_ptr(png));
    if (count > reader.size - reader.position) {
        reader.ended = true;
        png_longjmp(png, 1);
    }
    std::memcpy(to, reader.data + reader.position, count);
    reader.position += count;
}

// Everything becomes 8 bits of red, green, blue and perhaps alpha.
bool ReadHeader(Reader& reader, int maxSide)
{
    png_structp png = reader.png;
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_read_fn(png, &reader, &ReadBytes);
    png_set_user_limits(png, static_cast<png_uint_32>(maxSide), static_cast<png_uint_32>(maxSide));
    png_set_chunk_malloc_max(png, MOST_CHUNK);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
    png_read_info(png, reader.info);
    const int color = png_get_color_type(png, reader.info);
    png_set_expand(png);
    png_set_scale_16(png);
    if (!(color & PNG_COLOR_MASK_COLOR))
        png_set_gray_to_rgb(png);
    return true;
}

bool ReadRows(Reader& reader, png_bytep* rows)
{
    png_structp png = reader.png;
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_read_image(png, rows);
    png_read_end(png, nullptr);
    return true;
}

bool FinishHeader(Reader& reader)
{
    png_structp png = reader.png;
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_interlace_handling(png);
    png_read_update_info(png, reader.info);
    return true;
}

std::vector<png_bytep> LinesOf(const Bitmap& picture)
{
    std::vector<png_bytep> rows(static_cast<std::size_t>(picture.GetHeight()));
    for (int y = 0; y < picture.GetHeight(); y++)
        rows[static_cast<std::size_t>(y)] = const_cast<png_bytep>(picture.GetLine(y));
    return rows;
}

// IHDR comes first, with the sides at fixed places: libpng calls too large a side an error like any other.
bool AreSidesAllowed(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    constexpr std::size_t SIDES = 16;
    if (size < SIDES + 8)
        return true;
    long long sides[2];
    for (int i = 0; i < 2; i++) {
        const unsigned char* const at = data + SIDES + i * 4;
        sides[i] = static_cast<long long>(at[0]) << 24 | at[1] << 16 | at[2] << 8 | at[3];
    }
    return target.Fits(sides[0], sides[1], 3);
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    if (!target.WantsFrame())
        return IMAGE_NO_FRAME;
    if (!AreSidesAllowed(data, size, target))
        return target.GetResult();
    Reader reader(data, size);
    const auto failure = [&] { return target.Fail(reader.ended ? IMAGE_TRUNCATED : IMAGE_DAMAGED); };
    if (!ReadHeader(reader, target.GetRequest().options.maxSide))
        return failure();
    const long long width = png_get_image_width(reader.png, reader.info), height = png_get_image_height(reader.png, reader.info);
    const long long packed = static_cast<long long>(png_get_rowbytes(reader.png, reader.info)) * height;
    if (packed / MOST_DEFLATED > static_cast<long long>(size))
        return target.Fail(IMAGE_TRUNCATED);
    if (!FinishHeader(reader))
        return failure();
    const BitmapType type = png_get_channels(reader.png, reader.info) == 4 ? BITMAP_RGBA : BITMAP_RGB;
    auto picture = target.NewPicture(type, width, height);
    if (!picture)
        return target.GetResult();
    std::vector<png_bytep> rows = LinesOf(*picture);
    if (!ReadRows(reader, rows.data()))
        return failure();
    target.AddFrame(std::move(picture));
    return target.GetResult();
}

struct Writer {
    CImageBytes& out;
    png_structp png;
    png_infop info;

    explicit Writer(CImageBytes& bytes) : out(bytes), info(nullptr)
    {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, &OnError, &OnWarning);
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    ~Writer() { png_destroy_write_struct(&png, &info); }
};

void WriteBytes(png_structp png, png_bytep bytes, std::size_t count)
{
    if (!AppendBytes(static_cast<Writer*>(png_get_io_ptr(png))->out, bytes, count))
        png_longjmp(png, 1);
}

bool WritePicture(Writer& writer, const Bitmap& picture, int level, png_bytep* rows)
{
    png_structp png = writer.png;
    if (setjmp(png_jmpbuf(png)))
        return false;
    const BitmapType type = picture.GetType();
    png_set_write_fn(png, &writer, &WriteBytes, nullptr);
    png_set_compression_level(png, level);
    png_set_compression_buffer_size(png, 1 << 16);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_IHDR(png, writer.info, static_cast<png_uint_32>(picture.GetWidth()), static_cast<png_uint_32>(picture.GetHeight()), 8,
                 type == BITMAP_RGBA  ? PNG_COLOR_TYPE_RGB_ALPHA
                 : type == BITMAP_RGB ? PNG_COLOR_TYPE_RGB
                                      : PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, writer.info);
    png_write_image(png, rows);
    png_write_end(png, nullptr);
    return true;
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    const Bitmap& picture = *source.frames.front().picture;
    Writer writer(out);
    std::vector<png_bytep> rows = LinesOf(picture);
    return WritePicture(writer, picture, std::clamp(options.pngLevel, 0, 9), rows.data()) ? IMAGE_OK : IMAGE_NO_MEMORY;
}

}

const CImageCodec g_pngCodec = {FourCC("PNG "), L"PNG", L".png", false, &Probe, &Read, &Write};
