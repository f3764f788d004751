// JPEG, by libjpeg-turbo.
//
// libjpeg leaves through longjmp. So all that has a destructor lives in the callers of the functions that call setjmp.

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include <jpeglib.h>

#include <jerror.h>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

constexpr int MOST_SCANS = 200;    // of a progressive picture; sound ones have about ten
constexpr int MARKER_EXIF = JPEG_APP0 + 1;

// What both directions add to libjpeg's error handler.
struct Errors {
    jpeg_error_mgr base;    // first: libjpeg hands a pointer to it back
    std::jmp_buf leave;
    IMAGE_RESULT result;
};

[[noreturn]] void Leave(j_common_ptr jpeg, IMAGE_RESULT result)
{
    Errors* const errors = reinterpret_cast<Errors*>(jpeg->err);
    errors->result = result;
    std::longjmp(errors->leave, 1);
}

[[noreturn]] void OnError(j_common_ptr jpeg)
{
    switch (jpeg->err->msg_code) {
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE: Leave(jpeg, IMAGE_NO_MEMORY);
    case JERR_IMAGE_TOO_BIG: Leave(jpeg, IMAGE_TOO_LARGE);
    case JERR_SOF_UNSUPPORTED:
    case JERR_BAD_PRECISION:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_ARITH_NOTIMPL: Leave(jpeg, IMAGE_UNSUPPORTED);
    default: Leave(jpeg, IMAGE_DAMAGED);
    }
}

// Warnings that mean lost pixels are failures; others, such as stray bytes between segments, are frequent and harmless.
void OnMessage(j_common_ptr jpeg, int level)
{
    if (level >= 0)
        return;
    const int code = jpeg->err->msg_code;
    if (code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC || code == JWRN_ARITH_BAD_CODE)
        Leave(jpeg, IMAGE_DAMAGED);
}

void OnOutput(j_common_ptr) {}

jpeg_error_mgr* InitErrors(Errors& errors)
{
    jpeg_std_error(&errors.base);
    errors.base.error_exit = &OnError;
    errors.base.emit_message = &OnMessage;
    errors.base.output_message = &OnOutput;
    errors.result = IMAGE_DAMAGED;
    return &errors.base;
}

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    return size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF ? PROBE_SURE : PROBE_NO;
}

void NothingToStart(j_decompress_ptr) {}

boolean AtEnd(j_decompress_ptr jpeg) { Leave(reinterpret_cast<j_common_ptr>(jpeg), IMAGE_TRUNCATED); }

void SkipBytes(j_decompress_ptr jpeg, long count)
{
    if (count <= 0)
        return;
    if (static_cast<std::size_t>(count) > jpeg->src->bytes_in_buffer)
        AtEnd(jpeg);
    jpeg->src->next_input_byte += count;
    jpeg->src->bytes_in_buffer -= static_cast<std::size_t>(count);
}

void OnProgress(j_common_ptr jpeg)
{
    if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > MOST_SCANS)
        Leave(jpeg, IMAGE_DAMAGED);
}

struct Reader {
    jpeg_decompress_struct jpeg;
    Errors errors;
    jpeg_source_mgr source;
    jpeg_progress_mgr progress;

    Reader(const unsigned char* data, std::size_t size) : jpeg(), source(), progress()
    {
        jpeg.err = InitErrors(errors);
        source.next_input_byte = data;
        source.bytes_in_buffer = size;
        source.init_source = &NothingToStart;
        source.fill_input_buffer = &AtEnd;
        source.skip_input_data = &SkipBytes;
        source.resync_to_restart = &jpeg_resync_to_restart;
        source.term_source = &NothingToStart;
        progress.progress_monitor = &OnProgress;
    }
    ~Reader() { jpeg_destroy_decompress(&jpeg); }
};

bool ReadHeader(Reader& reader)
{
    if (setjmp(reader.errors.leave))
        return false;
    jpeg_create_decompress(&reader.jpeg);
    reader.jpeg.src = &reader.source;
    reader.jpeg.progress = &reader.progress;
    jpeg_save_markers(&reader.jpeg, MARKER_EXIF, 0xFFFF);
    jpeg_read_header(&reader.jpeg, TRUE);
    switch (reader.jpeg.jpeg_color_space) {
    case JCS_CMYK:
    case JCS_YCCK: reader.jpeg.out_color_space = JCS_CMYK; break;
    default: reader.jpeg.out_color_space = JCS_RGB;
    }
    return true;
}

bool Start(Reader& reader)
{
    if (setjmp(reader.errors.leave))
        return false;
    jpeg_start_decompress(&reader.jpeg);
    return true;
}

// Ink on paper becomes light. Adobe's files keep the inks inverted.
void InkToLight(const unsigned char* inks, int width, bool inverted, unsigned char* out)
{
    for (int x = 0; x < width; x++, inks += 4, out += 3) {
        const int black = inverted ? inks[3] : 255 - inks[3];
        for (int c = 0; c < 3; c++)
            out[c] = static_cast<unsigned char>(((inverted ? inks[c] : 255 - inks[c]) * black + 127) / 255);
    }
}

bool ReadRows(Reader& reader, Bitmap& picture, unsigned char* inks)
{
    if (setjmp(reader.errors.leave))
        return false;
    jpeg_decompress_struct& jpeg = reader.jpeg;
    while (jpeg.output_scanline < jpeg.output_height) {
        unsigned char* const line = picture.GetLine(static_cast<int>(jpeg.output_scanline));
        JSAMPROW row = inks ? inks : line;
        jpeg_read_scanlines(&jpeg, &row, 1);
        if (inks)
            InkToLight(inks, picture.GetWidth(), jpeg.saw_Adobe_marker, line);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

// The orientation in a block of camera data; 1, upright, when it says nothing.
int OrientationIn(const unsigned char* bytes, std::size_t size)
{
    constexpr std::size_t HEAD = 6, ENTRY = 12;
    constexpr unsigned int TAG_ORIENTATION = 0x112;
    if (size < HEAD + 8 || std::memcmp(bytes, "Exif\0", HEAD) != 0)
        return 1;
    bytes += HEAD;
    size -= HEAD;
    const bool big = bytes[0] == 'M';
    const auto word = [&](std::size_t at) -> unsigned int { return big ? bytes[at] << 8 | bytes[at + 1] : bytes[at + 1] << 8 | bytes[at]; };
    const std::size_t high = big ? word(4) : word(6), low = big ? word(6) : word(4);
    const std::size_t directory = high << 16 | low;
    if (directory > size || size - directory < 2)
        return 1;
    const std::size_t count = std::min<std::size_t>(word(directory), (size - directory - 2) / ENTRY);
    for (std::size_t i = 0; i < count; i++) {
        const std::size_t entry = directory + 2 + i * ENTRY;
        if (word(entry) == TAG_ORIENTATION)
            return static_cast<int>(word(entry + 8));
    }
    return 1;
}

int OrientationOf(const jpeg_decompress_struct& jpeg)
{
    for (const jpeg_marker_struct* marker = jpeg.marker_list; marker; marker = marker->next)
        if (marker->marker == MARKER_EXIF)
            if (const int orientation = OrientationIn(marker->data, marker->data_length); orientation > 1)
                return orientation;
    return 1;
}

// The smallest of 1, 1/2, 1/4 and 1/8 that is still large enough.
unsigned int ReductionFor(const CImageRequest& request, long long width, long long height, bool turned)
{
    const int neededWidth = turned ? request.neededHeight : request.neededWidth;
    const int neededHeight = turned ? request.neededWidth : request.neededHeight;
    unsigned int by = 1;
    if (neededWidth <= 0 || neededHeight <= 0)
        return by;
    while (by < 8 && (width + by * 2 - 1) / (by * 2) >= neededWidth && (height + by * 2 - 1) / (by * 2) >= neededHeight)
        by *= 2;
    return by;
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    if (!target.WantsFrame())
        return IMAGE_NO_FRAME;
    Reader reader(data, size);
    jpeg_decompress_struct& jpeg = reader.jpeg;
    if (!ReadHeader(reader))
        return target.Fail(reader.errors.result);
    const int orientation = OrientationOf(jpeg);
    const long long width = jpeg.image_width, height = jpeg.image_height;
    jpeg.scale_num = 1;
    jpeg.scale_denom = ReductionFor(target.GetRequest(), width, height, orientation >= 5);
    // The coefficients of a progressive picture are all kept until it is complete.
    const int coefficients = jpeg_has_multiple_scans(&jpeg) ? jpeg.num_components * 2 : 0;
    const long long by = jpeg.scale_denom;
    if ((coefficients && !target.Fits(width, height, 0, coefficients)) ||
        !target.Fits((width + by - 1) / by, (height + by - 1) / by, 3, orientation > 1 ? 3 : 0))
        return target.GetResult();
    if (!Start(reader))
        return target.Fail(reader.errors.result);
    auto picture = target.NewPicture(BITMAP_RGB, jpeg.output_width, jpeg.output_height);
    if (!picture)
        return target.GetResult();
    std::vector<unsigned char> inks(jpeg.out_color_space == JCS_CMYK ? static_cast<std::size_t>(jpeg.output_width) * 4 : 0);
    if (!ReadRows(reader, *picture, inks.empty() ? nullptr : inks.data()))
        return target.Fail(reader.errors.result);
    target.AddFrame(MakeUpright(std::move(picture), orientation));
    return target.GetResult();
}

struct Writer {
    jpeg_compress_struct jpeg;
    Errors errors;
    jpeg_destination_mgr destination;
    CImageBytes& out;
    unsigned char buffer[1 << 16];

    explicit Writer(CImageBytes& bytes) : jpeg(), destination(), out(bytes) { jpeg.err = InitErrors(errors); }
    ~Writer() { jpeg_destroy_compress(&jpeg); }
};

Writer& WriterOf(j_compress_ptr jpeg) { return *static_cast<Writer*>(jpeg->client_data); }

void StartBuffer(j_compress_ptr jpeg)
{
    jpeg->dest->next_output_byte = WriterOf(jpeg).buffer;
    jpeg->dest->free_in_buffer = sizeof(Writer::buffer);
}

void Flush(j_compress_ptr jpeg, std::size_t count)
{
    Writer& writer = WriterOf(jpeg);
    if (!AppendBytes(writer.out, writer.buffer, count))
        Leave(reinterpret_cast<j_common_ptr>(jpeg), IMAGE_NO_MEMORY);
    StartBuffer(jpeg);
}

boolean FlushFull(j_compress_ptr jpeg)
{
    Flush(jpeg, sizeof(Writer::buffer));
    return TRUE;
}

void FlushLast(j_compress_ptr jpeg) { Flush(jpeg, sizeof(Writer::buffer) - jpeg->dest->free_in_buffer); }

bool WritePicture(Writer& writer, const Bitmap& picture, const CImageOptions& options)
{
    if (setjmp(writer.errors.leave))
        return false;
    jpeg_compress_struct& jpeg = writer.jpeg;
    const BitmapType type = picture.GetType();
    jpeg_create_compress(&jpeg);
    jpeg.client_data = &writer;
    jpeg.dest = &writer.destination;
    writer.destination.init_destination = &StartBuffer;
    writer.destination.empty_output_buffer = &FlushFull;
    writer.destination.term_destination = &FlushLast;
    jpeg.image_width = static_cast<JDIMENSION>(picture.GetWidth());
    jpeg.image_height = static_cast<JDIMENSION>(picture.GetHeight());
    jpeg.input_components = picture.GetBytesPerPixel();
    jpeg.in_color_space = type == BITMAP_GREY ? JCS_GRAYSCALE : type == BITMAP_RGBA ? JCS_EXT_RGBX : JCS_RGB;    // no alpha in a JPEG
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, std::clamp(options.jpegQuality, 1, 100), TRUE);
    if (options.jpegFullColor && type != BITMAP_GREY)
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(picture.GetLine(static_cast<int>(jpeg.next_scanline)));
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    const Bitmap& picture = *source.frames.front().picture;
    if (std::max(picture.GetWidth(), picture.GetHeight()) > JPEG_MAX_DIMENSION)
        return IMAGE_SIDES;
    const auto writer = std::make_unique<Writer>(out);
    return WritePicture(*writer, picture, options) ? IMAGE_OK : writer->errors.result;
}

}

const CImageCodec g_jpegCodec = {FourCC("JPEG"), L"JPEG", L".jpg;.jpeg;.jpe;.jfif", false, &Probe, &Read, &Write};
