#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <3dzel.h>

/// Three coordinates of a point, a normal or a texture, as the import library keeps them.
struct Position {
    float x, y, z;
};

/// A vector of big lists: blocks that stand on huge pages and are used again.
template <class T> using BlockVector = std::vector<T, XBlockAllocator<T>>;

/// Numbers positions, or other triples of floats, so that equal ones share a number, in the order in which they are first met.
///
/// Equal means equal as floats: -0 is 0; what is not a number equals what has the same bits. Positions come by the million with no order to
/// rely on, so the table is probed a batch at a time, behind prefetches, and keeps a part of each hash: what differs there is not looked at.
class PointJoin {
public:
    /// `expected`: number of different positions to be ready for; more may come.
    explicit PointJoin(std::size_t expected);

    /// Appends the number of each position to `numbers`.
    void Add(const Position* positions, std::size_t count, BlockVector<int>& numbers);
    /// The different positions, by number.
    const BlockVector<Position>& GetPositions() const { return m_positions; }
    /// The same, out of here.
    BlockVector<Position> TakePositions() { return std::move(m_positions); }

private:
    static constexpr std::size_t BATCH = 32;

    struct Slot {
        std::uint32_t tag;    ///< upper half of the hash
        int number;           ///< of the position, + 1; 0 is free
    };

    int Find(const Position& position, std::uint64_t hash);
    void Grow();

    BlockVector<Slot> m_slots;
    std::size_t m_mask;
    BlockVector<Position> m_positions;
};
