#pragma once

#include <array>
#include <vector>

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"

using Vec = std::array<double, 3>;
using FaceCorners = std::vector<std::vector<int>>;

inline std::vector<Vec> AllPoints(const C3DPointList& points)
{
    std::vector<Vec> all;
    for (int i = 0; i < points.GetSize(); i++)
        all.push_back({points[i]->x, points[i]->y, points[i]->z});
    return all;
}
