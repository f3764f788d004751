#include "channels/SeedGrid.h"

#include <cmath>

// The distance of two directions on the unit sphere is the chord of their angle. A cell is a little wider than the chord of the limit, so
// all that lies within the angle of a direction is in its cell and the 26 around it.
static double CellSize(double cosine)
{
    constexpr double ROUNDING = 1e-6;
    return std::sqrt(2 * std::max(1 - cosine, 0.0)) * (1 + ROUNDING) + ROUNDING;
}

CSeedGrid::CSeedGrid(const CAngleTest& angle) : m_angle(angle), m_cellsPerUnit(1 / CellSize(angle.GetCosine())) {}

void CSeedGrid::RemoveAll()
{
    m_seeds.clear();
    m_lastInCell.RemoveAll();
}

CSeedGrid::Cell CSeedGrid::CellOf(const C3DTVector<float>& v, double length) const
{
    const auto cell = [&](float value) { return static_cast<int>(std::floor(value / length * m_cellsPerUnit)); };
    return {cell(v.x), cell(v.y), cell(v.z)};
}

void CSeedGrid::Add(const C3DTVector<float>& seed)
{
    const int number = static_cast<int>(m_seeds.size());
    m_seeds.push_back({&seed, NONE});
    const double length = seed.Length();
    if (!(length > 0) || !std::isfinite(length))
        return;    // nothing is within the angle of no direction; see FindFirst for what is not a number
    const Cell cell = CellOf(seed, length);
    const int* former = m_lastInCell.Find(cell);
    m_seeds.back().next = former ? *former : NONE;
    m_lastInCell.SetAt(cell, number);
}

int CSeedGrid::FindFirst(const C3DTVector<float>& v) const
{
    // What is not a number is within any angle of everything, and lies in no cell: as a seed it can only be the first one.
    if (!m_seeds.empty() && m_angle.IsWithin(*m_seeds[0].vector, v))
        return 0;
    const double length = v.Length();
    if (!(length > 0) || !std::isfinite(length))
        return NONE;
    const Cell cell = CellOf(v, length);
    int first = NONE;
    for (int x = cell.x - 1; x <= cell.x + 1; x++)
        for (int y = cell.y - 1; y <= cell.y + 1; y++)
            for (int z = cell.z - 1; z <= cell.z + 1; z++) {
                const int* last = m_lastInCell.Find({x, y, z});
                for (int seed = last ? *last : NONE; seed != NONE; seed = m_seeds[seed].next)
                    if ((first == NONE || seed < first) && m_angle.IsWithin(*m_seeds[seed].vector, v))
                        first = seed;
            }
    return first;
}
