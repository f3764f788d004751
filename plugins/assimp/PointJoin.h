#pragma once

#include <vector>

#include <3dzel.h>

/// Three coordinates of a point, a normal or a texture, as the import library keeps them.
struct Position {
    float x, y, z;
};

/// Numbers positions, or other triples of floats, so that equal ones share a number, in the order in which they are first met.
///
/// Equal means equal as floats: -0 is 0; what is not a number equals what has the same bits. Positions come by the million with no order to
/// rely on, so the table is probed a batch at a time, behind prefetches.
class PointJoin {
public:
    /// `expected`: number of different positions to be ready for; more may come.
    explicit PointJoin(std::size_t expected);

    /// Appends the number of each position to `numbers`.
    void Add(const Position* positions, std::size_t count, std::vector<int>& numbers);
    /// The different positions, by number.
    const std::vector<Position>& GetPositions() const { return m_positions; }

private:
    static constexpr std::size_t BATCH = 32;

    int Find(const Position& position, std::size_t slot);
    void Grow();

    std::vector<int> m_slots;    ///< number + 1; 0 is free
    std::size_t m_mask;
    std::vector<Position> m_positions;
};
