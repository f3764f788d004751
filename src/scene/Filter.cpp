#include "scene/Filter.h"

#include "geometry/3DFace.h"
#include "scene/GeomObject.h"
#include "scene/SceneNode.h"

C3DFilter::~C3DFilter() = default;

bool C3DFilter::ProcessNode(unsigned int mode, const C3DSceneNode* node)
{
    if (mode == 0)
        return true;
    const C3DBaseObject* object = node->GetBaseObject();
    if (mode & FILTER_EMPTY && object && object->IsFlagSet(OBJECT_EMPTY))
        return false;
    if (mode & FILTER_HIDDEN && node->IsFlagSet(NODE_HIDDEN))
        return false;
    return !(mode & FILTER_UNSELECTED) || node->IsFlagSet(NODE_SELECTED);
}

bool C3DFilter::ProcessNode(const C3DSceneNode* node) const { return ProcessNode(m_mode, node); }

bool C3DFilter::ProcessFace(const C3DBaseObject*, const C3DFace*) const { return true; }

bool C3DFilter::ProcessPoint(const C3DBaseObject*, const C3DTPoint<float>*) const { return true; }

C3DFilterByMaterial::~C3DFilterByMaterial() = default;

bool C3DFilterByMaterial::ProcessNode(const C3DSceneNode* node) const
{
    if (!C3DFilter::ProcessNode(node))
        return false;
    C3DGeomObject* object = node->GetGeomObject();
    const C3DGeomObject::MaterialMap* materials = object ? object->GetMaterialsHashMap(true) : nullptr;
    return materials && materials->Find(m_material);
}

bool C3DFilterByMaterial::ProcessFace(const C3DBaseObject*, const C3DFace* face) const
{
    return face->GetMaterialID() == m_material ? m_include : !m_include;
}
