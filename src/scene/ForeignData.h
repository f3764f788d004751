#pragma once

#include "tools/FourCC.h"

// Ids of custom data that scenes bring from files beyond what their classes have a place for. All are optional.

// Custom data of an animated scene.

constexpr unsigned int SCENE_FRAME_RATE = FourCC("FRAT");     ///< double: frames a second; absent when the file does not tell
constexpr unsigned int SCENE_CLIP_NAMES = FourCC("CLNM");     ///< string array: names of the file's animations
constexpr unsigned int SCENE_CLIP_RANGES = FourCC("CLRG");    ///< binary: first and last frame (int) of each

// Custom data of lights and cameras beyond their own parameters.

constexpr unsigned int LIGHT_ATTENUATION = FourCC("ATTN");    ///< binary, 3 doubles c, l, q: at distance d light is 1 / (c + l d + q d^2)
constexpr unsigned int CAMERA_HALF_WIDTH = FourCC("HWID");    ///< double: half the width of what an orthographic camera sees, scene units

// Custom data of the weight channel of a bone.

constexpr unsigned int WEIGHT_BONE_NAME = FourCC("NAME");    ///< string: name of the bone's node
constexpr unsigned int WEIGHT_BONE_BIND = FourCC("BIND");    ///< binary, 12 floats by rows: from the object's space to the bone's, at rest

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
