// Concatenation of the objects of a branch, transforms baked in.

#include "meshops/Concatenate.h"

#include <optional>
#include <vector>

#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Filter.h"
#include "scene/NodeWalkTM.h"
#include "tools/Progress.h"

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
    const bool inPlace = part.matrix == C4x4TMatrix<float>();
    if (replace || inPlace) {
        if (replace && !inPlace)
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

/// What becomes of the nodes that a branch is joined from.
enum Fate {
    STAY,        // as they are
    GO_LATER,    // the caller removes them; their materials may follow the result
    ARE_REPLACED
};

// The node that holds the destination, or null. It stands in the scene when it replaces the branch.
C3DSceneNode* JoinBranch(C3DScene& scene, C3DSceneNode* start, const CXTString<wchar_t>& name, C3DGeomObject* destination, Fate fate,
                         C3DFilter* filter, bool includeStart, int* droppedFaces)
{
    const bool replace = fate == ARE_REPLACED;
    if (!destination)
        destination = CreateDestination();
    if (!start)
        start = scene.GetRoot();
    CProgress progress(L"Concatenating", 2);
    if (progress.IsCancelled()) {
        DeleteMe(destination);
        return nullptr;
    }
    std::optional<CProgressCommit> commit;
    if (replace)
        commit.emplace();    // nodes change where they stand
    if (replace && start == scene.GetRoot())
        scene.ConvertToGlobalCoordinates(nullptr);

    CXArray<C3DGeomObject*, C3DGeomObject*> objects;
    for (const Part& part : ListParts(scene, start, filter, includeStart))
        if (C3DGeomObject* object = TakeObject(part, replace))
            objects.Add(object);
    progress.Step();
    Concatenate(*destination, &scene, objects, filter, fate == STAY, droppedFaces);
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
        scene.RemoveNode(start, true);
        scene.AddNode(nullptr, node);
    }
    return node;
}

int JoinByMaterials(C3DScene& scene, C3DSceneNode* start, bool replace, C3DFilterByMaterial* filter, int* droppedFaces)
{
    C3DFilterByMaterial local;
    if (!filter)
        filter = &local;
    C3DFaceList::MaterialsMap materials;
    scene.GetMaterials(start, materials, false);
    CProgress progress(L"Concatenating", materials.GetCount());
    if (progress.IsCancelled())
        return 0;
    const CProgressCommit commit;    // the coordinates change where they are
    scene.ConvertToGlobalCoordinates(start);
    std::vector<C3DSceneNode*> nodes;
    std::uint64_t done = 0;
    for (const auto& entry : materials) {
        progress.SetPos(done++);
        const C3DMaterial* material = scene.GetMaterialList().FindByID(entry.first);
        if (!material)
            continue;
        filter->SetMaterial(entry.first, true);
        if (C3DSceneNode* node =
                JoinBranch(scene, start, material->GetName(), nullptr, replace ? GO_LATER : STAY, filter, true, droppedFaces))
            nodes.push_back(node);
    }
    if (replace)
        scene.RemoveAllNodes();
    for (C3DSceneNode* node : nodes)
        scene.AddNode(nullptr, node);
    return static_cast<int>(nodes.size());
}

}

C3DSceneNode* C3DScene::Concatenate(C3DSceneNode* start, const CXTString<wchar_t>& name, C3DGeomObject* destination, bool replace,
                                    C3DFilter* filter, bool includeStart)
{
    return JoinBranch(*this, start, name, destination, replace ? ARE_REPLACED : STAY, filter, includeStart, nullptr);
}

int C3DScene::ConcatenateByMaterials(C3DSceneNode* start, bool replace, C3DFilterByMaterial* filter)
{
    return JoinByMaterials(*this, start, replace, filter, nullptr);
}

bool ConcatenateScene(C3DScene& scene, const CXTString<wchar_t>& name, int& droppedFaces)
{
    droppedFaces = 0;
    return JoinBranch(scene, nullptr, name, nullptr, ARE_REPLACED, nullptr, false, &droppedFaces) != nullptr;
}

int ConcatenateSceneByMaterials(C3DScene& scene, int& droppedFaces)
{
    droppedFaces = 0;
    return JoinByMaterials(scene, nullptr, true, nullptr, &droppedFaces);
}
