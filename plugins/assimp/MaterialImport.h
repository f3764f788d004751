#pragma once

#include <vector>

#include <3dzel.h>

#include "Formats.h"

struct aiScene;

// Custom data of a material, for what it has no parameter of its own.

constexpr unsigned int MATERIAL_SHININESS = FourCC("SHIN");            ///< float: exponent of the highlight
constexpr unsigned int MATERIAL_EMISSIVE = FourCC("EMIS");             ///< colour of its own light
constexpr unsigned int MATERIAL_EMISSIVE_STRENGTH = FourCC("EMST");    ///< float: how much brighter than that colour
constexpr unsigned int MATERIAL_TWO_SIDED = FourCC("TWOS");            ///< bool
constexpr unsigned int MATERIAL_METALLIC = FourCC("METL");             ///< float, 0 to 1
constexpr unsigned int MATERIAL_ROUGHNESS = FourCC("ROUG");            ///< float, 0 to 1
constexpr unsigned int MATERIAL_REFRACTION = FourCC("REFI");           ///< float: index of refraction
constexpr unsigned int MATERIAL_EMISSIVE_FILE = FourCC("EMTX");        ///< strings: image files of kinds that have no map
constexpr unsigned int MATERIAL_METALLIC_FILE = FourCC("METX");
constexpr unsigned int MATERIAL_ROUGHNESS_FILE = FourCC("ROTX");

// Custom data of a map.

constexpr unsigned int MAP_NORMAL_MAP = FourCC("NRML");    ///< bool: the bump map holds normals, not heights
constexpr unsigned int MAP_WRAP_U = FourCC("WRPU");    ///< int, when the image is not repeated: 1 clamped, 2 mirrored, 3 nothing outside
constexpr unsigned int MAP_WRAP_V = FourCC("WRPV");
constexpr unsigned int MAP_PLACEMENT = FourCC("UVTR");    ///< binary, 6 floats by rows: file's coordinates to those of the map's channel

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
    std::vector<PlacedCoordinates> placed;
};

/// All materials of a file, with colours, factors and maps, by the library's index.
///
/// Opacity and the alpha of colours become the transparency factor. The colour of a metal-and-roughness material is the diffuse colour, and the
/// smoother the stronger its highlights. Maps name files as the file does; those of the bump type may hold normals.
std::vector<ImportedMaterial> ImportMaterials(const aiScene& source, const FormatTraits& traits, C3DScene& scene,
                                              CSceneImportOptions& options);
