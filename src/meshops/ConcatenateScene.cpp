// Concatenation of the objects of a branch, transforms baked in.

#include <vector>

#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Filter.h"
#include "scene/NodeWalkTM.h"

namespace {

/// A node that gives its object, and where that stands.
struct Part {
    C3DSceneNode* node;
    C4x4TMatrix<float> matrix;
};

C3DObject* CreateDestination() { return new C3DObject(C3DPointList::Create(), C3DFaceList::Create(nullptr), nullptr); }

// All matrices are taken before the first node is changed: a parent that loses its keys would take its children along.
std::vector<Part> ListParts(const C3DScene& scene, C3DSceneNode* start, const C3DFilter* filter, bool includeStart)
{
    std::vector<Part> parts;
    CNodeWalkTM walk(scene.GetTickCount(), false);    // the result stands under the root
    C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, includeStart ? ITER_SUBTREE | ITER_INCLUDE_START : ITER_SUBTREE, start);
    for (pos.SetFilter(filter); pos;) {
        C3DSceneNode* node = scene.GetNextNode(pos);
        if (node->GetGeomObject()->IsFlagSet(OBJECT_EMPTY) || node->IsFlagSet(NODE_HIDDEN))
            continue;
        parts.push_back({node, {}});
        walk.Get(node, parts.back().matrix);
    }
    return parts;
}

// The object in the space of the result, with a reference of the caller's. A node that stays is not touched.
C3DGeomObject* TakeObject(const Part& part, bool replace)
{
    if (replace || part.matrix.IsIdentity()) {
        if (replace && !part.matrix.IsIdentity())
            part.node->ConvertToGlobalCoordinates(part.matrix);
        C3DGeomObject* object = part.node->GetGeomObject();
        object->AddRef();
        return object;
    }
    C3DSceneNode* copy = part.node->Copy(0, nullptr);
    if (!copy)
        return nullptr;
    copy->ConvertToGlobalCoordinates(part.matrix);
    C3DGeomObject* object = copy->GetGeomObject();
    copy->SetObject(nullptr, false);
    copy->Delete();
    return object;
}

bool IsFilled(const C3DGeomObject& object) { return object.GetPointNbr() > 0 && object.GetFaceNbr() > 0; }

}

C3DSceneNode* C3DScene::Concatenate(C3DSceneNode* start, const CXTString<wchar_t>& name, C3DGeomObject* destination, bool replace,
                                    C3DFilter* filter, bool includeStart)
{
    if (!destination)
        destination = CreateDestination();
    if (!start)
        start = GetRoot();
    if (replace && start == GetRoot())
        ConvertToGlobalCoordinates(nullptr);

    CXArray<C3DGeomObject*, C3DGeomObject*> objects;
    for (const Part& part : ListParts(*this, start, filter, includeStart))
        if (C3DGeomObject* object = TakeObject(part, replace))
            objects.Add(object);
    destination->Concatenate(this, objects, filter);
    for (C3DGeomObject* object : objects)
        DeleteMe(object);
    if (!IsFilled(*destination)) {
        DeleteMe(destination);
        return nullptr;
    }

    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(destination, true);
    node->SetName(name);
    if (replace) {
        RemoveNode(start, true);
        AddNode(nullptr, node);
    }
    return node;
}

int C3DScene::ConcatenateByMaterials(C3DSceneNode* start, bool replace, C3DFilterByMaterial* filter)
{
    C3DFilterByMaterial local;
    if (!filter)
        filter = &local;
    ConvertToGlobalCoordinates(start);
    C3DFaceList::MaterialsMap materials;
    GetMaterials(start, materials, false);
    std::vector<C3DSceneNode*> nodes;
    for (const auto& entry : materials) {
        const C3DMaterial* material = GetMaterialList().FindByID(entry.first);
        if (!material)
            continue;
        filter->SetMaterial(entry.first, true);
        if (C3DSceneNode* node = Concatenate(start, material->GetName(), nullptr, false, filter, true))
            nodes.push_back(node);
    }
    if (replace)
        RemoveAllNodes();
    for (C3DSceneNode* node : nodes)
        AddNode(nullptr, node);
    return static_cast<int>(nodes.size());
}
