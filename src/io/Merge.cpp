// Joining scenes: one moves into another, or is copied there.

#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/ObjectCreator.h"
#include "scene/ObjectIDs.h"

// The materials of `from` that `to` lacks become materials of `to`. From each old id to the id in `to`.
static C3DFaceList::MaterialsMap TakeMaterials(C3DScene& to, const C3DScene& from)
{
    C3DFaceList::MaterialsMap ids;
    for (unsigned int pos = from.GetFirstMaterial(); pos != HASH_END;) {
        const C3DMaterial& material = *from.GetNextMaterial(pos);
        C3DMaterial* known = to.FindMaterial(material, false);
        if (!known) {
            known = to.CreateNewMaterial(0xFFFFFFFF);
            *known = material;
        }
        ids.SetAt(material.GetMaterialID(), known->GetMaterialID());
    }
    return ids;
}

// Every file counts its objects from 1: those of `from` whose ids `to` has already get new ones.
static void GiveFreeIDs(const C3DScene& to, const C3DScene& from)
{
    CObjectIDs ids;
    ids.Enter(to.GetRoot()->GetBaseObject());
    ids.EnterNodes(to);
    ids.EnterNodes(from);
}

bool C3DScene::Merge(C3DScene* other, C3DSceneNode* parent)
{
    if (!other || other == this || (parent && !IsSceneRoot(parent) && !IsNodeInScene(parent)))
        return false;
    const C3DFaceList::MaterialsMap ids = TakeMaterials(*this, *other);
    C3DGeomObject* object;
    // A shared object once: an id that was replaced may be the old id of another material.
    for (C3DNodePos pos = other->GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        other->GetNextNode(object, pos);
        object->ReplaceMaterials(ids);
    }
    GiveFreeIDs(*this, *other);
    for (C3DSceneNode* node = other->GetChildNode(nullptr); node;) {
        C3DSceneNode* const next = GetRightNode(node);
        other->RemoveNode(node, false);
        AddNode(parent, node);
        node = next;
    }
    DeleteMe(other);
    return true;
}

bool C3DScene::AddScene(const C3DScene* other, int flags, C3DObjectCreator* creator)
{
    if (!other)
        return false;
    C3DObjectCreator standard;
    other->CopyChilds(this, GetRoot(), other->GetRoot(), flags, creator ? creator : &standard);
    Inherit(other, static_cast<unsigned int>(flags));
    return true;
}
