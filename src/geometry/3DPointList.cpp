#include "geometry/3DPointList.h"

#include <limits>
#include <utility>

#include "geometry/CoordinateLoops.h"
#include "geometry/FiniteBox.h"
#include "geometry/NoisyWave.h"
#include "geometry/PointMaterialGraph.h"
#include "geometry/PointMethods.h"
#include "geometry/Triangle.h"

ZEL_IMPLEMENT_CREATABLE(C3DPointList, CPointList)

C3DPointList::C3DPointList() : C3DPointList(nullptr) {}
C3DPointList::C3DPointList(const C3DPointList* model) { Init(new C3DPointMethods, model); }
C3DPointList::~C3DPointList() = default;
C3DPointList* C3DPointList::Create(C3DPointList* model) { return new C3DPointList(model); }

void C3DPointList::RemoveAll()
{
    CPointList::RemoveAll();
    DropMaterialGraph();
}

C3DPointList& C3DPointList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    if (this != &other)
        DropMaterialGraph();
    return *this;
}

void C3DPointList::DropMaterialGraph() { m_materialGraph.reset(); }

bool C3DPointList::UpdateList(const CGeomInfo* info)
{
    const bool changed = CPointList::UpdateList(info);
    if (changed)
        DropMaterialGraph();
    return changed;
}

unsigned int C3DPointList::GetChecksum(unsigned int mask) const
{
    return (mask & 1 ? ChecksumOfCoordinates(GetFirst(), GetChecksumStart(), GetSize()) : 0) + CPointList::GetChecksum(mask);
}

namespace {

constexpr float FAR = std::numeric_limits<float>::infinity();

// A comparison with a NaN is false, so that it never extends a box.
struct LaneBox {
    Lanes min = {FAR, FAR, FAR, FAR};
    Lanes max = {-FAR, -FAR, -FAR, -FAR};

    void Extend(Lanes p)
    {
        min = p < min ? p : min;
        max = p > max ? p : max;
    }
    void Join(const LaneBox& other)
    {
        min = other.min < min ? other.min : min;
        max = other.max > max ? other.max : max;
    }
};

// Two boxes in turn, so that one point need not wait for the comparisons of the one before.
template <class SELECT, class PLACE> bool ExtendBox(LaneBox& box, const C3DTPoint<float>* points, int count, SELECT select, PLACE place)
{
    LaneBox other;
    bool any = false;
    const auto add = [&](LaneBox& to, const C3DTPoint<float>& point) {
        if (select(point)) {
            to.Extend(place(LoadLanes(point)));
            any = true;
        }
    };
    int i = 0;
    for (; i + 1 < count; i += 2) {
        add(box, points[i]);
        add(other, points[i + 1]);
    }
    if (i < count)
        add(box, points[i]);
    box.Join(other);
    return any;
}

// Whether an infinite coordinate is in the box. Empty axes have their bounds the other way round.
bool HasInfinity(const LaneBox& box)
{
    for (int lane = 1; lane < 4; lane++)
        if (box.min[lane] == -FAR || box.max[lane] == FAR)
            return true;
    return false;
}

void StoreBox(const LaneBox& box, C3DTPoint<float>& min, C3DTPoint<float>& max)
{
    for (int i = 0; i < 3; i++) {
        const bool counted = box.min[i + 1] <= box.max[i + 1];
        min[i] = counted ? box.min[i + 1] : 0;
        max[i] = counted ? box.max[i + 1] : 0;
    }
}

}

bool C3DPointList::GetBoundingBox(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int mask, bool wanted,
                                  const C4x4TMatrix<float>* matrix) const
{
    min = max = C3DTPoint<float>();
    LaneBox box;
    const auto all = [](const C3DTPoint<float>&) { return true; };
    const auto selected = [&](const C3DTPoint<float>& p) { return ((p.flags & mask) != 0) == wanted; };
    const auto here = [](Lanes p) { return p; };
    const LaneMatrix columns(matrix ? *matrix : C4x4TMatrix<float>());
    const auto there = [&](Lanes p) { return columns.Point(p); };

    const C3DTPoint<float>* points = GetFirst();
    const int count = GetSize();
    bool any;
    if (mask == 0)
        any = matrix ? ExtendBox(box, points, count, all, there) : ExtendBox(box, points, count, all, here);
    else
        any = matrix ? ExtendBox(box, points, count, selected, there) : ExtendBox(box, points, count, selected, here);
    if (any && HasInfinity(box)) {    // seldom: the fast way over the points need not look at each coordinate
        CFiniteBox finite;
        for (int i = 0; i < count; i++)
            if (mask == 0 || selected(points[i]))
                finite.Add(matrix ? *matrix * points[i] : points[i]);
        return finite.Get(min, max);
    }
    if (any)
        StoreBox(box, min, max);
    return any;
}

C3DTPoint<float> C3DPointList::GetCenterOfBoundingBox() const
{
    C3DTPoint<float> min, max;
    GetBoundingBox(min, max);
    return {(min.x + max.x) / 2, (min.y + max.y) / 2, (min.z + max.z) / 2};
}

bool C3DPointList::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    if (matrix.IsIdentity())
        return false;
    Transform(matrix);
    return true;
}

void C3DPointList::Transform(const C4x4TMatrix<float>& matrix)
{
    const LaneMatrix columns(matrix);
    C3DTPoint<float>* points = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++) {
        const Lanes loaded = LoadLanes(points[i]);
        StoreLanes(points[i], columns.Point(loaded), loaded);
    }
}

bool C3DPointList::SwapCoordinates(unsigned int code) { return SwapAllCoordinates(GetFirst(), GetSize(), code); }

void C3DPointList::NoisyWaveFunc(const C3DTPoint<float>& origin, const C3DTVector<float>& dir, double amplitude, double frequency,
                                 double phase, _POINT_PROPERTIES mask, bool wanted)
{
    C3DTPoint<float>* points = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++)
        if (points[i].IsFlagSet(mask) == wanted)
            points[i] = ::NoisyWaveFunc(points[i], origin, dir, amplitude, frequency, phase);
}

bool C3DPointList::GetNormal(const int* corners, C3DTVector<float>& normal) const
{
    if (!corners)
        return false;
    const C3DTPoint<float>* points = GetFirst();
    const C3DTPoint<float>&p0 = points[corners[0]], &p1 = points[corners[1]], &p2 = points[corners[2]];
    normal = Cross(p1 - p0, p2 - p0);
    if (std::fabs(normal.x) < 1e-15 && std::fabs(normal.y) < 1e-15 && std::fabs(normal.z) < 1e-15)
        normal = C3DTVector<float>(1, 0, 0);
    else
        normal.Normalize();
    return true;
}

double C3DPointList::GetCompacityFactor(const int* corners) const
{
    if (!corners)
        return 0;
    const C3DTPoint<float>* points = GetFirst();
    return ::GetCompacityFactor(points[corners[0]], points[corners[1]], points[corners[2]]);
}
