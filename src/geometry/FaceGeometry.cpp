#include <algorithm>
#include <cmath>

#include "geometry/2DPointList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/4x4Matrix.h"
#include "geometry/FiniteBox.h"
#include "geometry/GeomInfo.h"
#include "geometry/Triangle.h"

// Measures of faces over the source 3D points. A corner that leads to no point makes the face one without a measure.

namespace {

constexpr double NO_LENGTH = 1e-15;

// The points at a face's corners.
class CCorners {
public:
    CCorners(const C3DPointList* points, const int* indexes, int size)
        : m_points(points ? points->GetFirst() : nullptr), m_pointCount(points ? points->GetSize() : 0), m_indexes(indexes), m_size(size)
    {
    }
    CCorners(const C3DFace& face, const CGeomInfo* info)
        : CCorners(info ? info->GetSrc3DPointList(false) : nullptr, face.GetData(), face.GetSize())
    {
    }
    int GetSize() const { return m_size; }
    /// Null for a broken corner.
    const C3DTPoint<float>* operator[](int corner) const
    {
        const auto index = static_cast<unsigned int>(m_indexes[corner]);
        return index < m_pointCount ? m_points + index : nullptr;
    }
    /// Every corner of the first `count` has a point.
    bool AreSound(int count) const
    {
        for (int i = 0; i < count; i++)
            if (i >= m_size || !(*this)[i])
                return false;
        return true;
    }

private:
    const C3DTPoint<float>* m_points;
    unsigned int m_pointCount;
    const int* m_indexes;
    int m_size;
};

void NormalizeUnlessTiny(C3DTVector<float>& v)
{
    const double length = v.Length();
    if (length > NO_LENGTH)
        v /= length;
}

// The sum over all edges; false with a broken corner.
bool SumOverEdges(const CCorners& corners, C3DTVector<float>& n)
{
    const int size = corners.GetSize();
    const C3DTPoint<float>* from = corners[size - 1];
    if (!from)
        return false;
    n = C3DTVector<float>(0, 0, 0);
    for (int i = 0; i < size; i++) {
        const C3DTPoint<float>* to = corners[i];
        if (!to)
            return false;
        n.x += (from->y - to->y) * (from->z + to->z);
        n.y += (from->z - to->z) * (from->x + to->x);
        n.z += (from->x - to->x) * (from->y + to->y);
        from = to;
    }
    return true;
}

inline void NormalOf(const CCorners& corners, C3DTVector<float>& normal, bool normalize)
{
    if (corners.GetSize() < 3)
        return;
    C3DTVector<float> n;
    if (!SumOverEdges(corners, n) || (std::abs(n.x) < NO_LENGTH && std::abs(n.y) < NO_LENGTH && std::abs(n.z) < NO_LENGTH))
        n = C3DTVector<float>(1, 0, 0);
    else if (normalize)
        NormalizeUnlessTiny(n);
    normal = n;
}

}

void C3DFace::GetNormal(const CGeomInfo* info, C3DTVector<float>& normal, bool normalize) const
{
    NormalOf(CCorners(*this, info), normal, normalize);
}

void C3DFaceList::GetNormals(const CGeomInfo* info, C3DVectorList& normals, bool normalize) const
{
    normals.SetSize(m_size, false, 0);
    const C3DPointList* points = info ? info->GetSrc3DPointList(false) : nullptr;
    const CFaceFlags flags(*this);
    C3DTVector<float>* normal = normals.GetFirst();
    for (int i = 0; i < m_size; i++, normal++) {
        if (flags[i] & FACE_INVALID)
            continue;
        int count;
        const int* indexes = GetIndexes(i, count);
        NormalOf(CCorners(points, indexes, count), *normal, normalize);
    }
}

C4DVector C3DFace::GetPlane(const CGeomInfo* info) const
{
    const CCorners corners(*this, info);
    C4DVector plane(0, 0, 0, 0);
    if (!corners.AreSound(3))
        return plane;
    const C3DTPoint<double> p0(*corners[0]);
    C3DTVector<double> n = Cross(C3DTPoint<double>(*corners[1]) - p0, C3DTPoint<double>(*corners[2]) - p0);
    n.Normalize();
    return {n.x, n.y, n.z, -(p0.x * n.x + p0.y * n.y + p0.z * n.z)};
}

double C3DFace::Area(const CGeomInfo* info) const
{
    const CCorners corners(*this, info);
    if (!corners.AreSound(3))
        return 0;
    const C3DTPoint<double> p0(*corners[0]);
    return 0.5 * Cross(C3DTPoint<double>(*corners[1]) - p0, C3DTPoint<double>(*corners[2]) - p0).Length();
}

double C3DFace::GetCompacityFactor(const CGeomInfo* info) const
{
    const CCorners corners(*this, info);
    return corners.AreSound(3) ? ::GetCompacityFactor(*corners[0], *corners[1], *corners[2]) : 0;
}

void C3DFace::GetCenter(const CGeomInfo* info, C3DTPoint<double>& center) const
{
    const CCorners corners(*this, info);
    C3DTVector<double> sum;
    int found = 0;
    for (int i = 0; i < corners.GetSize(); i++)
        if (const C3DTPoint<float>* point = corners[i]) {
            sum += C3DTVector<double>(*point);
            found++;
        }
    center.x = sum.x / found;
    center.y = sum.y / found;
    center.z = sum.z / found;
}

void C3DFace::GetCenter(const CGeomInfo* info, C3DTPoint<float>& center) const
{
    C3DTPoint<double> exact;
    GetCenter(info, exact);
    center.x = static_cast<float>(exact.x);
    center.y = static_cast<float>(exact.y);
    center.z = static_cast<float>(exact.z);
}

bool C3DFace::IsConvex(const CGeomInfo* info) const
{
    const CCorners corners(*this, info);
    const int size = corners.GetSize();
    if (size <= 3)
        return true;
    if (!corners.AreSound(size))
        return false;
    const auto turnAfter = [&](int i) {
        const C3DTPoint<float>&a = *corners[i % size], &b = *corners[(i + 1) % size], &c = *corners[(i + 2) % size];
        return Cross(b - a, c - b);
    };
    const C3DTVector<float> first = turnAfter(0);
    for (int i = 1; i < size; i++)
        if (Dot(turnAfter(i), first) < 0)
            return false;
    return true;
}

void C3DFace::GetNormal(const C3DPointList& points, const int* corners, int count, C3DTVector<float>& normal, bool normalize)
{
    NormalOf(CCorners(&points, corners, count), normal, normalize);
}

// `setPoint(k, x, y)` for each corner. False, with nothing set, with fewer than 3 corners or a broken one.
template <class SET> static bool LayInPlane(const CCorners& corners, SET setPoint)
{
    const int size = corners.GetSize();
    if (size < 3 || !corners.AreSound(size))
        return false;
    C3DTVector<float> n;
    NormalOf(corners, n, true);
    const C3DTPoint<float> origin = *corners[0];
    C3DTVector<float> e = *corners[1] - origin, v = Cross(n, e);
    NormalizeUnlessTiny(e);
    NormalizeUnlessTiny(v);
    for (int i = 0; i < size; i++) {
        const C3DTVector<float> d = *corners[i] - origin;
        setPoint(i, static_cast<float>(Dot(d, e)), static_cast<float>(Dot(d, v)));
    }
    return true;
}

void C3DFace::Get2DCoordinates(const CGeomInfo* info, C2DPointList& list) const
{
    list.SetSize(GetSize(), false, -1);
    const bool laid = LayInPlane(CCorners(*this, info), [&](int i, float x, float y) {
        C2DTPoint<float>& point = *list.ElementAt(i);
        point.x = x, point.y = y;
    });
    if (!laid)
        list.SetSize(0, false, -1);
}

bool C3DFace::Get2DCoordinates(const C3DPointList& points, const int* corners, int count, float (*xy)[2])
{
    return LayInPlane(CCorners(&points, corners, count), [xy](int i, float x, float y) { xy[i][0] = x, xy[i][1] = y; });
}

// --- The list -------------------------------------------------------------------------------------------------------

bool C3DFaceList::GetBoundingBox(const CGeomInfo* info, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int mask, bool wanted,
                                 C4x4TMatrix<float>* m) const
{
    CFiniteBox box;
    const C3DPointList* points = info ? info->GetSrc3DPointList(false) : nullptr;
    const CFaceFlags flags(*this);
    for (int i = 0; points && i < m_size; i++) {
        if (flags.IsDead(i) || (mask && ((flags[i] & mask) != 0) != wanted))
            continue;
        int count;
        const int* indexes = GetIndexes(i, count);
        for (int k = 0; k < count; k++)
            if (const C3DTPoint<float>* point = points->ElementAt(indexes[k]))
                box.Add(m ? *m * *point : *point);
    }
    return box.Get(min, max);
}
