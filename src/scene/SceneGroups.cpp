#include <vector>

#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "scene/Group.h"

void C3DScene::RemoveGroups()
{
    // The list of the root's children is the queue: what a node holds goes behind everything that is still to be looked at.
    C3DSceneNode* const root = GetRoot();
    for (C3DSceneNode* node = GetChildNode(root); node;) {
        while (CTreeNode* child = node->GetFirstChild())
            CTree::Relink(child, root);
        C3DSceneNode* const next = GetRightNode(node);
        if (node->GetObjectKindOf() == OBJECT_GROUP)
            CTree::DeleteBranch(node);
        node = next;
    }
}

/// A group that stands where `node` stands, in the name of one of its children.
static C3DSceneNode* CreateGroupFor(const C3DSceneNode* node, const C3DSceneNode* child)
{
    C3DSceneNode* group = C3DSceneNode::Create();
    group->SetObject(new C3DGroup, true);
    group->Inherit(node, 0);
    group->SetName(child->GetName());
    return group;
}

bool C3DScene::MakeGroupForChilds(C3DSceneNode* start)
{
    // A new group goes behind its node's siblings, so that the walk meets it later, with the child in it. Only the groups for
    // children of `start` lie outside its branch; they follow as branches of their own.
    if (!start)
        start = GetRoot();
    bool changed = false;
    std::vector<C3DSceneNode*> branches{start};
    for (std::size_t i = 0; i < branches.size(); i++) {
        C3DSceneNode* const top = branches[i];
        for (C3DSceneNode* node = top; node; node = NextInBranch(node, top)) {
            C3DSceneNode* const parent = node->GetParent();
            if (!node->IsGeomObject() || !parent)
                continue;
            while (C3DSceneNode* child = static_cast<C3DSceneNode*>(node->GetFirstChild())) {
                C3DSceneNode* group = CreateGroupFor(node, child);
                AddNode(parent, group);
                CTree::Relink(child, group);
                if (node == top)
                    branches.push_back(group);
                changed = true;
            }
        }
    }
    return changed;
}

void C3DScene::CleanGroups(bool onlyEmpty)
{
    std::vector<C3DSceneNode*> groups;
    for (C3DNodePos pos = GetFirstNode(OBJECT_GROUP); pos;)
        groups.push_back(GetNextNode(pos));

    for (C3DSceneNode* group : groups) {
        if (!onlyEmpty && group->GetFirstChild() && group->GetFirstChild() == group->GetLastChild()) {
            C3DSceneNode* child = GetChildNode(group);
            MergeMatrixKeyframes(group, child);
            CTree::MoveRight(group, child);
        }
        // In the order of the walk the parents are behind us, so they may go too.
        while (!group->GetFirstChild() && !IsSceneRoot(group) && group->GetObjectKindOf() == OBJECT_GROUP) {
            C3DSceneNode* parent = group->GetParent();
            CTree::DeleteBranch(group);
            if (!onlyEmpty)
                break;
            group = parent;
        }
    }
}
