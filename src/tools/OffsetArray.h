#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "tools/Api.h"
#include "tools/Exception.h"

class CXArchive;

/// Byte offsets by entry number, in as little memory as they need.
///
/// Offsets that form an arithmetic progression (entries of one size, side by side) take no memory at all. The first one
/// that breaks the progression turns the array into 32-bit values, the first one at or beyond 4 GiB into 64-bit values.
/// Callers see none of this: reading is constant-time in every form.
///
/// Append offsets in order, or extend by a whole progression, to keep the short form: SetSize fills with zeros, which
/// is one itself, but overwriting those one by one is not.
class ZEL_API COffsetArray {
public:
    COffsetArray() = default;
    COffsetArray(const COffsetArray& other);
    COffsetArray(COffsetArray&& other) noexcept { Swap(other); }
    COffsetArray& operator=(const COffsetArray& other);
    COffsetArray& operator=(COffsetArray&& other) noexcept
    {
        Swap(other);
        return *this;
    }
    ~COffsetArray() { Free(); }

    unsigned int GetSize() const { return m_size; }
    /// Keeps the first offsets; new ones are 0.
    void SetSize(unsigned int size);
    void RemoveAll();

    /// Throws CXInvalidArgException outside the array.
    std::uint64_t GetAt(unsigned int index) const
    {
        if (index >= m_size)
            XThrowInvalidIndex();
        return (*this)[index];
    }
    /// Without a check of the bounds.
    std::uint64_t operator[](unsigned int index) const
    {
        if (m_form == PROGRESSION)
            return m_base + index * m_stride;
        return m_form == NARROW ? static_cast<const std::uint32_t*>(m_block)[index] : static_cast<const std::uint64_t*>(m_block)[index];
    }
    /// Throws CXInvalidArgException outside the array.
    void SetAt(unsigned int index, std::uint64_t offset);
    void Append(std::uint64_t offset)
    {
        if (m_form == PROGRESSION && m_size >= 2 && m_base + m_size * m_stride == offset)
            m_size++;
        else
            AppendOther(offset);
    }
    /// `count` offsets: first, first + stride, first + 2 * stride ...
    void AppendProgression(unsigned int count, std::uint64_t first, std::uint64_t stride);

    /// Room for `size` offsets, should they need memory.
    void PreAllocate(unsigned int size);
    /// Gives spare memory back, all of it when the offsets form a progression by now.
    void FreeExtra();

    /// True when the offsets form a progression; gives its terms.
    bool IsProgression(std::uint64_t& base, std::uint64_t& stride) const
    {
        base = m_base;
        stride = m_stride;
        return m_form == PROGRESSION;
    }
    /// Bytes on the heap.
    std::uint64_t GetMemory() const { return static_cast<std::uint64_t>(m_capacity) * Width(); }

    void Swap(COffsetArray& other) noexcept;
    /// Count, form, then the terms or the offsets. Loading throws for an unknown form, for a count beyond the stream
    /// and for a progression that leaves the range of offsets; the array is then empty.
    void Serialize(CXArchive& ar);

private:
    enum Form : unsigned int { PROGRESSION = 0, NARROW = 1, WIDE = 2 };

    std::size_t Width() const { return m_form == PROGRESSION ? 0 : m_form == NARROW ? sizeof(std::uint32_t) : sizeof(std::uint64_t); }
    void AppendOther(std::uint64_t offset);
    void MakeForm(Form form, unsigned int capacity);
    void MakeRoomFor(std::uint64_t offset, unsigned int size);
    void Store(unsigned int index, std::uint64_t offset);
    void SetCapacity(unsigned int capacity);
    bool FindProgression(std::uint64_t& base, std::uint64_t& stride) const;
    void Free();

    void* m_block = nullptr;    // none for a progression
    unsigned int m_size = 0;
    unsigned int m_capacity = 0;    // places in the block
    unsigned int m_reserved = 0;    // places wanted as soon as there is a block
    Form m_form = PROGRESSION;
    std::uint64_t m_base = 0;    // of the progression; steps down wrap around
    std::uint64_t m_stride = 0;
};
