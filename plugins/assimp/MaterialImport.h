#pragma once

#include <vector>

#include <3dzel.h>

#include "Formats.h"
#include "UnpackedImages.h"

struct aiScene;

/// Texture coordinates that a map takes from a set of the file, but moved: the object gets them as a channel of their own. A map that uses the
/// object's coordinates is drawn by these as they stand.
struct PlacedCoordinates {
    unsigned int channelId;
    unsigned int set;
    float matrix[2][3];
};

struct ImportedMaterial {
    unsigned int id = 0;    ///< in the scene; 0, the default material, for none
    bool twoSided = false;
    std::vector<unsigned int> sets;    ///< of coordinates that its maps take as they stand
    std::vector<PlacedCoordinates> placed;
};

/// All materials of a file, with colours, factors and maps, by the library's index.
///
/// Opacity and the alpha of colours become the transparency factor. The colour of a metal-and-roughness material is the diffuse colour, and the
/// smoother the stronger its highlights. Maps name files as the file does; those of the bump type may hold normals.
std::vector<ImportedMaterial> ImportMaterials(const aiScene& source, const FormatTraits& traits, C3DScene& scene, UnpackedImages& images,
                                              CSceneImportOptions& options);
