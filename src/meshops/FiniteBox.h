#pragma once

#include <cmath>

#include "geometry/3DPointList.h"

// Boxes for grids. A single infinite coordinate must not make one cell of everything.

/// GetBoundingBox over finite coordinates: the same box where all are. False, with zeros, when no point took part.
inline bool GetFiniteBox(const C3DPointList& points, C3DTPoint<float>& low, C3DTPoint<float>& high, unsigned int flag = 0,
                         bool wanted = true)
{
    if (!points.GetBoundingBox(low, high, flag, wanted))
        return false;
    for (int axis = 0; axis < 3; axis++) {
        if (std::isfinite(low[axis]) && std::isfinite(high[axis]))
            continue;
        float min = INFINITY, max = -INFINITY;
        const C3DTPoint<float>* point = points.GetFirst();
        for (int i = 0; i < points.GetSize(); i++, point++) {
            const float value = (*point)[axis];
            if (std::isfinite(value) && (flag == 0 || ((point->flags & flag) != 0) == wanted)) {
                min = value < min ? value : min;
                max = value > max ? value : max;
            }
        }
        low[axis] = min <= max ? min : 0;
        high[axis] = min <= max ? max : 0;
    }
    return true;
}

/// high - low in float; in double where that is beyond all floats.
inline double Extent(float low, float high)
{
    const float extent = high - low;
    return std::isfinite(extent) ? double{extent} : double{high} - low;
}

inline float Middle(float low, float high)
{
    const float sum = low + high;
    return std::isfinite(sum) ? sum / 2 : low / 2 + high / 2;
}
