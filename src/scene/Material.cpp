#include "scene/Material.h"

#include "scene/ProcessState.h"
#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(C3DMaterial, CXObject)

C3DMaterial::C3DMaterial() : m_materialID(CreateSceneID(ID_MATERIAL)) {}

C3DMaterial::~C3DMaterial() = default;

void C3DMaterial::SetName(const CXTString<wchar_t>& name) { m_name = name; }

void C3DMaterial::Serialize(CXArchive& ar)
{
    C3DKeyframable::Serialize(ar);
    Move(ar, m_name);
    Move(ar, m_materialID);
    m_customData.Serialize(ar);
    if (ar.IsLoading())
        AdvanceSceneID(ID_MATERIAL, m_materialID);
}
