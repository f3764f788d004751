#pragma once

#include <memory>

#include <3dzel.h>

#include "AnimationExport.h"
#include "Writers.h"

/// Hands each geometric object to `take(node, object)` in scene space: itself where its node leaves it in place, else a moved copy, which lives
/// as long as somebody holds it.
template <class TAKE> void ForWorldObjects(const C3DScene& scene, TAKE take)
{
    CNodeWalkTM walk(0, true);
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        C3DSceneNode* node = scene.GetNextNode(pos);
        C3DBaseObject* shown = node->GetFinalObject();
        C3DGeomObject* object = shown ? static_cast<C3DGeomObject*>(*shown) : nullptr;
        if (!object)
            continue;
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        if (matrix == C4x4TMatrix<float>()) {
            take(*node, std::shared_ptr<C3DGeomObject>(object, [](C3DGeomObject*) {}));
            continue;
        }
        C3DBaseObject* moved = object->Copy(0, nullptr);
        moved->SetScene(object->GetScene());    // whose smooth settings it may inherit
        moved->MatrixTransform(matrix);
        take(*node, std::shared_ptr<C3DGeomObject>(static_cast<C3DGeomObject*>(*moved), [](C3DGeomObject* copy) { DeleteMe(copy); }));
    }
}

/// Counts what formats without a tree leave out beside geometry: cameras, lights, empty nodes, keys.
inline void CountNodeLosses(const WriterTask& task)
{
    for (C3DNodePos pos = task.scene.GetFirstNode(OBJECT_CAMERA | OBJECT_LIGHT | OBJECT_DUMMY); pos;) {
        const unsigned int kind = task.scene.GetNextNode(pos)->GetObjectKindOf();
        task.losses.Add(kind == OBJECT_CAMERA ? LOSS_CAMERAS : kind == OBJECT_LIGHT ? LOSS_LIGHTS : LOSS_DUMMIES);
    }
    ExportAnimations(task.scene, task.format, task.losses);
}
