#pragma once

#include <vector>

#include <3dzel.h>

#include "MaterialImport.h"
#include "MeshPolygons.h"
#include "PointJoin.h"

// Ids of channels are the same in all objects of a scene, so that materials can name them.

/// Id of the texture coordinates of the file's set number 0 to 7.
constexpr unsigned int TextureChannelId(unsigned int set) { return 1 + set; }
/// Id of the vertex colours of the file's set number 0 to 7.
constexpr unsigned int ColorChannelId(unsigned int set) { return 101 + set; }

/// Adds to an object of these polygons what the meshes hold for each corner: given normals, all sets of texture coordinates and of colours,
/// and for each bone a weight of each point (the points-only form). The first set of colours becomes the object's.
///
/// Equal values of a layer are one channel point; corners keep theirs, so that seams and hard edges come out as in the file. Faces of a mesh
/// without a layer that others have are faces without data. A normal of length zero, or one that is no number, counts as not given.
///
/// @param numbers    point of each vertex of all meshes; empty when it is its own number
/// @param materials  by the library's index; their placed coordinates become further channels of the faces that have them
/// @param options    receives a line for what is left out
void ImportChannels(const MeshPolygons& polygons, const BlockVector<int>& numbers, const std::vector<ImportedMaterial>& materials,
                    C3DObject& object, CSceneImportOptions& options);
