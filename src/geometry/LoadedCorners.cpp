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

std::vector<unsigned int> FindBadFaces(const CFaceList& faces, int pointCount)
{
    std::vector<unsigned int> bad;
    const auto isThere = [end = static_cast<unsigned int>(pointCount)](int corner) { return static_cast<unsigned int>(corner) < end; };
    faces.ForEachLiveFace([&](int face, const int* corners, int count) {
        if (!std::all_of(corners, corners + count, isThere))
            bad.push_back(static_cast<unsigned int>(face));
    });
    return bad;
}

bool DropFaceData(CFaceList& faces, unsigned int i)
{
    CFace face;
    if (!faces.GetFace(i, face) || (face.GetSize() == 0 && face.IsFlagSet(FACE_EMPTY) && !face.IsFlagSet(FACE_INVALID)))
        return false;
    face.RemoveAll();
    face.SetFlag(FACE_INVALID, false);
    face.SetFlag(FACE_EMPTY, true);
    return true;
}
