// The two graphs of a face list: which faces touch a point, and which run along an edge.
//
//   points    count the faces of each point, lay out one pool with exactly that room, fill it face by face
//   edges     one pass: most edges have the two faces that an entry is made for; the map looks a batch of edges up at a time
//
// Either way faces come in order, so that each entry ascends. Corners outside the point list, which only broken input
// has, are left out of the point graph. The edge graph does not know the points: there such an edge is one like any
// other.

#include <algorithm>
#include <utility>

#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"
#include "tools/AssociationMap.h"
#include "tools/BlockVector.h"

namespace {

constexpr unsigned int FEW = 16;    // up to here a search costs less than memory

// Passes the corners of a face on, each point once, the first time that it comes.
class DistinctCorners {
public:
    explicit DistinctCorners(unsigned int pointCount) : m_pointCount(pointCount) {}

    template <class BODY> void Visit(const int* corners, int count, int face, BODY body)
    {
        if (static_cast<unsigned int>(count) > FEW)
            return VisitMany(corners, count, face, body);
        for (int k = 0; k < count; k++)
            if (IsPoint(corners[k]) && !Contains(corners, k, corners[k]))
                body(corners[k]);
    }

private:
    bool IsPoint(int corner) const { return static_cast<unsigned int>(corner) < m_pointCount; }
    static bool Contains(const int* corners, int count, int point)
    {
        for (int k = 0; k < count; k++)
            if (corners[k] == point)
                return true;
        return false;
    }
    template <class BODY> void VisitMany(const int* corners, int count, int face, BODY body)
    {
        if (m_lastFace.empty())
            m_lastFace.assign(m_pointCount, -1);
        for (int k = 0; k < count; k++) {
            if (!IsPoint(corners[k]) || m_lastFace[static_cast<unsigned int>(corners[k])] == face)
                continue;
            m_lastFace[static_cast<unsigned int>(corners[k])] = face;
            body(corners[k]);
        }
    }

    unsigned int m_pointCount;
    CBlockVector<int> m_lastFace;    // by point, for faces with many corners
};

}

// --- Life ------------------------------------------------------------------------------------------------------------

void CFaceList::InitPointToFaceGraph(const CGeomInfo* info)
{
    UpdateList(info);
    if (m_pointGraphUse == 0 || m_pointGraph.GetEntryCount() == 0)
        CreatePointToFaceGraph(info);
    m_pointGraphUse++;
}

void CFaceList::DeletePointToFaceGraph()
{
    if (m_pointGraphUse > 0 && --m_pointGraphUse == 0)
        m_pointGraph.RemoveAll();
}

bool CFaceList::UpdatePointToFaceGraph(const CGeomInfo* info)
{
    if (m_pointGraphUse > 0)
        CreatePointToFaceGraph(info);
    return false;
}

void CFaceList::InitEdgeToFaceGraph(const CGeomInfo* info, CBlockVector<unsigned int>* entries)
{
    UpdateList(info);
    if (m_edgeGraphUse == 0 || GetEdgeGraph().IsEmpty())
        CreateEdgeToFaceGraph(entries);
    m_edgeGraphUse++;
}

void CFaceList::DeleteEdgeToFaceGraph()
{
    if (m_edgeGraphUse > 0 && --m_edgeGraphUse == 0)
        m_edgeGraph.reset();
}

bool CFaceList::UpdateEdgeToFaceGraph(const CGeomInfo*)
{
    if (m_edgeGraphUse == 0)
        return false;
    CreateEdgeToFaceGraph(nullptr);
    return true;
}

CFaceList::EdgeGraph& CFaceList::GetEdgeGraph()
{
    if (!m_edgeGraph)
        m_edgeGraph = std::make_unique<EdgeGraph>();
    return *m_edgeGraph;
}

// Their users stay counted: the next Init builds afresh for all of them.
void CFaceList::FreeGraphs()
{
    m_pointGraph.RemoveAll();
    m_edgeGraph.reset();
}

void CFaceList::DropGraphs()
{
    FreeGraphs();
    m_pointGraphUse = m_edgeGraphUse = 0;
}

// --- Build -----------------------------------------------------------------------------------------------------------

// Count, lay out, fill. PLACE counts the items of the pool.
template <class PLACE> static void BuildPointGraph(const CFaceList& faces, unsigned int pointCount, CFaceList::PointGraph& graph)
{
    CBlockVector<PLACE> table(pointCount, 0);
    PLACE* const byPoint = table.data();    // the number of its faces, then the place of its next one
    DistinctCorners distinct(pointCount);
    faces.ForEachLiveFace(
        [&](int face, const int* corners, int count) { distinct.Visit(corners, count, face, [&](int point) { byPoint[point]++; }); });
    int* const pool = graph.InitPlaces(pointCount, byPoint);
    distinct = DistinctCorners(pointCount);
    faces.ForEachLiveFace([&](int face, const int* corners, int count) {
        distinct.Visit(corners, count, face, [&](int point) { pool[byPoint[point]++] = face; });
    });
}

void CFaceList::CreatePointToFaceGraph(const CGeomInfo* info)
{
    m_pointGraph.RemoveAll();
    const CPointList* points = info ? info->GetSrcPointList() : nullptr;
    if (!points || m_size == 0)
        return;
    const unsigned int pointCount = static_cast<unsigned int>(points->GetSize());
    const std::uint64_t mostItems = m_indexes.GetPoolUsed() / sizeof(int) + std::uint64_t{pointCount} * PointGraph::HEADER_ITEMS;
    if (mostItems <= 0xFFFFFFFF)
        BuildPointGraph<std::uint32_t>(*this, pointCount, m_pointGraph);
    else
        BuildPointGraph<std::uint64_t>(*this, pointCount, m_pointGraph);
}

void CFaceList::CreateEdgeToFaceGraph(CBlockVector<unsigned int>* entries)
{
    constexpr unsigned int BATCH = 256;    // edges handed over together
    EdgeGraph& graph = GetEdgeGraph();
    graph.RemoveAll();
    if (m_size == 0)
        return;
    // A closed quad mesh has two edges a face, a triangle mesh fewer. The eighth on top is for borders: growth costs as
    // much as half the build.
    graph.Reserve(2 * static_cast<unsigned int>(m_size) + static_cast<unsigned int>(m_size) / 4, 2);

    C3DEdge edges[BATCH];
    int owners[BATCH];
    unsigned int pending = 0;
    const auto flush = [&] {
        const std::size_t done = entries ? entries->size() : 0;
        if (entries)
            entries->resize(done + pending);
        graph.AddAll(edges, owners, pending, entries ? entries->data() + done : nullptr);
        pending = 0;
    };
    ForEachLiveFace([&](int face, const int* corners, int count) {
        for (int k = 0; k < count; k++) {
            edges[pending] = C3DEdge(corners[k], corners[k + 1 < count ? k + 1 : 0]);
            owners[pending] = face;
            if (++pending == BATCH)
                flush();
        }
    });
    flush();
    graph.FreeExtra();
}

// --- Updates in place ------------------------------------------------------------------------------------------------

bool CFaceList::GraphConnectFace(int point, int face)
{
    if (m_pointGraphUse == 0)
        return false;
    int count;
    const int* faces = GetFacesConnectedToPoint(point, count);
    for (int i = 0; i < count; i++)
        if (faces[i] == face)
            return false;
    m_pointGraph.AddItem(static_cast<unsigned int>(point), face);
    return true;
}

bool CFaceList::GraphDisconnectFace(int point, int face)
{
    int count;
    const int* faces = GetFacesConnectedToPoint(point, count);
    for (int i = 0; i < count; i++)
        if (faces[i] == face)
            return m_pointGraph.RemoveItem(static_cast<unsigned int>(point), static_cast<unsigned int>(i));
    return false;
}

int CFaceList::GraphRemoveFaceReference(CGeomInfo* info, int face, bool markPoints)
{
    if (m_pointGraphUse == 0)
        return 0;
    CPointList* points = markPoints && info ? info->GetSrcPointList() : nullptr;
    int left = 0, cornerCount;
    const int* corners = GetIndexes(static_cast<unsigned int>(face), cornerCount);
    for (int k = 0; k < cornerCount; k++) {
        int others;
        if (!GraphDisconnectFace(corners[k], face) || GetFacesConnectedToPoint(corners[k], others))
            continue;
        left++;
        if (CPt* point = points ? points->ElementAt(corners[k]) : nullptr)
            point->SetFlag(POINT_INVALID, true);
    }
    return left;
}

int CFaceList::GraphMergePointConnectivity(int p1, int p2)
{
    const unsigned int from = static_cast<unsigned int>(p1), to = static_cast<unsigned int>(p2);
    if (m_pointGraphUse == 0 || to >= m_pointGraph.GetEntryCount())
        return 0;
    const unsigned int own = m_pointGraph.GetItemCount(to), added = p1 == p2 ? 0 : m_pointGraph.GetItemCount(from);
    unsigned int count;
    const auto isOwn = [&](int face) {
        const int* faces = m_pointGraph.GetItems(to, count);
        return own > FEW ? m_scratch.Find(face) : std::find(faces, faces + own, face) != faces + own;
    };
    if (own > FEW && added) {
        m_scratch.RemoveAll();
        const int* faces = m_pointGraph.GetItems(to, count);
        for (unsigned int i = 0; i < own; i++)
            m_scratch.Insert(faces[i]);
    }
    for (unsigned int i = 0; i < added; i++) {
        const int face = m_pointGraph.GetItems(from, count)[i];    // anew each time: adding moves the pool
        if (!isOwn(face))
            m_pointGraph.AddItem(to, face);
    }
    if (added)
        m_pointGraph.SetEntrySize(from, 0, true);
    return static_cast<int>(m_pointGraph.GetItemCount(to));
}
