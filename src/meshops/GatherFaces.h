#pragma once

#include "geometry/FaceList.h"

/// Side data of `target`'s faces 0 .. count - 1 from the faces from[0], from[1] ... of `source`. A face for which `source` has none keeps
/// what it has.
inline void GatherFaceData(CFaceList& target, const CFaceList& source, const int* from, int count)
{
    const auto isThere = [&](int i) { return static_cast<unsigned int>(from[i]) < static_cast<unsigned int>(source.GetSize()); };
    for (int first = 0; first < count;) {
        int end = first;
        while (end < count && isThere(end))
            end++;
        if (end > first)
            target.GetDataChunks().GatherData(first, source.GetDataChunks(), from + first, end - first);
        first = end + 1;
    }
}
