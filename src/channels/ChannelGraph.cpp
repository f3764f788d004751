// Channel graph: which channel points and faces meet at a geometry point.
//
//   count   corners of the geometry and corners with data at each point
//   lay     entries side by side, each as long as it will be
//   fill    headers, then the items in order of face and corner

#include "channels/ChannelGraph.h"

#include <optional>

#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"

void CChannel::InitGraph(const CGeomInfo* info)
{
    const CFaceList* geometry = info ? info->GetSrcFaceList() : nullptr;
    const unsigned int geometryStamp = geometry ? geometry->GetChangedStamp() : 0;
    const unsigned int channelStamp = m_faceList ? m_faceList->GetChangedStamp() : 0;
    if (geometryStamp != m_geometryStamp || channelStamp != m_channelStamp)
        m_graph.reset();
    if (m_graphUsers == 0 || !m_graph)
        CreateGraph(info);
    m_graphUsers++;
}

void CChannel::DeleteGraph()
{
    if (m_graphUsers > 0 && --m_graphUsers == 0)
        m_graph.reset();
}

namespace {

/// The corners of the geometry, and what a channel has at them.
class CCornerWalk {
public:
    CCornerWalk(const CFaceList& geometry, unsigned int pointCount, const CChannel& channel)
        : m_geometry(geometry), m_flags(geometry), m_pointCount(pointCount), m_data(channel)
    {
    }

    /// refer(point) for each corner of a geometry face without FACE_INVALID; item(point, channel point, face) for those
    /// with data. Indices outside the lists are passed over.
    template <class REFER, class ITEM> void Run(REFER refer, ITEM item) const
    {
        const int faceCount = m_geometry.GetSize();
        for (int face = 0; face < faceCount; face++) {
            if (m_flags[face] & FACE_INVALID)
                continue;
            int count;
            const int* corners = m_geometry.GetIndexes(face, count);
            const CFaceData data = m_data.OfFace(face, corners, count);
            for (int k = 0; k < count; k++) {
                const int point = corners[k];
                if (static_cast<unsigned int>(point) >= m_pointCount)
                    continue;
                refer(point);
                if (k < data.count && m_data.HasValue(data[k]))
                    item(point, data[k], face);
            }
        }
    }

private:
    /// Channel points of the corners of one face.
    struct CFaceData {
        const int* points;
        int count;
        int stride;    // 0: the same point at every corner
        int operator[](int corner) const { return points[corner * stride]; }
    };

    class CChannelData {
    public:
        explicit CChannelData(const CChannel& channel)
            : m_ofFaces(channel.GetType() == CHANNEL_FACE_NORMAL), m_faces(channel.GetFaceList()), m_points(channel.GetPointList()),
              m_pointCount(m_points ? m_points->GetSize() : 0), m_skipUnset(channel.IsFlagSet(CHANNEL_SKIP_UNSET))
        {
            if (m_faces)
                m_flags.emplace(*m_faces);
        }

        CFaceData OfFace(const int& face, const int* corners, int count) const
        {
            if (!m_faces)    // the place in the geometry names the point
                return m_ofFaces ? CFaceData{&face, count, 0} : CFaceData{corners, count, 1};
            if (face >= m_faces->GetSize() || m_flags->IsDead(face))
                return {nullptr, 0, 0};
            const int* points = m_faces->GetIndexes(face, count);
            return {points, count, 1};
        }
        bool HasValue(int point) const
        {
            if (static_cast<unsigned int>(point) >= m_pointCount)
                return false;
            return !m_skipUnset || !m_points->ElementAt(point)->IsFlagSet(POINT_UNSET);
        }

    private:
        const bool m_ofFaces;
        const CFaceList* m_faces;
        const CPointList* m_points;
        const unsigned int m_pointCount;
        const bool m_skipUnset;
        std::optional<CFaceFlags> m_flags;
    };

    const CFaceList& m_geometry;
    const CFaceFlags m_flags;
    const unsigned int m_pointCount;
    const CChannelData m_data;
};

}    // namespace

void CChannel::CreateGraph(const CGeomInfo* info)
{
    m_graph = std::make_unique<Graph>();
    const CFaceList* geometry = info ? info->GetSrcFaceList() : nullptr;
    const CPointList* points = info ? info->GetSrcPointList() : nullptr;
    m_geometryStamp = geometry ? geometry->GetChangedStamp() : 0;
    m_channelStamp = m_faceList ? m_faceList->GetChangedStamp() : 0;
    if (!geometry || !points || points->GetSize() == 0)
        return;

    const unsigned int pointCount = points->GetSize();
    const CCornerWalk walk(*geometry, pointCount, *this);
    m_graph->starts = CBlock<unsigned int>(pointCount + 1, 0);
    unsigned int* next = m_graph->starts.GetData();    // counts first, then the place of the next item
    CBlock<int> references(pointCount, 0);
    walk.Run([&](int point) { references[point]++; }, [&](int point, int, int) { next[point]++; });

    unsigned int size = 0;
    for (unsigned int point = 0; point <= pointCount; point++) {
        const unsigned int length = next[point] ? next[point] + 1 : 0;
        next[point] = size;
        size += length;
    }

    m_graph->items = CBlock<_ChannelConnectionInfo>(size);
    _ChannelConnectionInfo* items = m_graph->items.GetData();
    for (unsigned int point = 0; point < pointCount; point++)
        if (next[point] != next[point + 1])
            items[next[point]++] = {-1, references[point]};
    walk.Run([](int) {}, [&](int point, int channelPoint, int face) { items[next[point]++] = {channelPoint, face}; });

    for (unsigned int point = pointCount; point > 0; point--)    // each place has moved to the end of its entry
        next[point] = next[point - 1];
    next[0] = 0;
}

_ChannelConnectionInfo* CChannel::GetChannelPointsConnectedToPoint(int point, int& count, int& references)
{
    count = references = 0;
    if (!m_graph || point < 0 || static_cast<std::size_t>(point) + 1 >= m_graph->starts.GetSize())
        return nullptr;
    const unsigned int start = m_graph->starts[point], end = m_graph->starts[point + 1];
    if (start == end)
        return nullptr;
    _ChannelConnectionInfo* entry = m_graph->items.GetData() + start;
    references = entry->face;
    count = static_cast<int>(end - start) - 1;
    return entry + 1;
}

_ChannelConnectionInfo* CChannel::GetChannelPointsConnectedToPoint(int point, int& count)
{
    int references;
    return GetChannelPointsConnectedToPoint(point, count, references);
}

CPt* CChannel::GetChannelPointIndex(int face, int point)
{
    int count;
    const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(point, count);
    for (int i = 0; i < count; i++)
        if (items[i].face == face)
            return m_pointList ? m_pointList->ElementAt(items[i].channelPoint) : nullptr;
    return nullptr;
}
