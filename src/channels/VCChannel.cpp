#include "channels/VCChannel.h"

#include "channels/EdgeCorners.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "geometry/Edge.h"
#include "geometry/GeomInfo.h"

ZEL_IMPLEMENT_CREATABLE(CVCChannel, CChannel)

CVCChannel::CVCChannel(unsigned int id) : CChannel(CHANNEL_VC, id, 0, CVCPointList::Create(), CVCFaceList::Create()) {}

CVCChannel::~CVCChannel() = default;

CVCFaceList* CVCChannel::GetVCFaceList() const { return static_cast<CVCFaceList*>(GetFaceList()); }

CVCPointList* CVCChannel::GetVCPointList() const { return static_cast<CVCPointList*>(GetPointList()); }

CVCChannel* CVCChannel::Duplicate(bool inherit) const
{
    CVCChannel* channel = new CVCChannel;
    if (inherit)
        channel->Inherit(*this);
    return channel;
}

bool CVCChannel::Compare(const CPt* a, const CPt* b, double tolerance) const
{
    const CVCPoint& first = *static_cast<const CVCPoint*>(a);
    const CVCPoint& second = *static_cast<const CVCPoint*>(b);
    const int bytes = static_cast<int>(tolerance * 255);
    return bytes == 0 ? first == second : &first == &second || !first.DiffersFrom(second, bytes);
}

static bool Differ(const CVCPoint* a, const CVCPoint* b, int tolerance) { return a != b && a->DiffersFrom(*b, tolerance); }

void CVCChannel::InitVCFrontierFlag(const CGeomInfo* info, int tolerance, bool alsoSource)
{
    CPointList* source = info ? info->GetSrcPointList() : nullptr;
    if (!GetPointList() || !GetFaceList() || !source)
        return;
    GetPointList()->SetPointsFlags(POINT_VC_FRONTIER, false);
    if (alsoSource)
        source->SetPointsFlags(POINT_VC_FRONTIER, false);
    MarkPoints(info, *source, tolerance);
    MarkFaces(info, *source, tolerance);
}

/// Colours that differ at one geometry point, or are lacking there.
void CVCChannel::MarkPoints(const CGeomInfo* info, CPointList& source, int tolerance)
{
    CVCPointList& points = *GetVCPointList();
    InitGraph(info);
    for (int p = 0; p < source.GetSize(); p++) {
        int count, references;
        const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(p, count, references);
        bool frontier = count != references;
        for (int i = 1; i < count && !frontier; i++) {
            const CVCPoint *first = points[items[0].channelPoint], *point = points[items[i].channelPoint];
            frontier = first && point && Differ(first, point, tolerance);
        }
        if (!frontier)
            continue;
        source.ElementAt(p)->SetFlag(POINT_VC_FRONTIER, true);
        for (int i = 0; i < count; i++)
            if (CVCPoint* point = points[items[i].channelPoint])
                point->SetFlag(POINT_VC_FRONTIER, true);
    }
    DeleteGraph();
}

/// Colours that differ along an edge of a face.
void CVCChannel::MarkFaces(const CGeomInfo* info, CPointList& source, int tolerance)
{
    CVCPointList& points = *GetVCPointList();
    const CFaceList& faces = *GetFaceList();
    const CFaceList* geometry = info->GetSrcFaceList();
    for (int f = 0; geometry && f < geometry->GetSize(); f++) {
        if (geometry->IsFaceOneFlagSet(f, FACE_INVALID) || faces.IsFaceOneFlagSet(f, FACE_DEAD))
            continue;
        int cornerCount, dataCount;
        const int* corners = geometry->GetIndexes(f, cornerCount);
        const int* data = faces.GetIndexes(f, dataCount);
        if (dataCount != cornerCount)
            continue;
        for (int k = 0; k < cornerCount; k++) {
            const int next = k + 1 < cornerCount ? k + 1 : 0;
            CVCPoint *a = points[data[k]], *b = points[data[next]];
            if (!a || !b || !Differ(a, b, tolerance))
                continue;
            for (CPt* point : {source.ElementAt(corners[k]), source.ElementAt(corners[next]), static_cast<CPt*>(a), static_cast<CPt*>(b)})
                if (point)
                    point->SetFlag(POINT_VC_FRONTIER, true);
        }
    }
}

bool CVCChannel::IsVCFrontier(const CGeomInfo* info, int tolerance, const C3DEdge& edge, int face1, int face2)
{
    const CEdgeCorners corners(info, *this, edge, face1, face2);
    if (corners.IsDecided())
        return corners.IsFrontier();
    const auto breaks = [=](const CPt* a, const CPt* b) {    // a missing corner breaks too
        return !a || !b || Differ(static_cast<const CVCPoint*>(a), static_cast<const CVCPoint*>(b), tolerance);
    };
    for (int end = 0; end < 2; end++)
        if (breaks(corners.GetPoint(0, end), corners.GetPoint(1, end)))
            return true;
    for (int face = 0; face < 2; face++)
        for (int offset = -1; offset <= 1; offset++)
            if (breaks(corners.GetPoint(face, 0, offset), corners.GetPoint(face, 1, offset)))
                return true;
    return false;
}
