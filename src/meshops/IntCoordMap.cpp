// The grid over points that welding, the symmetry map and the slicer share.

#include "meshops/IntCoordMap.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "geometry/3DPointList.h"
#include "meshops/CellTable.h"
#include "meshops/Extent.h"
#include "tools/BlockVector.h"
#include "tools/Hash.h"

/// The points, cell by cell in one array. The value of a cell is where its points end there, and they begin where those of the cell before
/// end.
struct CIntCoordMap::Cells {
    explicit Cells(int points) : table(static_cast<std::size_t>(points)) {}

    const int* GetPoints(unsigned int entry, int& count) const
    {
        const unsigned int begin = entry ? table[entry - 1].value : 0;
        count = static_cast<int>(table[entry].value - begin);
        return points.GetData() + begin;
    }

    CCellTable<unsigned int> table;
    CBlock<int> points;
    CBlockVector<unsigned int> order;    ///< entries in the order of the walk; empty until it is asked for
};

// Geometry

static double CellSize(double size) { return size / 2 == 0 ? 1.0 : size / 2; }

CIntCoordMap::CIntCoordMap(const C3DTPoint<float>& origin, double x, double y, double z)
    : m_origin(origin), m_sizeX(CellSize(x)), m_sizeY(CellSize(y == 0 ? x : y)), m_sizeZ(CellSize(z == 0 ? x : z))
{
}
CIntCoordMap::CIntCoordMap(CIntCoordMap&&) noexcept = default;
CIntCoordMap& CIntCoordMap::operator=(CIntCoordMap&&) noexcept = default;
CIntCoordMap::~CIntCoordMap() = default;

CIntCoordMap CIntCoordMap::ForPoints(const C3DPointList& points, double tolerance, bool absolute, bool shifted)
{
    constexpr double DEFAULT_TOLERANCE = 0.001;
    if (tolerance == 0) {
        tolerance = DEFAULT_TOLERANCE;
        absolute = false;
    }
    C3DTPoint<float> low, high;
    points.GetBoundingBox(low, high);
    const double size = absolute ? tolerance : GetAbsoluteDistance(tolerance, low, high);
    const double shift = shifted ? size * 0.25 : 0;
    C3DTPoint<float> origin;
    for (int axis = 0; axis < 3; axis++)
        origin[axis] = static_cast<float>(Middle(low[axis], high[axis]) + shift);
    return CIntCoordMap(origin, size);
}

double CIntCoordMap::GetAbsoluteDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high)
{
    constexpr double FLAT = 1e-6;
    double smallest = Extent(low.x, high.x);
    for (const double extent : {Extent(low.y, high.y), Extent(low.z, high.z)})
        if (extent > FLAT)
            smallest = std::min(smallest, extent);
    return std::max(FLAT, smallest * tolerance);
}

double CIntCoordMap::GetMaxDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high)
{
    return 2 * std::sqrt(3.0) * GetAbsoluteDistance(tolerance, low, high);
}

// Points

void CIntCoordMap::Fill(const C3DPointList& list, unsigned int flag, bool wanted)
{
    const int count = list.GetSize();
    const C3DTPoint<float>* points = list.GetFirst();
    m_cells = std::make_unique<Cells>(count);
    CCellTable<unsigned int>& table = m_cells->table;

    // Count, then sum up to where each cell begins, then fill: the values then stand at the ends.
    CBlock<unsigned int> entryOf(static_cast<std::size_t>(count));
    ForCellsOfPoints(
        *this, table, points, count,
        [&](int point, bool inGrid, const Cell& cell, std::uint32_t hash) {
            bool added;
            if (!inGrid || (flag != 0 && ((points[point].flags & flag) != 0) != wanted))
                entryOf[point] = table.NO_ENTRY;
            else
                table[entryOf[point] = table.Insert(cell, hash, 0, added)].value++;
        },
        [](int) { return true; });
    unsigned int entered = 0;
    for (unsigned int entry = 0; entry < table.GetCount(); entry++)
        entered += std::exchange(table[entry].value, entered);
    m_cells->points = CBlock<int>(entered);
    for (int i = 0; i < count; i++)
        if (entryOf[i] != table.NO_ENTRY)
            m_cells->points[table[entryOf[i]].value++] = i;
}

unsigned int CIntCoordMap::GetCount() const { return m_cells ? m_cells->table.GetCount() : 0; }

const int* CIntCoordMap::GetPoints(const Cell& cell, int& count) const
{
    count = 0;
    if (!m_cells)
        return nullptr;
    const unsigned int entry = m_cells->table.Find(cell);
    return entry == m_cells->table.NO_ENTRY ? nullptr : m_cells->GetPoints(entry, count);
}

std::uint32_t CIntCoordMap::GetSurroundings(const Cell& cell) const { return m_cells ? m_cells->table.GetSurroundings(cell) : 0; }

// Walk

/// Entries in the slot order that the header tells. A sum of coordinates puts whole diagonals on one probe path; but places that were taken
/// stay taken, so each path goes on where the cell before it ended.
static CBlockVector<unsigned int> OrderBySlots(const CCellTable<unsigned int>& table)
{
    const unsigned int count = table.GetCount();
    const unsigned int size = std::max(NextPrime(101), NextPrime(2 * count));
    CBlockVector<unsigned int> slots(size, table.NO_ENTRY), nextProbe(size, 0);
    for (unsigned int entry = 0; entry < count; entry++) {
        const CIntCoordMap::Cell& cell = table[entry].cell;
        const unsigned int start =
            (static_cast<std::uint32_t>(cell.x) + static_cast<std::uint32_t>(cell.y) + static_cast<std::uint32_t>(cell.z)) % size;
        for (;;) {
            const std::uint64_t probe = nextProbe[start]++;
            unsigned int& slot = slots[(start + probe * probe) % size];
            if (slot == table.NO_ENTRY) {
                slot = entry;
                break;
            }
        }
    }
    std::erase(slots, table.NO_ENTRY);
    return slots;
}

unsigned int CIntCoordMap::GetFirst() const
{
    if (GetCount() == 0)
        return HASH_END;
    if (m_cells->order.empty())
        m_cells->order = OrderBySlots(m_cells->table);
    return 0;
}

const int* CIntCoordMap::GetNext(unsigned int& pos, Cell& cell, int& count) const
{
    const unsigned int entry = m_cells->order[pos];
    pos = pos + 1 < m_cells->order.size() ? pos + 1 : HASH_END;
    cell = m_cells->table[entry].cell;
    return m_cells->GetPoints(entry, count);
}

// Point lists

CIntCoordMap* C3DPointList::InitIntCoordMap(double tolerance, bool absolute) { return GetIntCoordMap(tolerance, absolute, false); }

CIntCoordMap* C3DPointList::GetIntCoordMap(double tolerance, bool absolute, bool shifted)
{
    if (GetSize() == 0)
        return nullptr;
    auto map = std::make_unique<CIntCoordMap>(CIntCoordMap::ForPoints(*this, tolerance, absolute, shifted));
    map->Fill(*this);
    return map.release();
}

WeldProximityMap* C3DPointList::InitWeldMap(double tolerance, bool absolute)
{
    CIntCoordMap* map = InitIntCoordMap(tolerance, absolute);
    return map ? new WeldProximityMap{{}, map} : nullptr;
}

void C3DPointList::DeleteWeldMap(WeldProximityMap* map) const
{
    if (map)
        delete map->map;
    delete map;
}

int* C3DPointList::Get3DProximityPoints(int point, WeldProximityMap* map, int& count)
{
    count = 0;
    CIntCoordMap::Cell cell;
    const C3DTPoint<float>* place = point >= 0 ? ElementAt(point) : nullptr;
    if (!map || !place || !map->map->GetCell(*place, cell))
        return nullptr;
    for (std::uint32_t around = map->map->GetSurroundings(cell); around; around &= around - 1) {
        int found;
        const int* points = map->map->GetPoints(CCellTable<unsigned int>::CellAround(cell, std::countr_zero(around)), found);
        if (count + found > map->result.GetSize())
            map->result.SetSize(std::max({512, count + found, 2 * map->result.GetSize()}));
        int* end = std::remove_copy(points, points + found, map->result.GetData() + count, point);
        count = static_cast<int>(end - map->result.GetData());
    }
    return count ? map->result.GetData() : nullptr;
}
