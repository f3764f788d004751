#include "viewer/MarkedFaces.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "render/RenderElement.h"
#include "scene/3DScene.h"
#include "scene/Filter.h"
#include "scene/GeomObject.h"
#include "scene/Material.h"

namespace {

/// Polygon objects with faces, shared ones once.
std::vector<C3DGeomObject*> GetObjects(const C3DScene& scene)
{
    std::vector<C3DGeomObject*> objects;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL, ITER_UNIQUE_OBJECTS); pos;) {
        C3DGeomObject* object;
        scene.GetNextNode(object, pos);
        if (object && object->GetFaceList())
            objects.push_back(object);
    }
    return objects;
}

bool IsMarked(unsigned int flags) { return (flags & (VIEW_FACE_MARKED | FACE_DEAD)) == VIEW_FACE_MARKED; }

/// Lets `change(face, flags)` change the flags of all faces of an object; whether it did.
template <class CHANGE> bool ChangeFaces(C3DGeomObject& object, CHANGE change)
{
    const CFaceFlags flags(*object.GetFaceList());
    bool changed = false;
    for (int i = 0; i < object.GetFaceNbr(); i++) {
        const unsigned int face = static_cast<unsigned int>(i), former = flags[face];
        change(face, flags[face]);
        changed |= flags[face] != former;
    }
    if (changed)
        object.Invalidate(CHANGE_OTHER, true);
    return changed;
}

/// Nodes of objects in a set.
class CFilterByObject : public C3DFilter {
public:
    explicit CFilterByObject(const std::unordered_set<const C3DBaseObject*>& objects) : m_objects(objects) {}
    bool ProcessNode(const C3DSceneNode* node) const override { return m_objects.count(node->GetBaseObject()) > 0; }

private:
    const std::unordered_set<const C3DBaseObject*>& m_objects;
};

}

bool HasMarkedFaces(const C3DScene& scene)
{
    for (const C3DGeomObject* const object : GetObjects(scene)) {
        const CFaceFlags flags(*object->GetFaceList());
        for (int i = 0; i < object->GetFaceNbr(); i++)
            if (IsMarked(flags[i]))
                return true;
    }
    return false;
}

bool ClearFaceMarks(C3DScene& scene)
{
    bool changed = false;
    for (C3DGeomObject* const object : GetObjects(scene))
        changed |= ChangeFaces(*object, [](unsigned int, unsigned int& flags) { flags &= ~VIEW_FACE_MARKED; });
    return changed;
}

std::vector<CFaceSet> HideFaces(C3DScene& scene, bool others)
{
    std::vector<CFaceSet> hidden;
    for (C3DGeomObject* const object : GetObjects(scene)) {
        CFaceSet set{object->GetObjectID(), object->GetFaceNbr(), {}};
        ChangeFaces(*object, [&](unsigned int face, unsigned int& flags) {
            if (flags & (FACE_DEAD | VIEW_FACE_HIDDEN) || IsMarked(flags) == others)
                return;
            set.faces.push_back(face);
            flags = (flags | VIEW_FACE_HIDDEN) & ~VIEW_FACE_MARKED;
        });
        if (!set.faces.empty())
            hidden.push_back(std::move(set));
    }
    return hidden;
}

bool ShowFaces(C3DScene& scene, const std::vector<CFaceSet>& sets, bool mark)
{
    std::unordered_map<unsigned int, const CFaceSet*> byObject;
    for (const CFaceSet& set : sets)
        byObject[set.objectID] = &set;
    bool changed = false;
    for (C3DGeomObject* const object : GetObjects(scene)) {
        const auto found = byObject.find(object->GetObjectID());
        if (found == byObject.end() || found->second->faceCount != object->GetFaceNbr())
            continue;
        const CFaceFlags flags(*object->GetFaceList());
        bool shown = false;
        for (const unsigned int face : found->second->faces)
            if (flags[face] & VIEW_FACE_HIDDEN) {
                flags[face] = (flags[face] & ~VIEW_FACE_HIDDEN) | (mark ? +VIEW_FACE_MARKED : 0);
                shown = true;
            }
        if (shown)
            object->Invalidate(CHANGE_OTHER, true);
        changed |= shown;
    }
    return changed;
}

void ShowAllFaces(C3DScene& scene)
{
    for (C3DGeomObject* const object : GetObjects(scene)) {
        const C3DFaceList& faces = *object->GetFaceList();
        unsigned int last = NO_MATERIAL;
        bool lastHidden = false;
        ChangeFaces(*object, [&](unsigned int face, unsigned int& flags) {
            if (!(flags & VIEW_FACE_HIDDEN))
                return;
            if (const unsigned int id = faces.GetFaceMaterial(face); id != last) {
                const C3DMaterial* const material = scene.GetMaterialByID(id);
                lastHidden = material && material->IsFlagSet(MATERIAL_HIDDEN);
                last = id;
            }
            if (!lastHidden)
                flags &= ~VIEW_FACE_HIDDEN;
        });
    }
}

bool DeleteMarkedFaces(C3DScene& scene)
{
    bool changed = false;
    std::unordered_set<const C3DBaseObject*> empty;
    for (C3DGeomObject* const object : GetObjects(scene)) {
        const bool removed = ChangeFaces(*object, [](unsigned int, unsigned int& flags) {
            if (IsMarked(flags))
                flags |= FACE_INVALID;
        });
        if (!removed)
            continue;
        changed = true;
        object->Clean();
        if (object->GetFaceNbr() == 0)
            empty.insert(object);
    }
    if (!empty.empty()) {
        const CFilterByObject filter(empty);
        scene.DeleteNodes(nullptr, &filter);
    }
    return changed;
}
