#include <vector>

#include "scene/3DScene.h"
#include "scene/BranchWalk.h"

/// The node after `node` in the scene; nodes without object count too.
static C3DSceneNode* Next(const C3DScene& scene, const C3DSceneNode* node) { return NextInBranch(node, scene.GetRoot()); }

void C3DScene::Select(C3DSceneNode* node, unsigned int flags)
{
    if (!node)
        return;
    if (!(flags & SELECT_ADD)) {
        SelectNone();
        Unselect(GetRoot());    // which may have been selected on its own
    }

    CHashTable<const C3DBaseObject*> shared;
    const auto select = [&](C3DSceneNode* selected) {
        selected->SetFlag(NODE_SELECTED, true);
        const C3DBaseObject* object = selected->GetBaseObject();
        if (object && object->IsInstanciated())
            shared.Insert(object);
    };
    if (flags & SELECT_BRANCH)
        ForBranch(node, select);
    else
        select(node);

    if (!(flags & SELECT_INSTANCES) || shared.IsEmpty())
        return;
    for (C3DSceneNode* other = Next(*this, GetRoot()); other; other = Next(*this, other)) {
        if (other->GetBaseObject() && shared.Find(other->GetBaseObject()))
            other->SetFlag(NODE_SELECTED, true);
    }
}

void C3DScene::SelectAll()
{
    for (C3DSceneNode* node = Next(*this, GetRoot()); node; node = Next(*this, node))
        node->SetFlag(NODE_SELECTED, true);
}

void C3DScene::SelectNone()
{
    for (C3DSceneNode* node = Next(*this, GetRoot()); node; node = Next(*this, node))
        node->SetFlag(NODE_SELECTED, false);
}

void C3DScene::Unselect(C3DSceneNode* node)
{
    if (node)
        node->SetFlag(NODE_SELECTED, false);
}

bool C3DScene::IsNodeSelected() const
{
    for (const C3DSceneNode* node = Next(*this, GetRoot()); node; node = Next(*this, node)) {
        if (node->IsFlagSet(NODE_SELECTED))
            return true;
    }
    return false;
}

unsigned int C3DScene::GetSelectedNodes(CXArray<C3DSceneNode*>& nodes) const
{
    nodes.RemoveAll();
    for (C3DSceneNode* node = Next(*this, GetRoot()); node; node = Next(*this, node)) {
        if (node->IsFlagSet(NODE_SELECTED))
            nodes.Add(node);
    }
    return static_cast<unsigned int>(nodes.GetSize());
}
