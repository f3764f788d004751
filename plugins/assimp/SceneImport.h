#pragma once

#include <3dzel.h>

#include "Formats.h"
#include "UnpackedImages.h"

struct aiScene;

/// A scene with all that `source` holds: the node tree with names, order, matrices or animation, polygon objects with their channels, curves,
/// cameras and lights, materials with maps, the unit. Nodes with the same meshes share one object.
///
/// A camera or light is the object of the node of its name; where that has something else to carry, it gets a node below.
///
/// @param title    names a node without name
/// @param images   receives the images inside the file
/// @param options  receives a line for whatever could not be taken over
/// @return         owned by the caller; null without a root node
C3DScene* ImportScene(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, UnpackedImages& images,
                      CSceneImportOptions& options);
