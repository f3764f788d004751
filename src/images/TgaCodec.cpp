// TGA: palettes, colours and greys of 8 to 32 bits, plain and RLE, from any corner.
//
// Only files of the later version carry a mark, at their end. Others are recognised by a header that makes sense and by their name.

#include <algorithm>
#include <cstring>

#include "images/Bytes.h"
#include "tools/FourCC.h"

namespace {

constexpr std::size_t HEAD = 18, FOOT = 26;
constexpr char MARK[] = "TRUEVISION-XFILE.";    // with its 0: the last bytes of a file

constexpr unsigned int PALETTE = 1, COLOR = 2, GREY = 3, RUNS = 8;    // kinds of file, and the bit of packed ones

struct Header {
    unsigned int idSize = 0, hasPalette = 0, kind = 0, paletteStart = 0, paletteSize = 0, paletteBits = 0, width = 0, height = 0, bits = 0,
                 flags = 0;

    explicit Header(CByteReader& bytes)
    {
        idSize = bytes.Byte();
        hasPalette = bytes.Byte();
        kind = bytes.Byte();
        paletteStart = bytes.Word();
        paletteSize = bytes.Word();
        paletteBits = bytes.Byte();
        bytes.Skip(4);    // origin
        width = bytes.Word();
        height = bytes.Word();
        bits = bytes.Byte();
        flags = bytes.Byte();
    }
    unsigned int GetKind() const { return kind & ~RUNS; }
    bool IsPacked() const { return kind & RUNS; }
    unsigned int GetAlphaBits() const { return flags & 15; }
    bool FromRight() const { return flags & 0x10; }
    bool FromTop() const { return flags & 0x20; }

    static bool AreColorBits(unsigned int bits) { return bits == 15 || bits == 16 || bits == 24 || bits == 32; }
    bool IsPossible() const
    {
        if (hasPalette > 1 || width == 0 || height == 0 || flags & 0xC0)
            return false;
        switch (kind & ~RUNS) {
        case PALETTE: return hasPalette && (bits == 8 || bits == 16) && AreColorBits(paletteBits) && paletteSize > 0;
        case COLOR: return AreColorBits(bits);
        case GREY: return bits == 8 || bits == 16;
        default: return false;
        }
    }
};

bool HasMark(const unsigned char* data, std::size_t size)
{
    return size >= HEAD + FOOT && std::memcmp(data + size - sizeof MARK, MARK, sizeof MARK) == 0;
}

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    CByteReader bytes(data, size);
    const Header header(bytes);
    if (bytes.HasEnded() || !header.IsPossible())
        return PROBE_NO;
    return HasMark(data, size) ? PROBE_SURE : PROBE_POSSIBLE;
}

// Colour of 15 to 32 bits to red, green, blue, alpha.
void Decode(const unsigned char* from, unsigned int bits, unsigned char* to)
{
    if (bits <= 16) {
        const unsigned int value = from[0] | static_cast<unsigned int>(from[1]) << 8;
        for (int c = 0; c < 3; c++)
            to[c] = static_cast<unsigned char>(((value >> (10 - 5 * c) & 31) * 255 + 15) / 31);
        to[3] = value & 0x8000 ? 255 : 0;
        return;
    }
    to[0] = from[2];
    to[1] = from[1];
    to[2] = from[0];
    to[3] = bits == 32 ? from[3] : 255;
}

class Reader {
public:
    Reader(const unsigned char* data, std::size_t size, CImageTarget& target) : m_bytes(data, size), m_header(m_bytes), m_target(target) {}
    IMAGE_RESULT Read();

private:
    bool ReadPalette();
    bool ReadRows();
    bool ReadPackedRows();
    void PutOne(const unsigned char* from, unsigned char* to) const;
    unsigned char* LineOf(int y) const
    {
        const int height = static_cast<int>(m_header.height);
        return m_picture->GetLine(m_header.FromTop() ? y : height - 1 - y);
    }
    bool HasAlpha() const;

    CByteReader m_bytes;
    const Header m_header;
    CImageTarget& m_target;
    std::vector<unsigned char> m_palette;    // four bytes a colour
    std::unique_ptr<Bitmap> m_picture;
    int m_channels = 3;
    std::size_t m_pixelSize = 0;
};

// Whether pixels can have an alpha. Many writers of 32 bits do not say that the fourth byte is one.
bool Reader::HasAlpha() const
{
    const unsigned int bits = m_header.GetKind() == PALETTE ? m_header.paletteBits : m_header.bits;
    if (m_header.GetKind() == GREY)
        return bits == 16;
    return bits == 32 || (bits == 16 && m_header.GetAlphaBits() > 0);
}

bool Reader::ReadPalette()
{
    if (!m_header.hasPalette)
        return true;
    const std::size_t entry = (m_header.paletteBits + 7) / 8, size = entry * m_header.paletteSize;
    const unsigned char* from = m_bytes.Take(size);
    if (!from)
        return false;
    if (m_header.GetKind() != PALETTE)
        return true;
    m_palette.resize((static_cast<std::size_t>(m_header.paletteStart) + m_header.paletteSize) * 4);
    for (std::size_t i = 0; i < m_header.paletteSize; i++)
        Decode(from + i * entry, m_header.paletteBits, &m_palette[(m_header.paletteStart + i) * 4]);
    return true;
}

IMAGE_RESULT Reader::Read()
{
    if (!m_target.WantsFrame())
        return IMAGE_NO_FRAME;
    if (!m_header.IsPossible())
        return m_target.Fail(IMAGE_DAMAGED);
    m_pixelSize = (m_header.bits + 7) / 8;
    const std::size_t pixels = static_cast<std::size_t>(m_header.width) * m_header.height;
    constexpr std::size_t LONGEST_RUN = 128;
    if (!m_target.Fits(m_header.width, m_header.height, 3))
        return m_target.GetResult();
    if (!m_bytes.Skip(m_header.idSize) || !ReadPalette() ||
        m_bytes.GetLeft() < (m_header.IsPacked() ? pixels / LONGEST_RUN : pixels * m_pixelSize))
        return m_target.Fail(IMAGE_TRUNCATED);
    m_picture = m_target.NewPicture(HasAlpha() ? BITMAP_RGBA : BITMAP_RGB, m_header.width, m_header.height);
    if (!m_picture)
        return m_target.GetResult();
    m_channels = m_picture->GetBytesPerPixel();
    if (m_header.IsPacked() ? !ReadPackedRows() : !ReadRows())
        return m_target.Fail(IMAGE_TRUNCATED);
    if (m_header.FromRight())
        m_picture = MakeUpright(std::move(m_picture), 2);
    if (IsInvisible(*m_picture))
        m_picture.reset(m_picture->ConvertToType(BITMAP_RGB));
    m_target.AddFrame(std::move(m_picture));
    return m_target.GetResult();
}

void Reader::PutOne(const unsigned char* from, unsigned char* to) const
{
    unsigned char color[4] = {0, 0, 0, 255};
    switch (m_header.GetKind()) {
    case PALETTE: {
        const std::size_t index = m_pixelSize == 2 ? from[0] | static_cast<std::size_t>(from[1]) << 8 : from[0];
        if (index * 4 < m_palette.size())
            std::memcpy(color, &m_palette[index * 4], 4);
        break;
    }
    case GREY:
        std::memset(color, from[0], 3);
        color[3] = m_pixelSize == 2 ? from[1] : 255;
        break;
    default: Decode(from, m_header.bits, color);
    }
    std::memcpy(to, color, static_cast<std::size_t>(m_channels));
}

bool Reader::ReadRows()
{
    const std::size_t rowSize = m_header.width * m_pixelSize;
    for (int y = 0; y < static_cast<int>(m_header.height); y++) {
        const unsigned char* from = m_bytes.Take(rowSize);
        unsigned char* to = LineOf(y);
        if (!from)
            return false;
        if (m_header.GetKind() == COLOR && m_header.bits >= 24) {
            CopySwapped(from, to, m_header.width, m_channels);
            continue;
        }
        for (unsigned int x = 0; x < m_header.width; x++, from += m_pixelSize, to += m_channels)
            PutOne(from, to);
    }
    return true;
}

// A byte with the highest bit set repeats one pixel, others stand before so many pixels. Runs may go over the end of a row.
bool Reader::ReadPackedRows()
{
    int x = 0, y = 0;
    const int width = static_cast<int>(m_header.width), height = static_cast<int>(m_header.height);
    unsigned char* to = LineOf(0);
    while (y < height) {
        const unsigned int packet = m_bytes.Byte(), count = (packet & 127) + 1;
        const bool repeats = packet & 128;
        const unsigned char* from = m_bytes.Take(m_pixelSize * (repeats ? 1 : count));
        if (!from)
            return false;
        for (unsigned int i = 0; i < count && y < height; i++) {
            PutOne(from, to);
            to += m_channels;
            if (!repeats)
                from += m_pixelSize;
            if (++x == width) {
                x = 0;
                if (++y < height)
                    to = LineOf(y);
            }
        }
    }
    return true;
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target) { return Reader(data, size, target).Read(); }

bool IsSame(const unsigned char* a, const unsigned char* b, std::size_t size) { return std::memcmp(a, b, size) == 0; }

// Runs of a row, which do not go over its end.
void PackRow(const unsigned char* row, std::size_t width, std::size_t size, CByteWriter& writer)
{
    constexpr std::size_t MOST = 128;
    for (std::size_t x = 0; x < width;) {
        const unsigned char* const at = row + x * size;
        std::size_t same = 1;
        while (same < MOST && x + same < width && IsSame(at, at + same * size, size))
            same++;
        if (same > 1) {
            writer.Byte(static_cast<unsigned int>(128 + same - 1));
            writer.Bytes(at, size);
            x += same;
            continue;
        }
        std::size_t count = 1;
        while (count < MOST && x + count < width && (x + count + 1 == width || !IsSame(at + count * size, at + (count + 1) * size, size)))
            count++;
        writer.Byte(static_cast<unsigned int>(count - 1));
        writer.Bytes(at, count * size);
        x += count;
    }
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    const Bitmap& picture = *source.frames.front().picture;
    const int width = picture.GetWidth(), height = picture.GetHeight(), channels = picture.GetBytesPerPixel();
    if (std::max(width, height) > 0xFFFF)
        return IMAGE_SIDES;
    const std::size_t rowSize = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    out.reserve(HEAD + FOOT + rowSize * static_cast<std::size_t>(height));
    CByteWriter writer(out);
    writer.Word(0);    // no id, no palette
    writer.Byte((channels == 1 ? GREY : COLOR) | (options.compress ? RUNS : 0u));
    writer.Long(0);    // palette,
    writer.Byte(0);
    writer.Long(0);    // origin
    writer.Word(static_cast<unsigned int>(width));
    writer.Word(static_cast<unsigned int>(height));
    writer.Byte(static_cast<unsigned int>(channels * 8));
    writer.Byte(channels == 4 ? 8 : 0);    // bits of alpha; from the bottom left
    std::vector<unsigned char> row(rowSize);
    for (int y = height - 1; y >= 0; y--) {
        if (channels == 1)
            std::memcpy(row.data(), picture.GetLine(y), rowSize);
        else
            CopySwapped(picture.GetLine(y), row.data(), static_cast<std::size_t>(width), channels);
        if (options.compress)
            PackRow(row.data(), static_cast<std::size_t>(width), static_cast<std::size_t>(channels), writer);
        else
            writer.Bytes(row.data(), rowSize);
    }
    writer.Long(0);
    writer.Long(0);
    writer.Bytes(MARK, sizeof MARK);
    return IMAGE_OK;
}

}

const CImageCodec g_tgaCodec = {FourCC("TGA "), L"TGA", L".tga;.tpic;.vda;.icb;.vst", false, &Probe, &Read, &Write};
