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

const C3DGeomObject::MaterialMap* C3DCurve::GetMaterialsHashMap(bool withBack)
{
    const MaterialMap* const ofFaces = C3DGeomObject::GetMaterialsHashMap(withBack);
    m_used = ofFaces ? *ofFaces : MaterialMap();
    m_used[m_material]++;
    return &m_used;
}

bool C3DCurve::ReplaceMaterial(unsigned int from, unsigned int to)
{
    MaterialMap map;
    map.SetAt(from, to);
    return ReplaceMaterials(map);
}

bool C3DCurve::ReplaceMaterials(const MaterialMap& map)
{
    const bool facesChanged = C3DGeomObject::ReplaceMaterials(map);
    const unsigned int* const to = map.Find(m_material);
    if (!to || *to == m_material)
        return facesChanged;
    m_material = *to;
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
    return true;
}
