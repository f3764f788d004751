// Where given normals break: at points, along edges within a face, and between two faces.

#include <algorithm>
#include <cmath>

#include "channels/EdgeCorners.h"
#include "channels/NormalFaceList.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

namespace {

using Vector = C3DTVector<float>;

// Two vectors of a channel: different elements of which one alone is unset, or that enclose more than the angle. A corner without vector
// disagrees with one that has one.
class CDisagreement {
public:
    explicit CDisagreement(double angle) : m_cosine(std::cos(angle)) {}

    bool operator()(const CPt* a, const CPt* b) const
    {
        if (a == b)
            return false;
        if (!a || !b)
            return true;
        const bool unset = a->IsFlagSet(POINT_UNSET);
        if (unset || b->IsFlagSet(POINT_UNSET))
            return unset != b->IsFlagSet(POINT_UNSET);
        return m_cosine > Dot(*static_cast<const Vector*>(a), *static_cast<const Vector*>(b));
    }

private:
    double m_cosine;
};

// Between the neighbouring corners of one face.
void MarkBreaksInFace(CPointList& points, C3DVectorList& vectors, const int* corners, const int* normals, int count,
                      const CDisagreement& disagree)
{
    for (int k = 0; k < count; k++) {
        const int next = k + 1 < count ? k + 1 : 0;
        Vector *a = vectors.ElementAt(normals[k]), *b = vectors.ElementAt(normals[next]);
        CPt *pa = points.ElementAt(corners[k]), *pb = points.ElementAt(corners[next]);
        if (!a || !b || !pa || !pb || !disagree(a, b))
            continue;
        if (pb->IsFlagSet(POINT_NORMAL_BREAK))
            b->SetFlag(POINT_NORMAL_BREAK, true);
        else {
            pa->SetFlag(POINT_NORMAL_BREAK, true);
            a->SetFlag(POINT_NORMAL_BREAK, true);
        }
    }
}

}    // namespace

void CSpecNormalChannel::InitNormalBreakFlag(const CGeomInfo* info, double angle, bool alsoSource, _NormalSmoothMode mode)
{
    CPointList* source = info ? info->GetSrcPointList() : nullptr;
    const CFaceList* geometry = info ? info->GetSrcFaceList() : nullptr;
    if (!source || !geometry || !GetFaceList() || !GetPointList())
        return;
    ComputeNormals(info, mode);
    C3DVectorList& vectors = *GetNormalVectorList();
    vectors.SetPointsFlags(POINT_NORMAL_BREAK, false);
    if (alsoSource)
        source->SetPointsFlags(POINT_NORMAL_BREAK, false);

    const CDisagreement disagree(angle);
    InitGraph(info);
    for (int point = 0; point < source->GetSize(); point++) {
        int count, references;
        const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(point, count, references);
        if (count == 0)
            continue;
        bool breaks = count != references;
        for (int i = 1; i < count && !breaks; i++)
            breaks = disagree(vectors.ElementAt(items[0].channelPoint), vectors.ElementAt(items[i].channelPoint));
        if (!breaks)
            continue;
        source->ElementAt(point)->SetFlag(POINT_NORMAL_BREAK, true);
        for (int i = 0; i < count; i++)
            vectors.ElementAt(items[i].channelPoint)->SetFlag(POINT_NORMAL_BREAK, true);
    }
    DeleteGraph();

    const CFaceFlags flags(*geometry), normalFlags(*GetFaceList());
    for (int face = 0; face < std::min(geometry->GetSize(), GetFaceList()->GetSize()); face++) {
        if (flags[face] & FACE_INVALID || normalFlags.IsDead(face))
            continue;
        int count, normalCount;
        const int* corners = geometry->GetIndexes(face, count);
        const int* normals = GetFaceList()->GetIndexes(face, normalCount);
        MarkBreaksInFace(*source, vectors, corners, normals, std::min(count, normalCount), disagree);
    }
}

bool CSpecNormalChannel::IsNormalFrontier(const CGeomInfo* info, double angle, const C3DEdge& edge, int face1, int face2)
{
    if (GetFaceList() && (GetFaceList()->IsFaceFlagSet(face1, FACE_INVALID) || GetFaceList()->IsFaceFlagSet(face2, FACE_INVALID)))
        return false;
    const CEdgeCorners corners(info, *this, edge, face1, face2);
    if (corners.IsDecided())
        return corners.IsFrontier();

    const CDisagreement disagree(angle);
    for (int end = 0; end < 2; end++)
        if (disagree(corners.GetPoint(0, end), corners.GetPoint(1, end)))
            return true;
    for (int face = 0; face < 2; face++) {
        bool all = true;
        for (int offset = -1; offset <= 1 && all; offset++)
            all = disagree(corners.GetPoint(face, 0, offset), corners.GetPoint(face, 1, offset));
        if (all)
            return true;
    }
    return false;
}
