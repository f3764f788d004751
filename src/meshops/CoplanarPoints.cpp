// Points all of whose faces lie in one plane.

#include <cmath>

#include "channels/FaceNormals.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"

static bool AreCoplanar(const CFaceNormals& normals, const int* faces, int count, double threshold)
{
    for (int i = 1; i < count; i++)
        if (!(Dot(normals[faces[0]], normals[faces[i]]) >= threshold))
            return false;
    return count > 1;
}

void C3DPointList::InitShareCoplanarFacesFlag(const CGeomInfo* info, double angle)
{
    constexpr double SMALLEST_ANGLE = 1.7453292519943294e-6;    // 0.0001 degrees
    SetPointsFlags(POINT_SHARE_COPLANAR, false);
    CFaceList* const faces = info ? info->GetSrcFaceList() : nullptr;
    if (!faces || faces->GetSize() == 0)
        return;
    const double threshold = std::cos(angle == 0 ? SMALLEST_ANGLE : angle);
    const CFaceNormals normals(info);
    faces->InitPointToFaceGraph(info);
    for (int point = 0; point < GetSize(); point++) {
        int count;
        const int* const around = faces->GetFacesConnectedToPoint(point, count);
        if (AreCoplanar(normals, around, count, threshold))
            ElementAt(point)->SetFlag(POINT_SHARE_COPLANAR, true);
    }
    faces->DeletePointToFaceGraph();
}
