#pragma once

#include "geometry/Point.h"
#include "tools/Api.h"

/// Points by the cells of a uniform grid.
class ZEL_API CIntCoordMap {
public:
    /// A fraction of the smallest extent of a box, flat extents in y and z left out; at least 1e-6.
    static double GetAbsoluteDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high);
    /// How far apart two points can be whose cells touch.
    static double GetMaxDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high);
};
