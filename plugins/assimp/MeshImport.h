#pragma once

#include <vector>

#include <3dzel.h>

#include "MaterialImport.h"

struct aiMesh;

/// One polygon object of the meshes of a node: the importer has cut the file's mesh into one for each material and kind of face.
///
/// @param materials   by the library's index
/// @param joinPoints  equal positions become one point; otherwise each vertex stays a point
/// @param options     receives a line for faces that cannot be taken over
/// @return            null without faces, and without loose points; owned by the caller
///
/// Faces keep their corners: polygons stay polygons, faces that joining makes degenerate stay too. A mesh of points alone gives an object
/// without faces. Two-sided when one of its materials is. Channels as ImportChannels makes them.
C3DObject* ImportMeshes(const std::vector<const aiMesh*>& meshes, const std::vector<ImportedMaterial>& materials, bool joinPoints,
                        CSceneImportOptions& options);

/// The line segments of the meshes, strung together where one ends as the next begins.
void ImportLines(const std::vector<const aiMesh*>& meshes, const std::vector<ImportedMaterial>& materials, std::vector<C3DCurve*>& curves);
