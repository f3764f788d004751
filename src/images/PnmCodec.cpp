// PNM: black and white, grey and colour (P1 to P6), as text and as bytes, up to 16 bits.

#include <algorithm>

#include "images/Bytes.h"
#include "tools/FourCC.h"

namespace {

bool IsSpace(unsigned int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    return size >= 3 && data[0] == 'P' && data[1] >= '1' && data[1] <= '6' && (IsSpace(data[2]) || data[2] == '#') ? PROBE_SURE : PROBE_NO;
}

class Reader {
public:
    Reader(const unsigned char* data, std::size_t size, CImageTarget& target) : m_bytes(data, size), m_target(target) {}
    IMAGE_RESULT Read();

private:
    long Number(bool single);
    unsigned int Value();
    void ReadRow(unsigned char* to);

    CByteReader m_bytes;
    CImageTarget& m_target;
    bool m_text = false, m_bits = false;    // m_bits: 1 is black
    int m_channels = 1, m_width = 0;
    long m_most = 1;
    bool m_damaged = false;
};

// A number in text, behind spaces and comments; `single`: one digit, for black and white may stand without spaces between.
long Reader::Number(bool single)
{
    unsigned int c = m_bytes.Byte();
    while (!m_bytes.HasEnded() && (IsSpace(c) || c == '#')) {
        if (c == '#')
            while (!m_bytes.HasEnded() && c != '\n' && c != '\r')
                c = m_bytes.Byte();
        c = m_bytes.Byte();
    }
    long value = -1;
    while (c >= '0' && c <= '9') {
        value = std::min(std::max(value, 0L) * 10 + static_cast<long>(c - '0'), 1L << 24);
        // The end of the file may end the last number.
        if (single || m_bytes.GetLeft() == 0)
            return value;
        c = m_bytes.Byte();
    }
    m_damaged |= value < 0 || !IsSpace(c);
    return value;
}

unsigned int Reader::Value()
{
    unsigned int value;
    if (m_text)
        value = static_cast<unsigned int>(std::max(Number(m_bits), 0L));
    else {
        value = m_bytes.Byte();
        if (m_most > 255)
            value = value << 8 | m_bytes.Byte();
    }
    const unsigned int most = static_cast<unsigned int>(m_most);
    m_damaged |= value > most;
    return std::min((value * 255 + most / 2) / most, 255u);
}

void Reader::ReadRow(unsigned char* to)
{
    unsigned int packed = 0;
    for (int x = 0; x < m_width; x++, to += 3) {
        if (m_bits) {
            if (!m_text && x % 8 == 0)
                packed = m_bytes.Byte();
            const bool black = m_text ? Value() != 0 : packed >> (7 - x % 8) & 1;
            std::fill_n(to, 3, black ? 0 : 255);
            continue;
        }
        for (int c = 0; c < m_channels; c++)
            to[c] = static_cast<unsigned char>(Value());
        if (m_channels == 1)
            to[1] = to[2] = to[0];
    }
}

IMAGE_RESULT Reader::Read()
{
    if (!m_target.WantsFrame())
        return IMAGE_NO_FRAME;
    m_bytes.Skip(1);
    const unsigned int kind = m_bytes.Byte() - '0';
    m_text = kind <= 3;
    m_bits = kind == 1 || kind == 4;
    m_channels = kind == 3 || kind == 6 ? 3 : 1;
    const long width = Number(false), height = Number(false);
    if (!m_bits)
        m_most = Number(false);
    if (m_bytes.HasEnded() || m_bytes.GetLeft() == 0)
        return m_target.Fail(IMAGE_TRUNCATED);
    if (m_damaged || m_most < 1 || m_most > 0xFFFF)
        return m_target.Fail(IMAGE_DAMAGED);
    if (!m_target.Fits(width, height, 3))
        return m_target.GetResult();
    m_width = static_cast<int>(width);
    // Text takes at least two bytes a value, but for black and white.
    const std::size_t values = static_cast<std::size_t>(width) * static_cast<std::size_t>(m_channels);
    const std::size_t rowSize = m_bits ? (m_text ? values : (values + 7) / 8) : m_text || m_most > 255 ? values * 2 : values;
    if (m_bytes.GetLeft() + m_text < rowSize * static_cast<std::size_t>(height))
        return m_target.Fail(IMAGE_TRUNCATED);
    auto picture = m_target.NewPicture(BITMAP_RGB, width, height);
    if (!picture)
        return m_target.GetResult();
    for (int y = 0; y < picture->GetHeight() && !m_bytes.HasEnded(); y++)
        ReadRow(picture->GetLine(y));
    if (m_bytes.HasEnded() || m_damaged)
        return m_target.Fail(m_bytes.HasEnded() ? IMAGE_TRUNCATED : IMAGE_DAMAGED);
    m_target.AddFrame(std::move(picture));
    return m_target.GetResult();
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target) { return Reader(data, size, target).Read(); }

}

const CImageCodec g_pnmCodec = {FourCC("PNM "), L"PNM", L".ppm;.pgm;.pbm;.pnm", false, &Probe, &Read, nullptr};
