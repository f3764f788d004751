// The normal to draw a corner with: the given one, else the smoothed one.

#include "channels/NormalFaceList.h"
#include "channels/NormalMode.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

namespace {

enum Status : unsigned int { STATUS_NONE = 0, STATUS_GIVEN = 2, STATUS_COMPUTED = 5, STATUS_SMOOTHED = 9 };

C3DTVector<float>* VectorOfCorner(CFaceList* faces, C3DVectorList* vectors, int face, int corner)
{
    if (!faces || !vectors)
        return nullptr;
    int count;
    const int* corners = faces->GetIndexes(face, count);
    return static_cast<unsigned int>(corner) < static_cast<unsigned int>(count) ? vectors->ElementAt(corners[corner]) : nullptr;
}

}    // namespace

void CPointNormalChannel::PrepareSmoothing(const CGeomInfo* info, CSpecNormalChannel* given)
{
    m_specFaces = given ? given->GetNormalFaceList() : nullptr;
    m_specVectors = given ? given->GetNormalVectorList() : nullptr;
    m_geometryFaces = info ? info->GetSrcFaceList() : nullptr;
    if (given && info)
        given->ComputeNormals(info, static_cast<_NormalSmoothMode>(info->GetSmoothMode()));
}

C3DTVector<float>* CPointNormalChannel::GetSmoothNormalByCorner(int face, int corner, unsigned int* status)
{
    C3DTVector<float>* normal = nullptr;
    Status found = STATUS_NONE;
    if (m_specFaces && !m_specFaces->IsFaceOneFlagSet(face, FACE_DEAD)) {
        normal = VectorOfCorner(m_specFaces, m_specVectors, face, corner);
        if (normal && !normal->IsFlagSet(POINT_UNSET))
            found = normal->IsFlagSet(POINT_COMPUTED) ? STATUS_COMPUTED : STATUS_GIVEN;
    }
    if (found == STATUS_NONE) {
        normal = VectorOfCorner(GetNormalFaceList(), GetNormalVectorList(), face, corner);
        found = normal ? STATUS_SMOOTHED : STATUS_NONE;
    }
    if (status)
        *status = found;
    return normal;
}

C3DTVector<float>* CPointNormalChannel::GetSmoothNormalByIndex(int face, int point, unsigned int* status)
{
    CFace view;
    const int corner = m_geometryFaces && m_geometryFaces->GetFace(face, view) ? view.IsFacePoint(point) : -1;
    if (corner >= 0)
        return GetSmoothNormalByCorner(face, corner, status);
    if (status)
        *status = STATUS_NONE;
    return nullptr;
}
