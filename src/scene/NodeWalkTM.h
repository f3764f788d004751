#pragma once

#include <unordered_map>
#include <vector>

#include "scene/SceneNode.h"

/// World matrices along a walk: GetNodeTM for each node of a depth-first walk at a constant cost a step, at any depth of the tree.
///
/// Keeps the transforms of the parents between two calls, so that a step pays for what differs from the step before. The walk may leave
/// nodes out. Any order of nodes gives right answers; only depth-first ones are fast. Stale as soon as a key or the tree changes.
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
    void Enter(const C3DSceneNode* parent);
    std::size_t FindAncestor(const C3DSceneNode* parent);
    void Cut(std::size_t count);
    void Place(const C3DSceneNode* node, const C4x4TMatrix<float>* local, C4x4TMatrix<float>& matrix);

    int m_time;
    bool m_withRoot;
    std::vector<Level> m_levels;
    std::unordered_map<const C3DSceneNode*, std::size_t> m_places;    ///< of the first `m_placed` levels; others in it are of former levels
    std::size_t m_placed = 0;
    std::vector<const C3DSceneNode*> m_missing;
};
