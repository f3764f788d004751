#pragma once

#include <vector>

#include <3dzel.h>

/// A node on its way through the tree.
struct NodeRow {
    const C3DSceneNode* node;
    unsigned int depth;           ///< 0 for a child of the root
    int points, faces;            ///< of what is drawn for it
    bool instance;                ///< shows an object that an earlier row shows
    bool moved;                   ///< `matrix` is no identity
    C4x4TMatrix<float> matrix;    ///< to the parent's space, at frame 0
};

/// The geometry that is drawn for a node; null for nodes of other kinds, whose icons are no part of the scene.
C3DGeomObject* GetDrawnGeometry(const C3DSceneNode& node);
/// All nodes, parents first, in the order of the tree.
std::vector<NodeRow> ListNodes(C3DScene& scene);
