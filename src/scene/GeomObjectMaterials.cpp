#include <utility>
#include <vector>

#include "geometry/GeomInfo.h"
#include "scene/GeomObject.h"

const C3DGeomObject::MaterialMap* C3DGeomObject::GetMaterialsHashMap(bool withBack)
{
    const CGeomInfo info(this);
    return m_faces ? m_faces->GetMaterialsHashMap(&info, withBack) : nullptr;
}

bool C3DGeomObject::ReplaceMaterial(unsigned int from, unsigned int to)
{
    if (!m_faces || !m_faces->ReplaceMaterial(from, to))
        return false;
    Invalidate(CHANGE_FACES, true);
    return true;
}

bool C3DGeomObject::ReplaceMaterials(const MaterialMap& map)
{
    const MaterialMap* used = map.IsEmpty() ? nullptr : C3DGeomObject::GetMaterialsHashMap(true);
    if (!used || used->IsEmpty())
        return false;

    // One pass with a look-up a face, not one pass a pair: pairs may exchange ids, and come by the hundred.
    bool changed = false;
    const auto replace = [&](unsigned int& material) {
        const unsigned int* to = map.Find(material);
        if (to && *to != material) {
            material = *to;
            changed = true;
        }
    };
    const bool hasBack = m_faces->HasBackFaceMaterials();
    for (int i = 0; i < m_faces->GetSize(); i++) {
        C3DFace face;
        m_faces->GetFace(i, face);
        unsigned int material = face.GetMaterialID();
        replace(material);
        face.SetMaterialID(material);
        if (hasBack && (material = m_faces->GetBackFaceMaterial(i)) != NO_MATERIAL) {
            replace(material);
            m_faces->SetBackFaceMaterial(i, material);
        }
    }
    if (!changed)
        return false;
    Invalidate(CHANGE_FACES, true);
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
    return true;
}
