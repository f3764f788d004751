#pragma once

#include <cmath>

// Of boxes whose ends may be the largest floats.

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
