#pragma once

// The table under the grids of this room: cells in the order in which they were first met, with a value each.
//
//   slots    hash and entry number side by side, so that a probe looks at another cell only when the hashes agree
//   filter   a bit a cell, cells of one block of 4 x 4 x 4 in one word: what surrounds a cell lies in 3.4 words on average,
//            where 27 probes would have gone. Several blocks may share a word: a set bit says "perhaps"
//
// All memory is sized by the number of points that are to come and touched as cells come.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "channels/Block.h"
#include "meshops/IntCoordMap.h"

template <class VALUE> class CCellTable {
public:
    using Cell = CIntCoordMap::Cell;
    static constexpr unsigned int NO_ENTRY = 0xFFFFFFFF;

    struct Entry {
        Cell cell;
        VALUE value;
    };

    /// `mostCells` is a bound, which costs address space but no memory.
    explicit CCellTable(std::size_t mostCells)
        : m_entries(mostCells), m_slots(std::bit_ceil(std::max<std::size_t>(mostCells / 2, 64)), Slot{0, NO_ENTRY}),
          m_filter(std::bit_ceil(std::max<std::size_t>(mostCells / 4, 64)), std::uint64_t{0}), m_slotMask(m_slots.GetSize() - 1),
          m_filterMask(m_filter.GetSize() - 1)
    {
    }

    unsigned int GetCount() const { return m_count; }
    Entry& operator[](unsigned int entry) { return m_entries[entry]; }
    const Entry& operator[](unsigned int entry) const { return m_entries[entry]; }

    static std::uint32_t Hash(const Cell& cell) { return Mix(cell.x, cell.y, cell.z); }
    void PrefetchSlot(std::uint32_t hash) const { __builtin_prefetch(&m_slots[hash & m_slotMask]); }
    /// Behind PrefetchSlot: the entry that the slot names.
    void PrefetchEntry(std::uint32_t hash) const
    {
        const Slot slot = m_slots[hash & m_slotMask];
        if (slot.entry != NO_ENTRY)
            __builtin_prefetch(&m_entries[slot.entry]);
    }

    unsigned int Find(const Cell& cell) const { return Find(cell, Hash(cell)); }
    unsigned int Find(const Cell& cell, std::uint32_t hash) const { return m_slots[Probe(cell, hash)].entry; }
    /// The entry of a cell; a new one gets the next number and the given value.
    unsigned int Insert(const Cell& cell, std::uint32_t hash, const VALUE& value, bool& added)
    {
        std::size_t place = Probe(cell, hash);
        added = m_slots[place].entry == NO_ENTRY;
        if (!added)
            return m_slots[place].entry;
        const unsigned int entry = m_count++;
        m_entries[entry] = {cell, value};
        m_slots[place] = {hash, entry};
        m_filter[BlockHash(cell.x >> 2, cell.y >> 2, cell.z >> 2) & m_filterMask] |= std::uint64_t{1} << LocalBit(cell);
        if (std::size_t{m_count} * 8 > m_slots.GetSize() * 5)
            Grow();
        return entry;
    }

    /// Bits of the cells around that may be there (CIntCoordMap::GetSurroundings).
    std::uint32_t GetSurroundings(const Cell& cell) const
    {
        // Each axis: the block of the lowest of the three cells, the place in it, and whether the three reach into the next block.
        const std::int64_t x = cell.x - 1, y = cell.y - 1, z = cell.z - 1;
        const int localX = x & 3, localY = y & 3, localZ = z & 3;
        std::uint64_t words[2][2][2] = {};
        for (int i = 0; i <= localX >> 1; i++)
            for (int j = 0; j <= localY >> 1; j++)
                for (int k = 0; k <= localZ >> 1; k++)
                    words[i][j][k] = m_filter[BlockHash((x >> 2) + i, (y >> 2) + j, (z >> 2) + k) & m_filterMask];
        std::uint32_t around = 0;
        for (int dx = 0; dx < 3; dx++)
            for (int dy = 0; dy < 3; dy++) {
                const int lx = localX + dx, ly = localY + dy, shift = (lx & 3) * 16 + (ly & 3) * 4;
                const auto& row = words[lx >> 2][ly >> 2];
                const std::uint32_t line = (row[0] >> shift & 15) | (row[1] >> shift & 15) << 4;
                around |= (line >> localZ & 7) << (dx * 9 + dy * 3);
            }
        return around;
    }
    static Cell CellAround(const Cell& cell, int bit) { return {cell.x + bit / 9 - 1, cell.y + bit / 3 % 3 - 1, cell.z + bit % 3 - 1}; }

    /// `visit(entry)` for the cells of the table that touch a cell, itself among them, in the order of the bits.
    template <class VISIT> void ForSurroundings(const Cell& cell, VISIT visit) const
    {
        for (std::uint32_t around = GetSurroundings(cell); around; around &= around - 1) {
            const unsigned int entry = Find(CellAround(cell, std::countr_zero(around)));
            if (entry != NO_ENTRY)
                visit(entry);
        }
    }

private:
    struct Slot {
        std::uint32_t hash, entry;
    };

    static std::uint32_t Mix(std::int64_t x, std::int64_t y, std::int64_t z)
    {
        std::uint64_t hash = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4Fu +
                             static_cast<std::uint64_t>(z) * 0x165667B19E3779F9u;
        hash = (hash ^ hash >> 32) * 0xD6E8FEB86659FD93u;
        return static_cast<std::uint32_t>(hash >> 32);
    }
    static std::uint32_t BlockHash(std::int64_t x, std::int64_t y, std::int64_t z) { return Mix(x, y, z); }
    static int LocalBit(const Cell& cell) { return static_cast<int>((cell.x & 3) * 16 + (cell.y & 3) * 4 + (cell.z & 3)); }

    /// The slot of the cell, or the empty one that ends the search.
    std::size_t Probe(const Cell& cell, std::uint32_t hash) const
    {
        std::size_t place = hash & m_slotMask;
        while (m_slots[place].entry != NO_ENTRY && (m_slots[place].hash != hash || !(m_entries[m_slots[place].entry].cell == cell)))
            place = (place + 1) & m_slotMask;
        return place;
    }
    void Grow()
    {
        CBlock<Slot> slots(m_slots.GetSize() * 2, Slot{0, NO_ENTRY});
        m_slotMask = slots.GetSize() - 1;
        for (std::size_t i = 0; i < m_slots.GetSize(); i++) {
            if (m_slots[i].entry == NO_ENTRY)
                continue;
            std::size_t place = m_slots[i].hash & m_slotMask;
            while (slots[place].entry != NO_ENTRY)
                place = (place + 1) & m_slotMask;
            slots[place] = m_slots[i];
        }
        m_slots = std::move(slots);
    }

    CBlock<Entry> m_entries;    ///< `m_count` of them made
    CBlock<Slot> m_slots;
    CBlock<std::uint64_t> m_filter;
    std::size_t m_slotMask, m_filterMask;
    unsigned int m_count = 0;
};

/// Calls `place(point, entryHash or null when the point has no cell, cell)` for all points in order, with the table's memory on its way:
/// a batch of cells is worked out, their slots and then their entries are asked for, and only then is anything looked at.
template <class VALUE, class PLACE, class GOON>
bool ForCellsOfPoints(const CIntCoordMap& grid, const CCellTable<VALUE>& table, const C3DTPoint<float>* points, int count, PLACE place,
                      GOON goOn)
{
    constexpr int BATCH = 64;
    CIntCoordMap::Cell cells[BATCH];
    std::uint32_t hashes[BATCH];
    bool inGrid[BATCH];
    for (int start = 0; start < count; start += BATCH) {
        const int size = std::min(BATCH, count - start);
        for (int k = 0; k < size; k++) {
            inGrid[k] = grid.GetCell(points[start + k], cells[k]);
            hashes[k] = table.Hash(cells[k]);
            table.PrefetchSlot(hashes[k]);
        }
        for (int k = 0; k < size; k++)
            table.PrefetchEntry(hashes[k]);
        for (int k = 0; k < size; k++)
            place(start + k, inGrid[k], cells[k], hashes[k]);
        if (!goOn(start + size))
            return false;
    }
    return true;
}
