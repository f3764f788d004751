#pragma once

#include <3dzel.h>

#include "Formats.h"

struct aiScene;

/// A scene with all that `source` holds: the node tree with names, order and matrices, polygon objects and curves, materials by name,
/// the unit. Nodes with the same meshes share one object.
///
/// @param title    names a node without name
/// @param options  receives a line for whatever could not be taken over
/// @return         owned by the caller; null without a root node
C3DScene* ImportScene(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, CSceneImportOptions& options);
