#include "VertexSplit.h"

#include <algorithm>

VertexSplit::VertexSplit(const ObjectCorners& corners, std::vector<const CornerLayer*> layers)
    : m_points(corners.GetCornerPoints()), m_layers(std::move(layers)), m_firstOfPoint(corners.GetPointCount(), -1)
{
}

void VertexSplit::Run(std::size_t first, std::size_t count)
{
    for (const unsigned int corner : m_corners)    // of the run before: not all points, there may be thousands of runs
        m_firstOfPoint[static_cast<std::size_t>(m_points[corner])] = -1;
    m_corners.clear();
    m_vertices.clear();
    m_vertices.reserve(count);
    m_slots.assign(64, -1);
    m_hashed = 0;
    for (std::size_t corner = first; corner < first + count; corner++)
        m_vertices.push_back(FindVertex(static_cast<unsigned int>(corner)));
}

unsigned int VertexSplit::FindVertex(unsigned int corner)
{
    int& first = m_firstOfPoint[static_cast<std::size_t>(m_points[corner])];
    if (first < 0) {
        first = static_cast<int>(AddVertex(corner));
        return static_cast<unsigned int>(first);
    }
    if (IsSame(corner, static_cast<unsigned int>(first)))
        return static_cast<unsigned int>(first);
    const std::size_t mask = m_slots.size() - 1;
    std::size_t place = Hash(corner) & mask;
    for (; m_slots[place] >= 0; place = (place + 1) & mask)
        if (IsSame(corner, static_cast<unsigned int>(m_slots[place])))
            return static_cast<unsigned int>(m_slots[place]);
    const unsigned int vertex = AddVertex(corner);
    m_slots[place] = static_cast<int>(vertex);
    if (2 * ++m_hashed > m_slots.size())
        Grow();
    return vertex;
}

unsigned int VertexSplit::AddVertex(unsigned int corner)
{
    m_corners.push_back(corner);
    return static_cast<unsigned int>(m_corners.size() - 1);
}

bool VertexSplit::IsSame(unsigned int corner, unsigned int vertex) const
{
    const unsigned int other = m_corners[vertex];
    return m_points[corner] == m_points[other] && std::ranges::all_of(m_layers, [corner, other](const CornerLayer* layer) {
               return layer->corners[corner] == layer->corners[other];
           });
}

std::size_t VertexSplit::Hash(unsigned int corner) const
{
    std::uint64_t hash = HashMix64(static_cast<std::uint64_t>(m_points[corner]));
    for (const CornerLayer* layer : m_layers)
        hash = HashMix64(hash ^ static_cast<std::uint32_t>(layer->corners[corner]));
    return hash;
}

void VertexSplit::Grow()
{
    std::vector<int> former(2 * m_slots.size(), -1);
    former.swap(m_slots);
    const std::size_t mask = m_slots.size() - 1;
    for (const int vertex : former)
        if (vertex >= 0) {
            std::size_t place = Hash(m_corners[static_cast<std::size_t>(vertex)]) & mask;
            while (m_slots[place] >= 0)
                place = (place + 1) & mask;
            m_slots[place] = vertex;
        }
}
