// BMP: all headers from the 12 bytes of the first to the 124 of the latest; 1, 2, 4, 8, 16, 24 and 32 bits; palettes, masks, RLE; either way up.

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "images/Bytes.h"
#include "tools/Color.h"
#include "tools/FourCC.h"

namespace {

constexpr std::size_t FILE_HEAD = 14;
constexpr std::uint32_t CORE_HEAD = 12, INFO_HEAD = 40, ALPHA_HEAD = 56, OS2_HEAD = 64, V4_HEAD = 108, V5_HEAD = 124;

enum Compression : std::uint32_t { RAW = 0, RLE8 = 1, RLE4 = 2, MASKS = 3, ALPHA_MASKS = 6 };

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    if (size < FILE_HEAD + 4 || data[0] != 'B' || data[1] != 'M')
        return PROBE_NO;
    const std::uint32_t head = CByteReader(data + FILE_HEAD, 4).Long();
    return head == CORE_HEAD || (head >= 16 && head <= V5_HEAD) ? PROBE_SURE : PROBE_NO;
}

// The bits of one channel in a pixel.
struct Mask {
    std::uint32_t bits = 0;
    int shift = 0;
    std::uint32_t most = 0;

    void Set(std::uint32_t mask)
    {
        bits = mask;
        shift = mask ? std::countr_zero(mask) : 0;
        most = mask >> shift;
    }
    unsigned char Of(std::uint32_t pixel) const
    {
        const std::uint64_t value = (pixel & bits) >> shift;
        return static_cast<unsigned char>(most ? (value * 255 + most / 2) / most : 0);
    }
};

class Reader {
public:
    Reader(const unsigned char* data, std::size_t size, CImageTarget& target) : m_bytes(data, size), m_target(target) {}
    IMAGE_RESULT Read();

private:
    IMAGE_RESULT ReadHeader();
    IMAGE_RESULT ReadMasks(std::uint32_t head);
    void ReadPalette(std::size_t start);
    IMAGE_RESULT ReadRaw();
    IMAGE_RESULT ReadRuns();
    void ReadRow(const unsigned char* row, unsigned char* to) const;
    void PutIndex(int x, int y, unsigned int index);
    int LineOf(int y) const { return m_topDown ? y : m_height - 1 - y; }

    CByteReader m_bytes;
    CImageTarget& m_target;
    int m_width = 0, m_height = 0;
    unsigned int m_bits = 0, m_entrySize = 4;    // bytes of a colour in the palette
    std::uint32_t m_compression = RAW, m_colorCount = 0, m_pixels = 0;
    bool m_topDown = false;
    bool m_alphaGuess = false;    // four bytes a pixel, and nothing said about the fourth
    std::array<Mask, 4> m_masks{};
    std::array<CRGBColor, 256> m_palette{};
    std::unique_ptr<Bitmap> m_picture;
};

IMAGE_RESULT Reader::ReadHeader()
{
    m_bytes.Skip(10);
    m_pixels = m_bytes.Long();
    const std::uint32_t head = m_bytes.Long();
    std::int64_t height;
    if (head == CORE_HEAD) {
        m_width = static_cast<int>(m_bytes.Word());
        height = m_bytes.Word();
        m_bytes.Skip(2);
        m_bits = m_bytes.Word();
        m_entrySize = 3;
    } else {
        m_width = m_bytes.Signed();
        height = m_bytes.Signed();
        m_bytes.Skip(2);    // planes
        m_bits = m_bytes.Word();
        // Later fields may be left out.
        if (head >= 20)
            m_compression = m_bytes.Long();
        if (head >= 36) {
            m_bytes.Skip(12);    // size, resolution
            m_colorCount = m_bytes.Long();
        }
    }
    if (m_bytes.HasEnded())
        return IMAGE_TRUNCATED;
    m_topDown = height < 0;
    height = std::abs(height);
    if (!m_target.Fits(m_width, height, 3))
        return m_target.GetResult();
    m_height = static_cast<int>(height);
    if (const IMAGE_RESULT result = ReadMasks(head); result != IMAGE_OK)
        return result;
    // Masks behind the old header stand before the palette.
    const std::size_t between = head == INFO_HEAD ? (m_compression == MASKS ? 12 : m_compression == ALPHA_MASKS ? 16 : 0) : 0;
    if (m_bits <= 8)
        ReadPalette(FILE_HEAD + head + between);
    return m_bytes.HasEnded() ? IMAGE_TRUNCATED : IMAGE_OK;
}

IMAGE_RESULT Reader::ReadMasks(std::uint32_t head)
{
    switch (m_bits) {
    case 1:
    case 2:
    case 24: return m_compression == RAW ? IMAGE_OK : IMAGE_UNSUPPORTED;
    case 4: return m_compression == RAW || m_compression == RLE4 ? IMAGE_OK : IMAGE_UNSUPPORTED;
    case 8: return m_compression == RAW || m_compression == RLE8 ? IMAGE_OK : IMAGE_UNSUPPORTED;
    case 16:
    case 32: break;
    default: return IMAGE_UNSUPPORTED;
    }
    if (m_compression == RAW) {
        const bool wide = m_bits == 32;
        m_masks[0].Set(wide ? 0xFF0000 : 0x7C00);
        m_masks[1].Set(wide ? 0xFF00 : 0x3E0);
        m_masks[2].Set(wide ? 0xFF : 0x1F);
        m_masks[3].Set(wide ? 0xFF000000 : 0);
        m_alphaGuess = wide;
        return IMAGE_OK;
    }
    if ((m_compression != MASKS && m_compression != ALPHA_MASKS) || head == OS2_HEAD)
        return IMAGE_UNSUPPORTED;
    m_bytes.MoveTo(FILE_HEAD + INFO_HEAD);
    const bool hasAlpha = head >= ALPHA_HEAD || m_compression == ALPHA_MASKS;
    for (int i = 0; i < (hasAlpha ? 4 : 3); i++)
        m_masks[static_cast<std::size_t>(i)].Set(m_bytes.Long());
    return IMAGE_OK;
}

void Reader::ReadPalette(std::size_t start)
{
    // Fewer entries than it says may stand before the pixels.
    std::size_t count = std::size_t{1} << m_bits;
    if (m_colorCount != 0)
        count = std::min<std::size_t>(count, m_colorCount);
    if (m_pixels > start)
        count = std::min(count, (m_pixels - start) / m_entrySize);
    m_bytes.MoveTo(start);
    for (std::size_t i = 0; i < count; i++)
        if (const unsigned char* const entry = m_bytes.Take(m_entrySize))
            m_palette[i] = CRGBColor(entry[2], entry[1], entry[0]);
}

IMAGE_RESULT Reader::Read()
{
    if (!m_target.WantsFrame())
        return IMAGE_NO_FRAME;
    IMAGE_RESULT result = ReadHeader();
    if (result != IMAGE_OK)
        return m_target.Fail(result);
    if (!m_bytes.MoveTo(m_pixels))
        return m_target.Fail(IMAGE_TRUNCATED);
    result = m_compression == RLE8 || m_compression == RLE4 ? ReadRuns() : ReadRaw();
    if (result != IMAGE_OK)
        return m_target.Fail(result);
    m_target.AddFrame(std::move(m_picture));
    return m_target.GetResult();
}

IMAGE_RESULT Reader::ReadRaw()
{
    const std::size_t rowSize = (static_cast<std::size_t>(m_width) * m_bits + 31) / 32 * 4;
    // Some writers leave out the padding behind the last row.
    const std::size_t lastRow = (static_cast<std::size_t>(m_width) * m_bits + 7) / 8;
    if (m_bytes.GetLeft() < rowSize * static_cast<std::size_t>(m_height - 1) + lastRow)
        return IMAGE_TRUNCATED;
    m_picture = m_target.NewPicture(m_masks[3].bits ? BITMAP_RGBA : BITMAP_RGB, m_width, m_height);
    if (!m_picture)
        return m_target.GetResult();
    for (int y = 0; y < m_height; y++) {
        const unsigned char* const row = m_bytes.Take(y + 1 < m_height ? rowSize : lastRow);
        ReadRow(row, m_picture->GetLine(LineOf(y)));
    }
    if (m_alphaGuess && IsInvisible(*m_picture))
        m_picture.reset(m_picture->ConvertToType(BITMAP_RGB));
    return IMAGE_OK;
}

void Reader::ReadRow(const unsigned char* row, unsigned char* to) const
{
    const int channels = m_picture->GetBytesPerPixel();
    if (m_bits == 24 || (m_bits == 32 && m_compression == RAW)) {
        CopySwapped(row, to, static_cast<std::size_t>(m_width), channels);
        return;
    }
    for (int x = 0; x < m_width; x++, to += channels) {
        if (m_bits <= 8) {
            const unsigned int bit = static_cast<unsigned int>(x) * m_bits;
            const unsigned int index = row[bit / 8] >> (8 - m_bits - bit % 8) & ((1u << m_bits) - 1);
            std::memcpy(to, m_palette[index].ValPtr(), 3);
            continue;
        }
        std::uint32_t pixel = row[0] | static_cast<std::uint32_t>(row[1]) << 8;
        if (m_bits == 32)
            pixel |= static_cast<std::uint32_t>(row[2]) << 16 | static_cast<std::uint32_t>(row[3]) << 24;
        row += m_bits / 8;
        for (int c = 0; c < channels; c++)
            to[c] = m_masks[static_cast<std::size_t>(c)].Of(pixel);
    }
}

void Reader::PutIndex(int x, int y, unsigned int index)
{
    if (x < m_width && y < m_height)
        std::memcpy(m_picture->GetLine(LineOf(y)) + static_cast<std::ptrdiff_t>(x) * 3, m_palette[index].ValPtr(), 3);
}

// Runs: a count and a value, which is one index or two of 4 bits that alternate. A count of 0 is a command: end of row, end of
// picture, a jump, or so many indices one by one, filled up to an even number of bytes.
IMAGE_RESULT Reader::ReadRuns()
{
    enum { END_OF_ROW = 0, END = 1, JUMP = 2 };
    const bool wide = m_compression == RLE8;
    m_picture = m_target.NewPicture(BITMAP_RGB, m_width, m_height);
    if (!m_picture)
        return m_target.GetResult();
    for (int y = 0; y < m_height; y++)    // what no run covers has index 0
        for (int x = 0; x < m_width; x++)
            PutIndex(x, y, 0);
    const auto nibble = [](unsigned int value, unsigned int i) { return i % 2 ? value & 15 : value >> 4; };
    int x = 0, y = 0;
    for (;;) {
        const unsigned int count = m_bytes.Byte(), value = m_bytes.Byte();
        if (m_bytes.HasEnded())
            return IMAGE_TRUNCATED;
        if (count > 0) {
            for (unsigned int i = 0; i < count; i++)
                PutIndex(x++, y, wide ? value : nibble(value, i));
        } else if (value == END_OF_ROW) {
            x = 0;
            y++;
        } else if (value == END) {
            return IMAGE_OK;
        } else if (value == JUMP) {
            x += static_cast<int>(m_bytes.Byte());
            y += static_cast<int>(m_bytes.Byte());
        } else {
            const unsigned int size = wide ? value : (value + 1) / 2;
            const unsigned char* const indices = m_bytes.Take(size + size % 2);
            if (!indices)
                return IMAGE_TRUNCATED;
            for (unsigned int i = 0; i < value; i++)
                PutIndex(x++, y, wide ? indices[i] : nibble(indices[i / 2], i));
        }
        x = std::min(x, m_width);
        y = std::min(y, m_height);
    }
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target) { return Reader(data, size, target).Read(); }

// Three bytes a pixel under the header that all programs know; with alpha, the first header that speaks of it.
IMAGE_RESULT Write(const CImageSource& source, const CImageOptions&, CImageBytes& out)
{
    std::unique_ptr<Bitmap> colored;
    const Bitmap* picture = source.frames.front().picture;
    if (picture->GetType() == BITMAP_GREY) {
        colored.reset(picture->ConvertToType(BITMAP_RGB));
        picture = colored.get();
    }
    const bool alpha = picture->GetType() == BITMAP_RGBA;
    const std::size_t width = static_cast<std::size_t>(picture->GetWidth()), height = static_cast<std::size_t>(picture->GetHeight());
    const std::size_t rowSize = (width * static_cast<std::size_t>(picture->GetBytesPerPixel()) + 3) / 4 * 4, size = rowSize * height;
    const std::uint32_t head = alpha ? V4_HEAD : INFO_HEAD;
    if (size > UINT32_MAX - FILE_HEAD - head)
        return IMAGE_SIDES;
    out.reserve(FILE_HEAD + head + size);
    CByteWriter writer(out);
    writer.Bytes("BM", 2);
    writer.Long(static_cast<std::uint32_t>(FILE_HEAD + head + size));
    writer.Long(0);
    writer.Long(static_cast<std::uint32_t>(FILE_HEAD + head));
    writer.Long(head);
    writer.Long(static_cast<std::uint32_t>(width));
    writer.Long(static_cast<std::uint32_t>(height));
    writer.Word(1);
    writer.Word(alpha ? 32 : 24);
    writer.Long(alpha ? MASKS : RAW);
    writer.Long(static_cast<std::uint32_t>(size));
    constexpr std::uint32_t DOTS = 3780;    // a metre, 96 an inch
    for (const std::uint32_t value : {DOTS, DOTS, 0u, 0u})
        writer.Long(value);
    if (alpha) {
        for (const std::uint32_t value : {0xFF0000u, 0xFF00u, 0xFFu, 0xFF000000u, FourCC("sRGB")})
            writer.Long(value);
        for (std::uint32_t done = INFO_HEAD + 20; done < V4_HEAD; done += 4)
            writer.Long(0);
    }
    const std::size_t start = out.size();
    out.resize(start + size);
    for (std::size_t y = 0; y < height; y++)
        CopySwapped(picture->GetLine(static_cast<int>(height - 1 - y)), &out[start + y * rowSize], width, picture->GetBytesPerPixel());
    return IMAGE_OK;
}

}

const CImageCodec g_bmpCodec = {FourCC("BMP "), L"BMP", L".bmp;.dib;.rle", false, &Probe, &Read, &Write};
