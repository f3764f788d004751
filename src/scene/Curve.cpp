#include "scene/Curve.h"

#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(C3DCurve, C3DGeomObject)

C3DCurve::C3DCurve() : C3DGeomObject(OBJECT_CURVE) {}

C3DCurve::C3DCurve(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(OBJECT_CURVE, points, faces, channels)
{
}

C3DCurve::~C3DCurve() = default;

void C3DCurve::Serialize(CXArchive& ar)
{
    C3DGeomObject::Serialize(ar);
    Move(ar, m_material);
}

bool C3DCurve::InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const
{
    if (!C3DGeomObject::InternalCopy(target, copyFlags, creator))
        return false;
    if (target->GetKindOf() == OBJECT_CURVE)
        static_cast<C3DCurve*>(target)->m_material = m_material;
    return true;
}
