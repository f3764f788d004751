#include "tools/OffsetArray.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/Archive.h"
#include "tools/Memory.h"

COffsetArray::COffsetArray(const COffsetArray& other) { *this = other; }

COffsetArray& COffsetArray::operator=(const COffsetArray& other)
{
    if (this == &other)
        return *this;
    RemoveAll();
    m_form = other.m_form;
    m_base = other.m_base;
    m_stride = other.m_stride;
    if (other.m_size && Width()) {
        SetCapacity(other.m_size);
        std::memcpy(m_block, other.m_block, other.m_size * Width());
    }
    m_size = other.m_size;
    return *this;
}

void COffsetArray::Swap(COffsetArray& other) noexcept
{
    std::swap(m_block, other.m_block);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_reserved, other.m_reserved);
    std::swap(m_form, other.m_form);
    std::swap(m_base, other.m_base);
    std::swap(m_stride, other.m_stride);
}

void COffsetArray::SetSize(unsigned int size)
{
    if (size <= m_size) {
        m_size = size;
        if (size == 0)
            RemoveAll();
    } else
        AppendProgression(size - m_size, 0, 0);
}

void COffsetArray::RemoveAll()
{
    Free();
    m_form = PROGRESSION;
    m_size = m_reserved = 0;
    m_base = m_stride = 0;
}

void COffsetArray::SetAt(unsigned int index, std::uint64_t offset)
{
    if (index >= m_size)
        XThrowInvalidIndex();
    if ((*this)[index] == offset)
        return;
    if (m_form == PROGRESSION && m_size <= 2) {    // two offsets are a progression whatever they are
        const std::uint64_t other = m_size == 2 ? (*this)[1 - index] : offset;
        m_base = index == 0 ? offset : other;
        m_stride = index == 0 ? other - offset : offset - other;
        return;
    }
    MakeRoomFor(offset, m_size);
    Store(index, offset);
}

void COffsetArray::AppendOther(std::uint64_t offset)
{
    if (m_form == PROGRESSION && m_size <= 1) {
        if (m_size == 0)
            m_base = offset;
        m_stride = offset - m_base;
        m_size++;
        return;
    }
    if (m_size == std::numeric_limits<unsigned int>::max())
        XThrowInvalidIndex();
    MakeRoomFor(offset, m_size + 1);
    Store(m_size++, offset);
}

void COffsetArray::AppendProgression(unsigned int count, std::uint64_t first, std::uint64_t stride)
{
    if (count == 0)
        return;
    if (count > std::numeric_limits<unsigned int>::max() - m_size)
        XThrowInvalidIndex();
    if (m_size == 0) {
        Free();
        m_form = PROGRESSION;
        m_base = first;
        m_stride = stride;
        m_size = count;
        return;
    }
    if (m_form == PROGRESSION) {
        const std::uint64_t ownStride = m_size > 1 ? m_stride : first - m_base;
        if (first == m_base + m_size * ownStride && (count == 1 || stride == ownStride)) {
            m_stride = ownStride;
            m_size += count;
            return;
        }
    }
    MakeRoomFor(std::max(first, first + (count - 1) * stride), m_size + count);
    for (unsigned int i = 0; i < count; i++)
        Store(m_size + i, first + i * stride);
    m_size += count;
}

void COffsetArray::PreAllocate(unsigned int size)
{
    m_reserved = size;
    if (m_form != PROGRESSION && size > m_capacity)
        SetCapacity(size);
}

void COffsetArray::FreeExtra()
{
    m_reserved = 0;
    if (m_form == PROGRESSION)
        return;
    std::uint64_t base, stride;
    if (FindProgression(base, stride)) {
        Free();
        m_form = PROGRESSION;
        m_base = base;
        m_stride = stride;
    } else
        SetCapacity(m_size);
}

bool COffsetArray::FindProgression(std::uint64_t& base, std::uint64_t& stride) const
{
    base = m_size > 0 ? (*this)[0] : 0;
    stride = m_size > 1 ? (*this)[1] - base : 0;
    for (unsigned int i = 2; i < m_size; i++)
        if ((*this)[i] != base + i * stride)
            return false;
    return true;
}

// Before `offset` is stored in an array that is to have `size` places: the form that can hold it, and the places.
void COffsetArray::MakeRoomFor(std::uint64_t offset, unsigned int size)
{
    constexpr std::uint64_t narrowEnd = std::uint64_t{1} << 32;
    Form form = offset < narrowEnd ? NARROW : WIDE;
    if (m_form == PROGRESSION && m_size && std::max(m_base, (*this)[m_size - 1]) >= narrowEnd)
        form = WIDE;
    form = std::max(form, m_form);

    const bool grows = size > m_capacity;
    const unsigned int quarter = m_capacity ? std::min(size / 4 + 16, std::numeric_limits<unsigned int>::max() - size) : 0;
    const unsigned int capacity = grows ? std::max(size + quarter, m_reserved) : m_capacity;
    if (form != m_form)
        MakeForm(form, capacity);
    else if (grows)
        SetCapacity(capacity);
}

// Spells the offsets out in a wider form, in a new block.
void COffsetArray::MakeForm(Form form, unsigned int capacity)
{
    COffsetArray wider;
    wider.m_form = form;
    wider.SetCapacity(capacity);
    for (unsigned int i = 0; i < m_size; i++)
        wider.Store(i, (*this)[i]);
    wider.m_size = m_size;
    wider.m_reserved = m_reserved;
    Swap(wider);
}

void COffsetArray::Store(unsigned int index, std::uint64_t offset)
{
    if (m_form == NARROW)
        static_cast<std::uint32_t*>(m_block)[index] = static_cast<std::uint32_t>(offset);
    else
        static_cast<std::uint64_t*>(m_block)[index] = offset;
}

void COffsetArray::SetCapacity(unsigned int capacity)
{
    m_block = XReallocBlock(m_block, m_capacity * Width(), capacity * Width());
    m_capacity = capacity;
}

void COffsetArray::Free()
{
    XFreeBlock(m_block, m_capacity * Width());
    m_block = nullptr;
    m_capacity = 0;
}

namespace {

// A progression from a stream stays within signed 64 bits at both ends, so that no term wraps around.
bool IsSoundProgression(std::uint64_t count, std::uint64_t base, std::uint64_t stride)
{
    constexpr std::int64_t top = std::numeric_limits<std::int64_t>::max();
    if (base > static_cast<std::uint64_t>(top))
        return false;
    std::int64_t last, steps;
    return count == 0 || (!__builtin_mul_overflow(static_cast<std::int64_t>(stride), static_cast<std::int64_t>(count - 1), &steps) &&
                          !__builtin_add_overflow(static_cast<std::int64_t>(base), steps, &last) && last >= 0);
}

}

void COffsetArray::Serialize(CXArchive& ar)
{
    std::uint64_t count = m_size;
    unsigned int form = m_form;
    if (ar.IsStoring())
        ar.WriteCount(count);
    else {
        RemoveAll();
        count = ar.ReadCount(0);
        if (count > std::numeric_limits<unsigned int>::max())
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
    }
    Move(ar, form);
    if (form > WIDE)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);

    if (form == PROGRESSION) {
        std::uint64_t base = m_base, stride = m_stride;
        Move(ar, base);
        Move(ar, stride);
        if (ar.IsStoring())
            return;
        if (!IsSoundProgression(count, base, stride))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        AppendProgression(static_cast<unsigned int>(count), base, stride);
        return;
    }

    if (ar.IsLoading()) {
        ar.CheckCount(count, form == NARROW ? sizeof(std::uint32_t) : sizeof(std::uint64_t));
        m_form = static_cast<Form>(form);
        SetCapacity(static_cast<unsigned int>(count));
    }
    if (form == NARROW)
        ar.MoveNumbers(static_cast<std::uint32_t*>(m_block), count);
    else
        ar.MoveNumbers(static_cast<std::uint64_t*>(m_block), count);
    m_size = static_cast<unsigned int>(count);
}
