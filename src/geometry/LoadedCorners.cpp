#include "geometry/LoadedCorners.h"

#include <algorithm>

#include "geometry/Face.h"
#include "geometry/FaceList.h"

bool CheckLoadedCorners(CFaceList& faces, int pointCount)
{
    if (faces.AreIndexesBelow(pointCount, true))
        return true;
    if (!faces.AreIndexesBelow(pointCount))
        return false;
    for (unsigned int i = 0; i < static_cast<unsigned int>(faces.GetSize()); i++) {
        int count;
        const int* const corners = faces.GetIndexes(i, count);
        CFace face;
        if (std::any_of(corners, corners + count, [=](int corner) { return corner < 0 || corner >= pointCount; }) && faces.GetFace(i, face))
            face.SetSize(0);
    }
    return true;
}
