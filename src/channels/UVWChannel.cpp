#include "channels/UVWChannel.h"

#include <cmath>

#include "channels/EdgeCorners.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/Edge.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"

ZEL_IMPLEMENT_CREATABLE(CUVWChannel, CChannel)

CUVWChannel::CUVWChannel(unsigned int id) : CChannel(CHANNEL_UVW, id, 0, CUVWPointList::Create(), CUVWFaceList::Create()) {}

CUVWChannel::~CUVWChannel() = default;

CUVWFaceList* CUVWChannel::GetUVWFaceList() const { return static_cast<CUVWFaceList*>(GetFaceList()); }

CUVWPointList* CUVWChannel::GetUVWPointList() const { return static_cast<CUVWPointList*>(GetPointList()); }

CUVWChannel* CUVWChannel::Duplicate(bool inherit) const
{
    CUVWChannel* channel = new CUVWChannel;
    if (inherit)
        channel->Inherit(*this);
    return channel;
}

bool CUVWChannel::Compare(const CPt* a, const CPt* b, double tolerance) const
{
    const CUVWPoint& first = *static_cast<const CUVWPoint*>(a);
    const CUVWPoint& second = *static_cast<const CUVWPoint*>(b);
    return tolerance == 0 ? first == second : tolerance * tolerance >= DistanceSquared(first, second);
}

namespace {

/// Groups of equal texture coordinates at one geometry point: how many there are, up to 3.
class CUVWGroups {
public:
    explicit CUVWGroups(float tolerance) : m_squaredTolerance(tolerance > 0 ? tolerance * tolerance : 0) {}

    int Count(const CUVWPointList& points, const _ChannelConnectionInfo* items, int count)
    {
        m_count = 0;
        for (int i = 0; i < count && m_count < MOST; i++) {
            const CUVWPoint* point = points[items[i].channelPoint];
            if (point && !IsInGroup(*point))
                m_firsts[m_count++] = point;
        }
        return m_count;
    }

private:
    static constexpr int MOST = 3;

    // A group is its first point, so groups do not chain.
    bool IsInGroup(const CUVWPoint& point) const
    {
        for (int i = 0; i < m_count; i++)
            if (m_squaredTolerance == 0 ? *m_firsts[i] == point : m_squaredTolerance > DistanceSquared(*m_firsts[i], point))
                return true;
        return false;
    }

    const float m_squaredTolerance;
    const CUVWPoint* m_firsts[MOST] = {};
    int m_count = 0;
};

}    // namespace

void CUVWChannel::InitShareUVFlag(const CGeomInfo* info, float tolerance, bool alsoSource)
{
    CUVWPointList* points = GetUVWPointList();
    CPointList* source = info ? info->GetSrcPointList() : nullptr;
    if (!points || !source)
        return;
    points->SetPointsFlags(POINT_SHARE_UV, false);
    if (alsoSource)
        source->SetPointsFlags(POINT_SHARE_UV | POINT_UV_SEAM, false);

    InitGraph(info);
    CUVWGroups groups(tolerance);
    for (int p = 0; p < source->GetSize(); p++) {
        int count, references;
        const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(p, count, references);
        if (!items)
            continue;
        const int groupCount = (count > 1 ? groups.Count(*points, items, count) : 0) + (count != references);
        if (groupCount < 2)
            continue;
        source->ElementAt(p)->SetFlags(POINT_SHARE_UV | (groupCount > 2 ? POINT_UV_SEAM : 0u), true);
        for (int i = 0; i < count; i++)
            if (CUVWPoint* point = points->ElementAt(items[i].channelPoint))
                point->SetFlag(POINT_SHARE_UV, true);
    }
    DeleteGraph();
}

bool CUVWChannel::IsUVFrontier(const CGeomInfo* info, float tolerance, const C3DEdge& edge, int face1, int face2)
{
    const CEdgeCorners corners(info, *this, edge, face1, face2);
    if (corners.IsDecided())
        return corners.IsFrontier();
    for (int end = 0; end < 2; end++) {
        const CUVWPoint* a = static_cast<const CUVWPoint*>(corners.GetPoint(0, end));
        const CUVWPoint* b = static_cast<const CUVWPoint*>(corners.GetPoint(1, end));
        if (!a || !b)
            return true;
        if (a != b && tolerance != 0 && std::sqrt(DistanceSquared(*a, *b)) > tolerance)
            return true;
    }
    return false;
}
