#include "scene/Materials.h"

#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(CMaterials, CXObject)

static constexpr unsigned int DEFAULT_MATERIAL = 9358;

CMaterials::CMaterials() = default;

CMaterials::~CMaterials() { RemoveAll(); }

void CMaterials::Serialize(CXArchive&) {}

C3DMaterial* CMaterials::CreateNewMaterial(unsigned int id)
{
    C3DMaterial* material = new C3DMaterial;
    material->m_owner = this;
    if (id != 0xFFFFFFFF && !FindByID(id))
        material->m_materialID = id;
    if (material->m_materialID == 0 && !material->m_name.LoadStringW(DEFAULT_MATERIAL))
        material->m_name = L"Default Material";
    m_byID.Insert(material->m_materialID, material);
    return material;
}

C3DMaterial* CMaterials::FindByID(unsigned int id) { return const_cast<const CMaterials*>(this)->FindByID(id); }

C3DMaterial* CMaterials::FindByID(unsigned int id) const
{
    C3DMaterial** found = m_byID.Find(id);
    return found ? *found : nullptr;
}

bool CMaterials::RemoveMaterial(unsigned int id)
{
    C3DMaterial* material = FindByID(id);
    if (!material)
        return false;
    m_byID.Remove(id);
    delete material;
    return true;
}

void CMaterials::RemoveAll()
{
    for (const auto& entry : m_byID)
        delete entry.second;
    m_byID.RemoveAll();
}

void CMaterials::GetNext(unsigned int& pos, unsigned int& id, C3DMaterial*& material) const
{
    const auto& entry = m_byID.GetNext(pos);
    id = entry.first;
    material = entry.second;
}
