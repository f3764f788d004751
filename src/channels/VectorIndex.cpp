#include "channels/VectorIndex.h"

#include <algorithm>
#include <bit>

static constexpr unsigned int FEWEST = 64;

CVectorIndex::CVectorIndex(unsigned int expected) : m_capacity(std::max(expected, FEWEST))
{
    m_vectors = static_cast<Vector*>(XAllocBlock(m_capacity * sizeof(Vector)));
    MakeSlots(std::bit_ceil(std::size_t{m_capacity} * 3 / 2));
}

CVectorIndex::~CVectorIndex()
{
    XFreeBlock(m_vectors, m_capacity * sizeof(Vector));
    XFreeBlock(m_slots, m_slotCount * sizeof(Slot));
}

void CVectorIndex::MakeSlots(std::size_t count)
{
    XFreeBlock(m_slots, m_slotCount * sizeof(Slot));
    m_slots = static_cast<Slot*>(XAllocBlock(count * sizeof(Slot)));
    m_slotCount = count;
    std::memset(static_cast<void*>(m_slots), 0, count * sizeof(Slot));
}

CVectorIndex::Hash CVectorIndex::GetHash(const C3DTVector<float>& v)
{
    const auto bits = [](float value) { return std::uint64_t{std::bit_cast<std::uint32_t>(value + 0.0f)}; };    // -0 equals 0
    return {HashMix64((bits(v.x) << 32 | bits(v.y)) ^ HashMix64(bits(v.z)))};
}

unsigned int CVectorIndex::Add(const C3DTVector<float>& v, Hash hash)
{
    const Vector vector{v.x, v.y, v.z};
    if (!(vector == vector))
        return Append(vector);
    if (4 * std::size_t{m_count} >= 3 * m_slotCount)
        GrowSlots();
    const auto tag = static_cast<std::uint32_t>(hash.value >> 32);
    std::size_t slot = SlotOf(hash);
    for (; m_slots[slot].number; slot = (slot + 1) & (m_slotCount - 1))
        if (m_slots[slot].tag == tag && m_vectors[m_slots[slot].number - 1] == vector)
            return m_slots[slot].number - 1;
    m_slots[slot] = {tag, m_count + 1};
    return Append(vector);
}

unsigned int CVectorIndex::Append(const Vector& vector)
{
    if (m_count == m_capacity) {
        const unsigned int capacity = m_capacity + m_capacity / 2;
        m_vectors = static_cast<Vector*>(XReallocBlock(m_vectors, m_capacity * sizeof(Vector), capacity * sizeof(Vector)));
        m_capacity = capacity;
    }
    m_vectors[m_count] = vector;
    return m_count++;
}

void CVectorIndex::GrowSlots()
{
    MakeSlots(2 * m_slotCount);
    for (std::uint32_t i = 0; i < m_count; i++) {
        const Vector& vector = m_vectors[i];
        if (!(vector == vector))
            continue;
        const Hash hash = GetHash(C3DTVector<float>(vector.x, vector.y, vector.z));
        std::size_t slot = SlotOf(hash);
        while (m_slots[slot].number)
            slot = (slot + 1) & (m_slotCount - 1);
        m_slots[slot] = {static_cast<std::uint32_t>(hash.value >> 32), i + 1};
    }
}
