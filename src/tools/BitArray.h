#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Bit vector of fixed size. Access is unchecked.
class CBitArray {
public:
    CBitArray() = default;
    CBitArray(unsigned int size, bool value) { SetSize(size, value); }

    /// Sizes the array and gives every bit `value`.
    void SetSize(unsigned int size, bool value)
    {
        m_size = size;
        m_words.assign((static_cast<std::size_t>(size) + 63) / 64, value ? ~std::uint64_t{0} : 0);
        if (value && size % 64)
            m_words.back() >>= 64 - size % 64;    // no stray bits behind the end: GetCount counts whole words
    }
    unsigned int GetSize() const { return m_size; }
    bool GetAt(unsigned int index) const { return m_words[index >> 6] >> (index & 63) & 1; }
    bool operator[](unsigned int index) const { return GetAt(index); }
    void SetAt(unsigned int index, bool value)
    {
        const std::uint64_t bit = std::uint64_t{1} << (index & 63);
        if (value)
            m_words[index >> 6] |= bit;
        else
            m_words[index >> 6] &= ~bit;
    }
    /// Number of set bits.
    unsigned int GetCount() const
    {
        unsigned int count = 0;
        for (const std::uint64_t word : m_words)
            count += static_cast<unsigned int>(std::popcount(word));
        return count;
    }

private:
    unsigned int m_size = 0;
    std::vector<std::uint64_t> m_words;
};
