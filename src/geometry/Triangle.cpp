#include "geometry/Triangle.h"

#include <algorithm>

namespace {
/// Which way a normal points, told by its first negative coordinate; 0 for none.
int GetClass(const C3DTVector<float>& n) { return n.x < 0 ? 4 : n.y < 0 ? 2 : n.z < 0 ? 1 : 0; }

struct TriangleMeasures {
    double edges[3];    ///< squared lengths
    double cross;       ///< squared length of the cross product: four times the squared area
};

TriangleMeasures Measure(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
{
    const C3DTPoint<double> da(a), db(b), dc(c);
    const C3DTVector<double> ab = db - da, bc = dc - db, ac = dc - da;
    return {{ab.LengthSquared(), bc.LengthSquared(), ac.LengthSquared()}, Cross(ab, ac).LengthSquared()};
}
}

bool IsInBox(const C3DTPoint<float>& p, const C3DTPoint<float>& min, const C3DTPoint<float>& max)
{
    return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y && p.z >= min.z && p.z <= max.z;
}

bool IsInTriangle(const C3DTPoint<float>& p, const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
{
    const C3DTPoint<float> low(std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y}), std::min({a.z, b.z, c.z}));
    const C3DTPoint<float> high(std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y}), std::max({a.z, b.z, c.z}));
    if (!IsInBox(p, low, high))
        return false;
    const int first = GetClass(Cross(b - a, p - a));
    return GetClass(Cross(c - b, p - b)) == first && GetClass(Cross(a - c, p - c)) == first;
}

double GetCompacityFactor(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
{
    const TriangleMeasures t = Measure(a, b, c);
    const double area = 0.5 * std::sqrt(t.cross);
    return 6.928203230275509 * area / (t.edges[0] + t.edges[1] + t.edges[2]);    // 4 sqrt(3)
}

double GetCompacityFactor2(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
{
    const TriangleMeasures t = Measure(a, b, c);
    return t.edges[0] * t.edges[1] * t.edges[2] / (4 * t.cross);
}
