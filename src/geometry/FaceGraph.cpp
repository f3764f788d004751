// The two graphs of a face list: which faces touch a point, and which run along an edge.
//
//   count     how many faces each point, or each edge, will have
//   lay out   one pool with exactly that room
//   fill      face by face, so that each entry ascends
//
// Corners outside the point list, which only broken input has, are left out of the point graph. The edge graph knows no point list
// and takes corners as they stand.

#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"
#include "tools/AssociationMap.h"

namespace {

// Calls `body(corners, count, face)` for each live face.
template <class BODY> void ForEachLiveFace(const CFaceList& faces, BODY body)
{
    const CFaceFlags flags(faces);
    for (int face = 0, size = faces.GetSize(); face < size; face++) {
        if (flags.IsDead(static_cast<unsigned int>(face)))
            continue;
        int count;
        const int* corners = faces.GetIndexes(static_cast<unsigned int>(face), count);
        body(corners, count, face);
    }
}

// Passes the corners of a face on, each point once, the first time that it comes.
class DistinctCorners {
public:
    explicit DistinctCorners(unsigned int pointCount) : m_pointCount(pointCount) {}

    template <class BODY> void Visit(const int* corners, int count, int face, BODY body)
    {
        if (count > FEW)
            return VisitMany(corners, count, face, body);
        for (int k = 0; k < count; k++)
            if (IsPoint(corners[k]) && !Contains(corners, k, corners[k]))
                body(corners[k]);
    }

private:
    static constexpr int FEW = 12;       // a comparison with all corners before costs less than memory

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
    std::vector<int> m_lastFace;         // by point, for faces with many corners
};

}

// --- Life ---------------------------------------------------------------------------------------------------------------

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

void CFaceList::InitEdgeToFaceGraph(const CGeomInfo* info)
{
    UpdateList(info);
    if (m_edgeGraphUse == 0 || GetEdgeGraph().IsEmpty())
        CreateEdgeToFaceGraph();
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
    CreateEdgeToFaceGraph();
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

// --- Build ----------------------------------------------------------------------------------------------------------------

void CFaceList::CreatePointToFaceGraph(const CGeomInfo* info)
{
    m_pointGraph.RemoveAll();
    const CPointList* points = info ? info->GetSrcPointList() : nullptr;
    if (!points || m_size == 0)
        return;
    const unsigned int pointCount = static_cast<unsigned int>(points->GetSize());
    DistinctCorners distinct(pointCount);
    std::vector<unsigned int> faceCounts(pointCount, 0);
    ForEachLiveFace(*this, [&](const int* corners, int count, int face) {
        distinct.Visit(corners, count, face, [&](int point) { faceCounts[static_cast<unsigned int>(point)]++; });
    });
    m_pointGraph.InitExact(pointCount, faceCounts.data());
    distinct = DistinctCorners(pointCount);
    ForEachLiveFace(*this, [&](const int* corners, int count, int face) {
        distinct.Visit(corners, count, face, [&](int point) { m_pointGraph.PushItem(static_cast<unsigned int>(point), face); });
    });
}

void CFaceList::CreateEdgeToFaceGraph()
{
    constexpr std::size_t BATCH = 256;                   // edges whose place is looked for together
    EdgeGraph& graph = GetEdgeGraph();
    graph.RemoveAll();
    if (m_size == 0)
        return;
    graph.Reserve(2 * static_cast<unsigned int>(m_size), 2);

    std::vector<unsigned int> entries;                   // of each corner's edge, face by face
    entries.reserve(3 * static_cast<std::size_t>(m_size));
    std::vector<C3DEdge> batch;
    const auto flush = [&] {
        const std::size_t done = entries.size();
        entries.resize(done + batch.size());
        graph.InsertKeys(batch.data(), static_cast<unsigned int>(batch.size()), entries.data() + done);
        batch.clear();
    };
    ForEachLiveFace(*this, [&](const int* corners, int count, int) {
        for (int k = 0; k < count; k++)
            batch.emplace_back(corners[k], corners[k + 1 < count ? k + 1 : 0]);
        if (batch.size() >= BATCH)
            flush();
    });
    flush();

    std::vector<unsigned int> faceCounts(graph.GetCount(), 0);
    for (const unsigned int entry : entries)
        faceCounts[entry]++;
    graph.InitValues(std::move(faceCounts));
    const unsigned int* entry = entries.data();
    ForEachLiveFace(*this, [&](const int*, int count, int face) {
        for (int k = 0; k < count; k++)
            graph.PushValue(*entry++, face);
    });
    graph.FreeExtra();
}

// --- Updates in place -------------------------------------------------------------------------------------------------------

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
    int count1, count2;
    const int* faces1 = GetFacesConnectedToPoint(p1, count1);
    const int* faces2 = GetFacesConnectedToPoint(p2, count2);
    if (p1 == p2 || m_pointGraphUse == 0 || static_cast<unsigned int>(p2) >= m_pointGraph.GetEntryCount())
        return count2;
    CHashTable<int> known;
    for (int i = 0; i < count2; i++)
        known.Insert(faces2[i]);
    const std::vector<int> moved(faces1, faces1 + count1);              // the pool moves while faces are added
    for (const int face : moved)
        if (known.Insert(face))
            m_pointGraph.AddItem(static_cast<unsigned int>(p2), face);
    m_pointGraph.SetEntrySize(static_cast<unsigned int>(p1), 0, true);
    return static_cast<int>(m_pointGraph.GetItemCount(static_cast<unsigned int>(p2)));
}
