#include "scene/Patch.h"

#include <algorithm>
#include <climits>
#include <cstdint>

#include "scene/3DObject.h"
#include "scene/MeshObjectCreator.h"
#include "scene/Preferences.h"

ZEL_IMPLEMENT_CREATABLE(C3DPatch, C3DGeomObject)

C3DPatch::C3DPatch() : C3DGeomObject(OBJECT_PATCH) {}

C3DPatch::C3DPatch(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(OBJECT_PATCH, points, faces, channels)
{
}

C3DPatch::~C3DPatch() { DeleteMe(m_final); }

void C3DPatch::Invalidate(unsigned int flags, bool set)
{
    if (flags & 0xFFFF)
        ReleasePatch();
    C3DGeomObject::Invalidate(flags, set);
}

void C3DPatch::SceneChanged()
{
    if (m_final)
        m_final->SetScene(GetScene());
}

C3DBaseObject* C3DPatch::GetFinalObject(bool detach)
{
    if (!m_final && m_level >= 0)
        Subdivide(m_level);
    else if (!m_final)
        SetLevel(static_cast<int>(C3DPreferences::Get3DPreferences().GetPatchLevel()));
    if (!m_final)
        return nullptr;    // the mesh cannot be copied, or the user stopped the subdivision
    m_final->SetScene(detach ? nullptr : GetScene());
    C3DObject* const final = m_final;
    if (detach)
        m_final = nullptr;
    return final;
}

bool C3DPatch::InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const
{
    if (!C3DGeomObject::InternalCopy(target, copyFlags, creator))
        return false;
    C3DPatch* patch = target != this ? static_cast<C3DPatch*>(*target) : nullptr;
    if (!patch)
        return true;
    DeleteMe(patch->m_final);
    patch->m_level = m_level;
    patch->m_final = m_final ? static_cast<C3DObject*>(*m_final->Copy(0, nullptr)) : nullptr;
    return true;
}

void C3DPatch::SetLevel(int level)
{
    if (level < 0)
        return ReleasePatch();
    level = std::min(level, MOST_LEVEL);
    if (level == m_level)
        return;
    ReleasePatch();
    m_level = level;
    Subdivide(level);
    Invalidate(OBJECT_UPDATE_DISPLAY, true);
}

C3DObject* C3DPatch::GetSourceObject() const
{
    C3DMeshObjectCreator creator;
    C3DBaseObject* object = nullptr;
    if (InternalCopy(object, 0, &creator))
        return static_cast<C3DObject*>(*object);
    DeleteMe(object);
    return nullptr;
}

int C3DPatch::EstimateLevel(C3DObject* object, unsigned int level)
{
    const C3DFaceList* faces = object ? object->GetFaceList() : nullptr;
    if (!faces || level == 0)
        return faces ? faces->GetSize() : 0;
    std::int64_t split = 0;
    for (unsigned int face = 0; face < static_cast<unsigned int>(faces->GetSize()); face++) {
        const unsigned int size = faces->GetIndexCollection().GetItemCount(face);
        split += (size == 3 || size == 4) && !faces->IsFaceFlagSet(face, FACE_INVALID);
    }
    return static_cast<int>(std::min<std::int64_t>(split << std::min(2 * level, 32u), INT_MAX));
}

void C3DPatch::ReleasePatch()
{
    DeleteMe(m_final);
    m_final = nullptr;
    m_level = -1;
}
