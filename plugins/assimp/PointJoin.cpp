#include "PointJoin.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

std::uint64_t Bits(float value) { return std::bit_cast<std::uint32_t>(value == 0 ? 0.0f : value); }

std::uint64_t Hash(const Position& p)
{
    const std::uint64_t xy = Bits(p.x) | Bits(p.y) << 32;
    std::uint64_t hash = (xy ^ Bits(p.z) * 0x9E3779B97F4A7C15u) * 0xD6E8FEB86659FD93u;
    return hash ^ hash >> 32;
}

// By bits too: a million normals that are no numbers must find one another, not search past one another.
bool operator==(const Position& a, const Position& b)
{
    return (a.x == b.x && a.y == b.y && a.z == b.z) || std::memcmp(&a, &b, sizeof a) == 0;
}

std::uint32_t Tag(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

}

PointJoin::PointJoin(std::size_t expected) : m_slots(std::bit_ceil(std::max<std::size_t>(2 * expected, 64))), m_mask(m_slots.size() - 1)
{
    m_positions.reserve(expected);
}

void PointJoin::Add(const Position* positions, std::size_t count, BlockVector<int>& numbers)
{
    numbers.reserve(numbers.size() + count);
    std::uint64_t hashes[BATCH];
    for (std::size_t done = 0; done < count; done += BATCH) {
        const std::size_t batch = std::min(BATCH, count - done);
        if (2 * (m_positions.size() + batch) > m_slots.size())
            Grow();
        for (std::size_t i = 0; i < batch; i++) {
            hashes[i] = Hash(positions[done + i]);
            __builtin_prefetch(&m_slots[hashes[i] & m_mask]);
        }
        for (std::size_t i = 0; i < batch; i++)
            if (const Slot& slot = m_slots[hashes[i] & m_mask]; slot.number != 0 && slot.tag == Tag(hashes[i]))
                __builtin_prefetch(&m_positions[static_cast<std::size_t>(slot.number - 1)]);
        for (std::size_t i = 0; i < batch; i++)
            numbers.push_back(Find(positions[done + i], hashes[i]));
    }
}

int PointJoin::Find(const Position& position, std::uint64_t hash)
{
    std::size_t place = hash & m_mask;
    for (; m_slots[place].number != 0; place = (place + 1) & m_mask)
        if (const Slot& slot = m_slots[place]; slot.tag == Tag(hash) && m_positions[static_cast<std::size_t>(slot.number - 1)] == position)
            return slot.number - 1;
    m_positions.push_back(position);
    m_slots[place] = {Tag(hash), static_cast<int>(m_positions.size())};
    return m_slots[place].number - 1;
}

void PointJoin::Grow()
{
    m_slots.assign(m_slots.size() * 2, {});
    m_mask = m_slots.size() - 1;
    for (std::size_t i = 0; i < m_positions.size(); i++) {
        const std::uint64_t hash = Hash(m_positions[i]);
        std::size_t place = hash & m_mask;
        while (m_slots[place].number != 0)
            place = (place + 1) & m_mask;
        m_slots[place] = {Tag(hash), static_cast<int>(i) + 1};
    }
}
