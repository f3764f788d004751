#pragma once

#include "scene/SceneNode.h"

// Walks over a branch that need no tree: depth-first, parent first, no recursion, no memory.

/// The node after `node` in the branch of `top`, or null.
inline C3DSceneNode* NextInBranch(const C3DSceneNode* node, const C3DSceneNode* top)
{
    if (node->GetFirstChild())
        return static_cast<C3DSceneNode*>(node->GetFirstChild());
    for (; node != top; node = node->GetParent()) {
        if (node->GetNextSibling())
            return static_cast<C3DSceneNode*>(node->GetNextSibling());
    }
    return nullptr;
}

/// Calls `action` for `top` and every node below it.
template <class ACTION> void ForBranch(C3DSceneNode* top, ACTION action)
{
    for (C3DSceneNode* node = top; node; node = NextInBranch(node, top))
        action(node);
}
template <class ACTION> void ForBranch(const C3DSceneNode* top, ACTION action)
{
    for (const C3DSceneNode* node = top; node; node = NextInBranch(node, top))
        action(node);
}
