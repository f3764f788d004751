#pragma once

#include <bit>

#include "geometry/4x4Matrix.h"
#include "geometry/Swap.h"

// What the lists of 3D points and of 3D vectors do to every element. POINT has x, y, z behind its flags.

/// The bits of a float for a checksum, with -0 counted as 0.
inline unsigned int ChecksumBits(float value) { return value == 0 ? 0 : std::bit_cast<unsigned int>(value); }

/// h = (h + i) * 16 + the bits of the coordinates; elements with POINT_INVALID are passed over and still counted in i.
///
/// @param first  from GetChecksumStart
template <class POINT> unsigned int ChecksumOfCoordinates(const POINT* points, int first, int count)
{
    unsigned int hash = 0;
    for (int i = first; i < count; i++) {
        const POINT& p = points[i];
        if (!(p.flags & POINT_INVALID))
            hash = (hash + static_cast<unsigned int>(i)) * 16 + (ChecksumBits(p.x) + ChecksumBits(p.y) + ChecksumBits(p.z));
    }
    return hash;
}

template <class POINT> bool SwapAllCoordinates(POINT* points, int count, unsigned int code)
{
    int a, b, mirror;
    if (!GetXYZSwap(code, a, b, mirror))
        return false;
    for (int i = 0; i < count; i++) {
        float* values = points[i].ValPtr();
        if (a >= 0)
            std::swap(values[a], values[b]);
        if (mirror >= 0)
            values[mirror] = -values[mirror];
    }
    return true;
}

/// x, y, z of a point or vector in the first three lanes, flags in none of them: the coordinates of a list element are loaded together
/// with its flags, since those 16 bytes lie inside the element.
using Lanes [[gnu::vector_size(16)]] = float;

template <class POINT> Lanes LoadLanes(const POINT& p)
{
    Lanes lanes;    // flags, x, y, z
    static_assert(sizeof(POINT) == 24);
    __builtin_memcpy(&lanes, reinterpret_cast<const unsigned char*>(&p) + sizeof(void*), sizeof(lanes));
    return lanes;
}

/// Writes the coordinates with one store; the flags, which `loaded` has in its first lane, stay as they are.
template <class POINT> void StoreLanes(POINT& p, Lanes lanes, Lanes loaded)
{
    lanes[0] = loaded[0];
    __builtin_memcpy(reinterpret_cast<unsigned char*>(&p) + sizeof(void*), &lanes, sizeof(lanes));
}

/// The matrix as columns in the order of LoadLanes: lane 0 is unused.
struct LaneMatrix {
    explicit LaneMatrix(const C4x4TMatrix<float>& m)
    {
        for (int column = 0; column < 4; column++)
            columns[column] = Lanes{0, m.m[0][column], m.m[1][column], m.m[2][column]};
    }
    /// Row times point, summed from the left in float, as matrix * point does.
    Lanes Point(Lanes p) const { return Vector(p) + columns[3]; }
    Lanes Vector(Lanes v) const { return columns[0] * Lane<1>(v) + columns[1] * Lane<2>(v) + columns[2] * Lane<3>(v); }

private:
    template <int LANE> static Lanes Lane(Lanes p) { return Lanes{p[LANE], p[LANE], p[LANE], p[LANE]}; }

    Lanes columns[4];
};
