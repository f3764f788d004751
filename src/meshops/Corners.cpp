// Corners: points where the border of a mesh turns, and points where its surface folds.

#include <algorithm>
#include <cmath>

#include "channels/FaceNormals.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/Edge.h"
#include "geometry/GeomInfo.h"
#include "tools/AssociationMap.h"
#include "tools/BitArray.h"
#include "tools/BlockVector.h"

/// In float, as corners have always been told apart.
static double FloatDot(const C3DTVector<float>& a, const C3DTVector<float>& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

static C3DTVector<float> Direction(const C3DTPoint<float>& from, const C3DTPoint<float>& to)
{
    C3DTVector<float> direction = to - from;
    const double length = direction.Length();
    if (length > 1e-15)
        direction /= length;
    return direction;
}

namespace {

/// Follows border edges as they come: at each end the edge is held against the one that came there last. A straight run and one that
/// folds back on itself are no corners.
class CBorderCorners {
public:
    CBorderCorners(C3DPointList& points, double limit)
        : m_points(points.GetFirst()), m_limit(limit), m_neighbour(static_cast<std::size_t>(points.GetSize()), NONE)
    {
    }

    void Add(int a, int b)
    {
        const int size = static_cast<int>(m_neighbour.size());
        if (a < 0 || b < 0 || a >= size || b >= size)
            return;
        MarkTurn(a, b);
        MarkTurn(b, a);
        m_neighbour[a] = b;
        m_neighbour[b] = a;
    }
    unsigned int GetCount() const { return m_count; }

private:
    static constexpr int NONE = -1;

    void MarkTurn(int point, int next)
    {
        const int former = m_neighbour[point];
        if (former == NONE)
            return;
        const double cosine = FloatDot(Direction(m_points[point], m_points[next]), Direction(m_points[point], m_points[former]));
        if (m_limit >= std::fabs(cosine)) {
            m_points[point].SetFlag(POINT_2D_CORNER, true);
            m_count++;
        }
    }

    C3DTPoint<float>* m_points;
    double m_limit;
    CBlockVector<int> m_neighbour;
    unsigned int m_count = 0;
};

}    // namespace

unsigned int C3DPointList::Set2DCornerPointsStatus(CAssociationMap<C3DEdge, int, unsigned short>& edges, double angle)
{
    SetPointsFlags(POINT_2D_CORNER, false);
    if (edges.IsEmpty())
        return 0;
    CBorderCorners corners(*this, std::cos(angle));
    for (unsigned int pos = edges.GetFirst(); pos != HASH_END;) {
        const unsigned int entry = edges.GetNext(pos);
        if (edges.GetValueCount(entry) == 1)
            corners.Add(edges.GetKey(entry).GetFirst(), edges.GetKey(entry).GetSecond());
    }
    return corners.GetCount();
}

unsigned int C3DPointList::Set3DCornerPointsStatus(CFaceList* faces, double angle)
{
    auto* const list = XDynamicCast<C3DFaceList>(faces);
    if (!list)
        return 0;
    SetPointsFlags(POINT_3D_CORNER, false);
    if (list->GetSize() == 0)
        return 0;

    const CGeomInfo info(list, this);
    const CFaceNormals normals(&info);
    const CFaceFlags flags(*list);
    const double limit = std::cos(angle);
    CBitArray visited(static_cast<unsigned int>(GetSize()), false);
    unsigned int marked = 0;
    list->InitPointToFaceGraph(&info);
    for (int face = 0; face < list->GetSize(); face++) {
        if (flags.IsDead(face))
            continue;
        int count;
        const int* corners = list->GetIndexes(face, count);
        for (int k = 0; k < count; k++) {
            const int point = corners[k];
            if (point < 0 || point >= GetSize() || visited[point])
                continue;
            visited.SetAt(point, true);
            int around;
            const int* others = list->GetFacesConnectedToPoint(point, around);
            const bool folds =
                std::any_of(others, others + around, [&](int other) { return limit > FloatDot(normals[face], normals[other]); });
            if (folds)
                ElementAt(point)->SetFlag(POINT_3D_CORNER, true);
            marked += folds;
        }
    }
    list->DeletePointToFaceGraph();
    return marked;
}
