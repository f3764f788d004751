#pragma once

#include <cstdint>

#include "channels/Cosine.h"
#include "tools/BlockVector.h"
#include "tools/Hash.h"
#include "tools/HashMix.h"

/// Seed directions of a point with many of them, by place on the unit sphere: finds the first seed within an angle without going
/// through all. For an angle below 90 degrees; the seeds lie outside the angle of each other, or have no length.
class CSeedGrid {
public:
    static constexpr int NONE = -1;

    explicit CSeedGrid(const CAngleTest& angle);

    /// Whether the angle is one that a grid works for.
    static bool Serves(const CAngleTest& angle) { return angle.GetCosine() > 0; }

    void RemoveAll();
    /// The next seed; seeds count from 0. The vector is referred to.
    void Add(const C3DTVector<float>& seed);
    /// The lowest seed within the angle of the vector, or NONE.
    int FindFirst(const C3DTVector<float>& v) const;

private:
    struct Cell {
        int x, y, z;
        bool operator==(const Cell&) const = default;
        std::uint64_t GetHash() const
        {
            return HashMix64(static_cast<std::uint64_t>(x) << 42 ^ static_cast<std::uint64_t>(y) << 21 ^ static_cast<std::uint64_t>(z));
        }
    };
    struct Seed {
        const C3DTVector<float>* vector;
        int next;    // in the same cell, or NONE
    };

    Cell CellOf(const C3DTVector<float>& v, double length) const;

    CAngleTest m_angle;
    double m_cellsPerUnit;
    CBlockVector<Seed> m_seeds;
    CHashMap<Cell, int> m_lastInCell;
};
