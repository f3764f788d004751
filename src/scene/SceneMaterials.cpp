#include "scene/3DScene.h"
#include "scene/GeomObject.h"

static unsigned int IDOf(const C3DMaterial* material) { return material ? material->GetMaterialID() : 0xFFFFFFFF; }

unsigned int C3DScene::FindMaterialID(const C3DMaterial& material, bool byName) const { return IDOf(m_materials.Find(material, byName)); }

unsigned int C3DScene::GetMaterialID(const CXTString<wchar_t>& name) const { return IDOf(m_materials.FindByName(name)); }

C3DMaterial* C3DScene::GetNextMaterial(unsigned int& pos) const
{
    unsigned int id;
    C3DMaterial* material;
    m_materials.GetNext(pos, id, material);
    return material;
}

unsigned int C3DScene::GetMaterials(C3DSceneNode* start, C3DFaceList::MaterialsMap& uses, bool reset) const
{
    if (reset)
        uses.RemoveAll();
    C3DGeomObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC, ITER_SUBTREE, start); pos;) {
        GetNextNode(object, pos);
        const C3DFaceList::MaterialsMap* const used = object ? object->GetMaterialsHashMap(true) : nullptr;
        if (!used)
            continue;
        for (const auto& entry : *used)
            uses[entry.first]++;
    }
    return uses.GetCount();
}

unsigned int C3DScene::GetNodesByMaterial(C3DSceneNode* start, unsigned int materialID, CXArray<C3DSceneNode*>& nodes, bool reset) const
{
    if (reset)
        nodes.RemoveAll();
    if (materialID < 0xFFFFFFFE) {
        C3DGeomObject* object;
        for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC, ITER_SUBTREE, start); pos;) {
            C3DSceneNode* const node = GetNextNode(object, pos);
            const C3DFaceList::MaterialsMap* const used = object ? object->GetMaterialsHashMap(true) : nullptr;
            if (used && used->Find(materialID))
                nodes.Add(node);
        }
    }
    return nodes.GetSize();
}
