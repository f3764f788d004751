#include "meshops/IntCoordMap.h"

#include <algorithm>
#include <cmath>

double CIntCoordMap::GetAbsoluteDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high)
{
    constexpr double FLAT = 1e-6;
    double smallest = high.x - low.x;
    for (const double extent : {high.y - low.y, high.z - low.z})
        if (extent > FLAT)
            smallest = std::min(smallest, extent);
    return std::max(FLAT, smallest * tolerance);
}

double CIntCoordMap::GetMaxDistance(double tolerance, const C3DTPoint<float>& low, const C3DTPoint<float>& high)
{
    return 2 * std::sqrt(3.0) * GetAbsoluteDistance(tolerance, low, high);
}
