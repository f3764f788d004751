// Flood fill over the faces of a list, breadth first.
//
// The tagger hears of every neighbour that no group has yet, as often as it is met. The queue takes each of them once:
// a second place would find the face visited when its turn comes.

#include <optional>

#include "geometry/CornerEdges.h"
#include "geometry/FaceList.h"
#include "geometry/FaceTagger.h"
#include "geometry/GeomInfo.h"
#include "tools/BitArray.h"
#include "tools/BlockVector.h"

namespace {

/// One run of TagFaces.
class FaceFlood {
public:
    /// By the edges given; without them by points.
    FaceFlood(CFaceList& faces, CFaceTagger& tagger, const CCornerEdges* edges, bool takesAll)
        : m_faces(faces), m_tagger(tagger), m_edges(edges), m_flags(faces), m_visited(static_cast<unsigned int>(faces.GetSize()), false),
          m_queued(static_cast<unsigned int>(faces.GetSize()), false), m_asks(edges || !takesAll)
    {
    }

    unsigned int Run()
    {
        unsigned int groups = 0;
        for (int face = 0; face < m_faces.GetSize(); face++)
            if (!m_visited[static_cast<unsigned int>(face)] && !m_flags.IsDead(static_cast<unsigned int>(face)))
                FillGroup(groups++, face);
        return groups;
    }

private:
    void FillGroup(unsigned int group, int start);
    void Spread(int face);
    void SpreadByPoints(int face);
    void Enqueue(int face);
    bool Ask(int face, int k, int corner, int next);

    CFaceList& m_faces;
    CFaceTagger& m_tagger;
    const CCornerEdges* const m_edges;
    const CFaceFlags m_flags;
    CBitArray m_visited;                     // in a group
    CBitArray m_queued;                      // in the queue, now or earlier
    const bool m_asks;                       // the tagger
    CBlockVector<unsigned char> m_walked;    // points whose faces are queued, all of them
    CBlockVector<unsigned int> m_queue;      // what has been taken out of it is the group
    CBlockVector<int> m_neighbours;
};

void FaceFlood::FillGroup(unsigned int group, int start)
{
    m_queue.assign(1, static_cast<unsigned int>(start));
    m_queued.SetAt(static_cast<unsigned int>(start), true);
    m_tagger.BeginNewGroup(group, static_cast<unsigned int>(start));
    for (std::size_t next = 0; next < m_queue.size(); next++) {
        if (m_asks)
            Spread(static_cast<int>(m_queue[next]));
        else
            SpreadByPoints(static_cast<int>(m_queue[next]));
        m_visited.SetAt(m_queue[next], true);
    }
    m_tagger.ProcessGroup(m_queue.data(), static_cast<unsigned int>(m_queue.size()));
}

void FaceFlood::Spread(int face)
{
    int count;
    m_faces.GetIndexes(static_cast<unsigned int>(face), count);
    for (int k = 0; k < count; k++) {
        const int* corners = m_faces.GetIndexes(static_cast<unsigned int>(face), count);    // a tagger may edit faces
        if (k >= count || !Ask(face, k, corners[k], corners[k + 1 < count ? k + 1 : 0]))
            continue;
        for (const int neighbour : m_neighbours)
            Enqueue(neighbour);
    }
}

// What Spread does for a tagger that takes all: the first face of a point queues the others, and those that come later find them there.
void FaceFlood::SpreadByPoints(int face)
{
    int count;
    const int* corners = m_faces.GetIndexes(static_cast<unsigned int>(face), count);
    for (int k = 0; k < count; k++) {
        int connectedCount;
        const int* connected = m_faces.GetFacesConnectedToPoint(corners[k], connectedCount);
        if (connectedCount == 0)    // also for a corner that is not there
            continue;
        const std::size_t point = static_cast<std::size_t>(corners[k]);
        if (point >= m_walked.size())
            m_walked.resize(point + point / 2 + 1, false);
        if (m_walked[point])
            continue;
        m_walked[point] = true;
        for (int i = 0; i < connectedCount; i++)
            Enqueue(connected[i]);
    }
}

void FaceFlood::Enqueue(int face)
{
    const unsigned int place = static_cast<unsigned int>(face);
    if (place >= m_queued.GetSize() || m_queued[place] || m_flags.IsDead(place))    // -1 lies beyond
        return;
    m_queued.SetAt(place, true);
    m_queue.push_back(place);
}

// Collects the neighbours at corner k that are in no group yet. False when there are none, or when the tagger refuses
// them.
bool FaceFlood::Ask(int face, int k, int corner, int next)
{
    C3DEdge edge(corner, next);
    int count;
    const int* connected = m_edges ? m_edges->GetFaces(face, k, edge, count) : m_faces.GetFacesConnectedToPoint(corner, count);
    m_neighbours.clear();
    for (int i = 0; i < count; i++)
        if (connected[i] != face && !m_visited[static_cast<unsigned int>(connected[i])])
            m_neighbours.push_back(connected[i]);
    if (m_neighbours.empty())
        return false;
    const unsigned int number = static_cast<unsigned int>(m_neighbours.size());
    return m_edges
               ? m_tagger.BelongToGroup(static_cast<unsigned int>(face), edge, m_neighbours.data(), number)
               : m_tagger.BelongToGroup(static_cast<unsigned int>(face), static_cast<unsigned int>(corner), m_neighbours.data(), number);
}

}

unsigned int CFaceList::TagFaces(CGeomInfo* info, CFaceTagger& tagger, bool byEdge)
{
    if (!info)
        return 0;
    tagger.m_info = info;
    tagger.m_points = info->GetSrcPointList();
    tagger.m_faces = this;
    if (!tagger.InitProcess(info))
        return 0;
    std::optional<CCornerEdges> edges;
    if (byEdge)
        edges.emplace(*this, info);
    else
        InitPointToFaceGraph(info);
    const unsigned int groups = FaceFlood(*this, tagger, edges ? &*edges : nullptr, tagger.m_takesAll).Run();
    tagger.EndProcess(groups);
    return groups;
}
