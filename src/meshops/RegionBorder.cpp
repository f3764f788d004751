#include "meshops/RegionBorder.h"

#include "geometry/FaceList.h"
#include "tools/BlockVector.h"

bool CRegionBorder::Trace(const CFaceList& faces, const CBlockVector<int>& region)
{
    m_line.clear();
    SortFaces(region);
    FindEdges(faces);
    if (!LinkPoints() || m_nodes.size() < 3)
        return false;

    // Every point has two neighbours: the line goes on by itself until it is back.
    const unsigned int start = m_points.GetFirst();
    unsigned int former = start, at = GetFirstNeighbour(m_nodes[start]);
    m_line.push_back({m_points.GetKey(start), m_nodes[start].face});
    while (at != start) {
        const Node& node = m_nodes[at];
        m_line.push_back({m_points.GetKey(at), node.face});
        const unsigned int next = node.neighbours[node.neighbours[0] == former];
        former = at;
        at = next;
    }
    return m_line.size() == m_nodes.size();
}

void CRegionBorder::SortFaces(const CBlockVector<int>& region)
{
    m_region.Reset();
    for (const int face : region)
        m_region.Insert(face);
    m_faces.clear();
    m_region.ForEach([&](unsigned int entry) { m_faces.push_back(m_region.GetKey(entry)); });
}

// The edges of the set with what owns them, then those of one face alone.
void CRegionBorder::FindEdges(const CFaceList& faces)
{
    m_edges.Reset(6 * static_cast<unsigned int>(m_faces.size()));
    m_owners.clear();
    for (const int face : m_faces) {
        int count;
        const int* corners = faces.GetIndexes(face, count);
        for (int k = 0; k < count; k++) {
            const unsigned int entry = m_edges.Insert(C3DEdge(corners[k], corners[k + 1 < count ? k + 1 : 0]));
            if (entry < m_owners.size())
                m_owners[entry].shared = true;
            else
                m_owners.push_back({face, false});
        }
    }
    m_border.Reset(2 * m_edges.GetCount() + 1);
    m_borderFace.clear();
    m_edges.ForEach([&](unsigned int entry) {
        if (m_owners[entry].shared)
            return;
        m_border.Insert(m_edges.GetKey(entry));
        m_borderFace.push_back(m_owners[entry].face);
    });
}

// False when some point does not have just two neighbours.
bool CRegionBorder::LinkPoints()
{
    m_points.Reset();
    m_nodes.clear();
    bool simple = true;
    const auto nodeOf = [&](int point) {
        const unsigned int entry = m_points.Insert(point);
        if (entry == m_nodes.size())
            m_nodes.emplace_back();
        return entry;
    };
    m_border.ForEach([&](unsigned int entry) {
        const C3DEdge& edge = m_border.GetKey(entry);
        const unsigned int a = nodeOf(edge.GetFirst()), b = nodeOf(edge.GetSecond());
        simple = simple && a != b && Connect(a, b, m_borderFace[entry]) && Connect(b, a, m_borderFace[entry]);
    });
    for (const Node& node : m_nodes)
        simple = simple && node.count == 2;
    return simple;
}

bool CRegionBorder::Connect(unsigned int node, unsigned int other, int face)
{
    Node& n = m_nodes[node];
    if (n.count == 2)
        return false;
    n.neighbours[n.count++] = other;
    n.face = face;
    return true;
}

// The order of a table of START_SIZE slots with the two neighbours.
unsigned int CRegionBorder::GetFirstNeighbour(const Node& node) const
{
    constexpr unsigned int SIZE = CSlotTable<int>::START_SIZE;
    const auto slotOf = [&](unsigned int neighbour) { return static_cast<unsigned int>(HashKey(m_points.GetKey(neighbour)) % SIZE); };
    const unsigned int first = slotOf(node.neighbours[0]);
    unsigned int second = slotOf(node.neighbours[1]);
    if (second == first)
        second = (second + 1) % SIZE;
    return node.neighbours[second < first];
}
