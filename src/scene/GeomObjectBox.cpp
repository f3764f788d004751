#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/GeomObject.h"
#include "scene/SceneNode.h"

void C3DGeomObject::Box::Get(C3DTPoint<float>& outMin, C3DTPoint<float>& outMax) const
{
    outMin = C3DTPoint<float>(min[0], min[1], min[2]);
    outMax = C3DTPoint<float>(max[0], max[1], max[2]);
}

void C3DGeomObject::Box::Set(const C3DTPoint<float>& inMin, const C3DTPoint<float>& inMax)
{
    for (int i = 0; i < 3; i++) {
        min[i] = inMin[i];
        max[i] = inMax[i];
    }
}

bool C3DGeomObject::GetBoundingBox(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags, unsigned int pointFilter,
                                   bool wanted, const C3DSceneNode* node)
{
    if (IsFlagSet(OBJECT_EMPTY) || !(boxFlags & (BOX_FACES | BOX_POINTS)))
        return false;
    const bool byFaces = boxFlags & BOX_FACES;
    if (boxFlags & BOX_IN_NODE_SPACE) {
        if (!node)
            return false;
        C4x4TMatrix<float> matrix;
        node->GetNodeTM(0, matrix, true);
        return byFaces ? MeasureFaces(min, max, pointFilter, wanted, &matrix) : MeasurePoints(min, max, pointFilter, wanted, &matrix);
    }
    if (byFaces) {
        if (!IsInvalidate(OBJECT_UPDATE_FACE_BOX)) {
            m_faceBox.Get(min, max);
            return m_hasFaceBox;
        }
        m_hasFaceBox =
            m_faces ? MeasureFaces(min, max, pointFilter, wanted, nullptr) : GetBoundingBox(min, max, BOX_POINTS, pointFilter, wanted);
        m_faceBox.Set(min, max);
        SetUpdateFlags(OBJECT_UPDATE_FACE_BOX, false);
        return m_hasFaceBox;
    }
    if (!IsInvalidate(OBJECT_UPDATE_POINT_BOX)) {
        m_pointBox.Get(min, max);
        return m_points != nullptr;
    }
    MeasurePoints(min, max, pointFilter, wanted, nullptr);
    m_pointBox.Set(min, max);
    SetUpdateFlags(OBJECT_UPDATE_POINT_BOX, false);
    return true;
}

/// Always true; zeros for no points.
bool C3DGeomObject::MeasurePoints(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int filter, bool wanted,
                                  C4x4TMatrix<float>* matrix)
{
    min = max = C3DTPoint<float>();
    if (m_points)
        m_points->GetBoundingBox(min, max, filter, wanted, matrix);
    return true;
}

bool C3DGeomObject::MeasureFaces(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int filter, bool wanted, C4x4TMatrix<float>* matrix)
{
    if (!m_faces)
        return MeasurePoints(min, max, filter, wanted, matrix);
    const CGeomInfo info(this);
    return m_faces->GetBoundingBox(&info, min, max, filter, wanted, matrix);
}

bool C3DGeomObject::GetCG(C3DTPoint<float>& center) const
{
    if (!m_points)
        return false;
    center = m_points->GetCenterOfBoundingBox();
    return true;
}
