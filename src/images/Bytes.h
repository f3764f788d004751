#pragma once

#include <cstddef>
#include <cstdint>

#include "images/ImageCodec.h"

/// Bytes that are walked over. Behind the end they are 0, and that is remembered.
class CByteReader {
public:
    CByteReader(const unsigned char* data, std::size_t size) : m_data(data), m_size(size) {}

    std::size_t GetPosition() const { return m_position; }
    std::size_t GetLeft() const { return m_size - m_position; }
    const unsigned char* GetBytes() const { return m_data + m_position; }
    bool HasEnded() const { return m_ended; }

    /// The next `count` bytes; null, and remembered, when there are fewer.
    const unsigned char* Take(std::size_t count)
    {
        if (count > GetLeft()) {
            m_ended = true;
            m_position = m_size;
            return nullptr;
        }
        m_position += count;
        return m_data + m_position - count;
    }
    bool Skip(std::size_t count) { return Take(count) != nullptr; }
    bool MoveTo(std::size_t position)
    {
        m_position = 0;
        return Skip(position);
    }
    unsigned int Byte()
    {
        const unsigned char* const at = Take(1);
        return at ? *at : 0u;
    }
    unsigned int Word()
    {
        const unsigned char* const at = Take(2);
        return at ? at[0] | static_cast<unsigned int>(at[1]) << 8 : 0u;
    }
    std::uint32_t Long()
    {
        const unsigned char* const at = Take(4);
        return at ? at[0] | static_cast<std::uint32_t>(at[1]) << 8 | static_cast<std::uint32_t>(at[2]) << 16 |
                        static_cast<std::uint32_t>(at[3]) << 24
                  : 0u;
    }
    std::int32_t Signed() { return static_cast<std::int32_t>(Long()); }

private:
    const unsigned char* m_data;
    std::size_t m_size, m_position = 0;
    bool m_ended = false;
};

/// Bytes that are put behind one another.
class CByteWriter {
public:
    explicit CByteWriter(CImageBytes& out) : m_out(out) {}

    void Byte(unsigned int value) { m_out.push_back(static_cast<unsigned char>(value)); }
    void Word(unsigned int value)
    {
        Byte(value);
        Byte(value >> 8);
    }
    void Long(std::uint32_t value)
    {
        Word(value);
        Word(value >> 16);
    }
    void Bytes(const void* bytes, std::size_t count)
    {
        const unsigned char* const from = static_cast<const unsigned char*>(bytes);
        m_out.insert(m_out.end(), from, from + count);
    }

private:
    CImageBytes& m_out;
};

/// `count` pixels from red, green, blue (and alpha) to blue, green, red (and alpha), or back.
inline void CopySwapped(const unsigned char* from, unsigned char* to, std::size_t count, int channels)
{
    for (std::size_t i = 0; i < count; i++, from += channels, to += channels) {
        const unsigned char first = from[0], second = from[1], third = from[2];
        to[0] = third;
        to[1] = second;
        to[2] = first;
        if (channels == 4)
            to[3] = from[3];
    }
}
