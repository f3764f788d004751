// What CGeomInfo knows of scenes.

#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/GeomObject.h"

CGeomInfo::CGeomInfo(C3DBaseObject* object) : CGeomInfo(nullptr, object) {}

CGeomInfo::CGeomInfo(C3DSceneNode* node, C3DBaseObject* object) : m_node(node), m_object(object)
{
    m_scene = object ? object->GetScene() : nullptr;
    C3DGeomObject* geometry = GetGeomObject();
    if (!geometry)
        return;
    m_srcPoints = geometry->GetPointList();
    m_srcFaces = geometry->GetFaceList();
    m_srcChannels = geometry->GetChannels();
    m_smoothMode = geometry->GetSmoothMode();
    m_smoothAngle = geometry->GetSmoothAngle();
}

C3DGeomObject* CGeomInfo::GetGeomObject() const { return XDynamicCast<C3DGeomObject>(m_object); }
