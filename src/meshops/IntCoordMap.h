#pragma once

#include <cstdint>
#include <cstring>
#include <memory>

#include "geometry/Point.h"
#include "tools/Api.h"
#include "tools/Array.h"

class C3DPointList;

/// Points by the cells of a uniform grid.
///
/// A coordinate v lies in cell (v - origin) / size, truncated towards zero: the cells around the origin are twice as wide as the others.
/// Any finite coordinate has a cell; a point with another one has none and is never entered.
class ZEL_API CIntCoordMap {
public:
    struct Cell {
        std::int64_t x = 0, y = 0, z = 0;

        bool operator==(const Cell&) const = default;
    };

    /// An empty grid. The cells are half as long as x, y and z say; 0 for y or z stands for x, and a cell without length gets length 1.
    explicit CIntCoordMap(const C3DTPoint<float>& origin, double x, double y = 0, double z = 0);
    CIntCoordMap(CIntCoordMap&&) noexcept;
    CIntCoordMap& operator=(CIntCoordMap&&) noexcept;
    ~CIntCoordMap();

    /// The empty grid around the middle of the points' box; tolerances as for C3DPointList::InitIntCoordMap. Coordinates that are not
    /// finite do not count.
    ///
    /// @param shifted  the origin moves by a quarter of the size on each axis
    static CIntCoordMap ForPoints(const C3DPointList& points, double tolerance, bool absolute, bool shifted = false);

    const C3DTPoint<float>& GetOrigin() const { return m_origin; }
    double GetCellX() const { return m_sizeX; }
    double GetCellY() const { return m_sizeY; }
    double GetCellZ() const { return m_sizeZ; }
    /// The cell of a place, in the grid or not. False, with the cell untouched, when a coordinate is not finite.
    bool GetCell(const C3DTPoint<float>& place, Cell& cell) const
    {
        const double x = (double{place.x} - m_origin.x) / m_sizeX;
        const double y = (double{place.y} - m_origin.y) / m_sizeY;
        const double z = (double{place.z} - m_origin.z) / m_sizeZ;
        if ((place.x - place.x) + (place.y - place.y) + (place.z - place.z) != 0 || x != x || y != y || z != z)
            return false;    // the difference is 0 for finite coordinates alone
        cell = {Number(x), Number(y), Number(z)};
        return true;
    }

    /// Enters the points anew, all or with `flag` those for which (flags & flag) != 0 equals `wanted`. Linear.
    void Fill(const C3DPointList& points, unsigned int flag = 0, bool wanted = true);

    /// Number of cells with points.
    unsigned int GetCount() const;
    /// The points of a cell, ascending; null and 0 for none. They belong to the map.
    const int* GetPoints(const Cell& cell, int& count) const;
    /// A set of bits for a cell and the 26 around it, x slowest and z fastest: (dx + 1) * 9 + (dy + 1) * 3 + dz + 1. A cell whose bit is
    /// clear holds no points; one whose bit is set may hold some. Costs about as much as one call of GetPoints.
    std::uint32_t GetSurroundings(const Cell& cell) const;

    /// Walk over the cells with points: start with GetFirst, end at HASH_END. GetNext gives the points of the cell at `pos` and moves on.
    ///
    /// The order is that of a hash table (tools/Hash.h) of NextPrime(2 * cells) slots, at least 101, that the cells entered in the order
    /// of their first points, with the hash x + y + z in 32 bits. The first call of GetFirst after Fill works it out: linear.
    unsigned int GetFirst() const;
    const int* GetNext(unsigned int& pos, Cell& cell, int& count) const;

    /// A fraction of the smallest extent of a box, flat extents in y and z left out; at least 1e-6.
    static double GetAbsoluteDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high);
    /// How far apart two points can be whose cells touch.
    static double GetMaxDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high);

private:
    struct Cells;

    /// Numbers of cells keep their order over the whole range of doubles. Where whole numbers end, neighbouring doubles take over.
    static std::int64_t Number(double quotient)
    {
        constexpr double LIMIT = 4611686018427387904.0;    // 2^62
        if (quotient > -LIMIT && quotient < LIMIT)
            return static_cast<std::int64_t>(quotient);
        return quotient < 0 ? -FarNumber(-quotient) : FarNumber(quotient);
    }
    static std::int64_t FarNumber(double quotient)
    {
        constexpr std::int64_t LIMIT = std::int64_t{1} << 62, LIMIT_BITS = 0x43D0000000000000;
        std::int64_t bits;
        std::memcpy(&bits, &quotient, sizeof bits);
        return LIMIT + (bits - LIMIT_BITS);
    }

    C3DTPoint<float> m_origin;
    double m_sizeX, m_sizeY, m_sizeZ;
    std::unique_ptr<Cells> m_cells;    ///< null without points
};

/// A grid with a buffer for C3DPointList::Get3DProximityPoints. From C3DPointList::InitWeldMap.
struct WeldProximityMap {
    CXArray<int, int> result;
    CIntCoordMap* map = nullptr;
    void* reserved = nullptr;
};
