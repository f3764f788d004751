#pragma once

#include <vector>

#include "scene/SceneNode.h"

/// World matrices along a walk: GetNodeTM for each node of a depth-first walk at a constant cost a step.
///
/// Keeps the transforms of the parents between two calls, so that a step pays for what differs from the step before. Any
/// order of nodes gives right answers; only depth-first ones are fast. Stale as soon as a key or the tree changes.
///
/// Multiplies from the top down, GetNodeTM from the node up: below the children of the root's children the two differ by how they round.
class ZEL_API CNodeWalkTM {
public:
    CNodeWalkTM(int time, bool withRoot) : m_time(time), m_withRoot(withRoot) {}

    /// GetNodeTM(time, matrix, withRoot) of the node.
    void Get(const C3DSceneNode* node, C4x4TMatrix<float>& matrix);

private:
    struct Level {
        const C3DSceneNode* node;
        float matrix[4][4];    ///< of the node's children, without pivots
    };
    bool IsInside(const C3DSceneNode* parent);
    void Enter(const C3DSceneNode* parent);
    void Place(const C3DSceneNode* node, const C4x4TMatrix<float>* local, C4x4TMatrix<float>& matrix);

    int m_time;
    bool m_withRoot;
    std::vector<Level> m_levels;
    std::vector<const C3DSceneNode*> m_missing;
};
