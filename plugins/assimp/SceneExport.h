#pragma once

#include <memory>

#include "Writers.h"

struct aiScene;

/// Deletes a scene of any depth: the library would descend by calls.
struct DeleteExportedScene {
    void operator()(aiScene* scene) const;
};
using ExportedScene = std::unique_ptr<aiScene, DeleteExportedScene>;

/// A prepared scene as the library wants it, with all that the format takes: the node tree with names, order, matrices and keys; meshes, which
/// nodes of one object share; materials with maps; cameras and lights. The root of the tree is no node of the scene. Without CAN_TREE all
/// nodes stand below it. What the format does not take is counted.
ExportedScene ExportScene(const WriterTask& task);
