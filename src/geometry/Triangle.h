#pragma once

#include "geometry/Point.h"

/// Inside or on the box.
ZEL_API bool IsInBox(const C3DTPoint<float>& p, const C3DTPoint<float>& min, const C3DTPoint<float>& max);

/// True for a point of the triangle's plane that lies inside the triangle. Its distance from the plane is limited by the
/// triangle's box alone. On an edge the answer depends on the other two edges.
ZEL_API bool IsInTriangle(const C3DTPoint<float>& p, const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c);

/// 1 for an equilateral triangle, towards 0 for a sliver; not a number for three equal points.
ZEL_API double GetCompacityFactor(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c);

/// Square of the radius of the circumscribed circle; infinite for points in a line.
ZEL_API double GetCompacityFactor2(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c);
