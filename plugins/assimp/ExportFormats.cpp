#include "ExportFormats.h"

#include <algorithm>
#include <string_view>

#include <assimp/Exporter.hpp>

#include "Formats.h"

namespace {

// Rule words for names: the top byte tells what is repaired, the rest how long a name may be.
constexpr unsigned int NAME_NO_BLANKS = 0x1000000, NAME_NOT_EMPTY = 0x2000000, NAME_LETTERS = 0x4000000;
constexpr unsigned int NAME_UNIQUE = NAME_NOT_EMPTY | 255;    // where nodes are referred to by name
constexpr unsigned int NAME_IDENTIFIER = NAME_NOT_EMPTY | NAME_LETTERS | 255;

constexpr unsigned int DIFFUSE = 1u << MAP_DIFFUSE, AMBIENT = 1u << MAP_AMBIENT, SPECULAR = 1u << MAP_SPECULAR,
                       TRANSPARENCY = 1u << MAP_TRANSPARENCY, BUMP = 1u << MAP_BUMP;
constexpr unsigned int ALL_MAPS = DIFFUSE | AMBIENT | SPECULAR | TRANSPARENCY | BUMP;

constexpr unsigned int ALWAYS = EXPORT_PATCHES_SUBDIVIDED;
constexpr unsigned int FLAT = ALWAYS | EXPORT_GLOBAL_COORDINATES | EXPORT_REMOVE_GROUPS;    // no tree

constexpr unsigned int EVERYTHING = CAN_TREE | CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | CAN_CAMERAS | CAN_LIGHTS |
                                    CAN_BONES | CAN_CURVES | CAN_POINTS | CAN_SHINE_STRENGTH;

// Formats of one mesh (PLY, STL) take the objects one after the other; joined before, they would come without cameras and lights, which
// nobody could tell of then. 3DS has matrices, and its writer forgets those of parents; X3D
// has lights, images and a tree, but its writer crashes on lights and leaves out the quotes of file names, and the reader loses matrices.
//
// The first row of an extension is what the extension stands for: the binary form, and of glTF version 2.
const ExportFormat s_formats[] = {
    {.exporter = "gltf2",
     .extension = "gltf",
     .writer = WRITER_GLTF,
     .abilities = CAN_TREE | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | CAN_CAMERAS | CAN_LIGHTS | NORMAL_MAPS_ONLY | CAN_BONES | CAN_CURVES |
                  CAN_POINTS | NAMES_ARE_ADDRESSES,
     .maps = DIFFUSE | AMBIENT | BUMP,
     .uvSets = 8,
     .colorSets = 1,
     .forcedFlags = ALWAYS | EXPORT_TRIANGULATE,
     .upAxis = UP_AXIS_Y,
     .unit = UNIT_METER,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "gltf",
     .extension = "gltf",
     .form = "1",
     .abilities = CAN_TREE | CAN_NORMALS | CAN_MATERIALS | NAMES_ARE_ADDRESSES,
     .maps = DIFFUSE | AMBIENT | SPECULAR,
     .uvSets = 1,
     .forcedFlags = ALWAYS | EXPORT_TRIANGULATE,
     .upAxis = UP_AXIS_Y,
     .unit = UNIT_METER,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "glb2",
     .extension = "glb",
     .writer = WRITER_GLTF,
     .abilities = CAN_TREE | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | CAN_CAMERAS | CAN_LIGHTS | NORMAL_MAPS_ONLY | CAN_BONES | CAN_CURVES |
                  CAN_POINTS | CAN_EMBED | NAMES_ARE_ADDRESSES,
     .maps = DIFFUSE | AMBIENT | BUMP,
     .uvSets = 8,
     .colorSets = 1,
     .forcedFlags = ALWAYS | EXPORT_TRIANGULATE,
     .upAxis = UP_AXIS_Y,
     .unit = UNIT_METER,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "glb",
     .extension = "glb",
     .form = "1",
     .abilities = CAN_TREE | CAN_NORMALS | CAN_MATERIALS | CAN_EMBED | NAMES_ARE_ADDRESSES,
     .maps = DIFFUSE | AMBIENT | SPECULAR,
     .uvSets = 1,
     .forcedFlags = ALWAYS | EXPORT_TRIANGULATE,
     .upAxis = UP_AXIS_Y,
     .unit = UNIT_METER,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "obj",
     .extension = "obj",
     .writer = WRITER_OBJ,
     .abilities = CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS | CAN_CURVES | CAN_POINTS,
     .maps = ALL_MAPS,
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = FLAT,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_NO_BLANKS | NAME_NOT_EMPTY,
     .materialNameRule = NAME_NO_BLANKS | NAME_NOT_EMPTY},
    {.exporter = "objnomtl",
     .extension = "obj",
     .form = "no-materials",
     .writer = WRITER_OBJ,
     .abilities = CAN_POLYGONS | CAN_NORMALS | CAN_CURVES | CAN_POINTS,
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = FLAT,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_NO_BLANKS | NAME_NOT_EMPTY},
    {.exporter = "plyb",
     .extension = "ply",
     .writer = WRITER_PLY,
     .abilities = CAN_POLYGONS | CAN_NORMALS | GIVEN_NORMALS_ONLY | CAN_POINTS,
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = FLAT},
    {.exporter = "ply",
     .extension = "ply",
     .form = "text",
     .writer = WRITER_PLY,
     .abilities = CAN_POLYGONS | CAN_NORMALS | GIVEN_NORMALS_ONLY | CAN_POINTS,
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = FLAT},
    {.exporter = "stlb", .extension = "stl", .writer = WRITER_STL, .forcedFlags = FLAT | EXPORT_TRIANGULATE},
    {.exporter = "stl", .extension = "stl", .form = "text", .writer = WRITER_STL, .forcedFlags = FLAT | EXPORT_TRIANGULATE},
    {.exporter = "collada",
     .extension = "dae",
     .abilities = CAN_TREE | CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | TIMES_IN_SECONDS | IMAGE_HIDES_COLOR | KEYS_TOGETHER |
                  CAN_CAMERAS | CAN_LIGHTS | CAN_BONES | CAN_CURVES,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 8,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .unit = UNIT_METER,
     .objectNameRule = NAME_UNIQUE,
     .materialNameRule = NAME_NOT_EMPTY},
    {.exporter = "fbx",
     .extension = "fbx",
     .abilities = CAN_TREE | CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | TIMES_IN_SECONDS | CAN_BONES | CAN_SHINE_STRENGTH,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 1,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "fbxa",
     .extension = "fbx",
     .form = "text",
     .abilities = CAN_TREE | CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS | CAN_KEYS | TIMES_IN_SECONDS | CAN_BONES | CAN_SHINE_STRENGTH,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 1,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "3ds",
     .extension = "3ds",
     .abilities = CAN_TREE | CAN_MATERIALS | CAN_SHINE_STRENGTH,
     .maps = DIFFUSE | SPECULAR | TRANSPARENCY | BUMP,
     .uvSets = 1,
     .forcedFlags = ALWAYS | EXPORT_GLOBAL_COORDINATES | EXPORT_TRIANGULATE,
     .maxPoints = 65535,
     .maxFaces = 65535,
     .objectNameRule = NAME_NOT_EMPTY | 10,
     .materialNameRule = NAME_NOT_EMPTY | 10},
    {.exporter = "x",
     .extension = "x",
     .abilities = CAN_TREE | CAN_POLYGONS | CAN_NORMALS | NORMALS_TURNED,    // the library writes no materials
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_IDENTIFIER},
    {.exporter = "x3d",
     .extension = "x3d",
     .abilities = CAN_POLYGONS | CAN_NORMALS | CAN_MATERIALS,
     .uvSets = 1,
     .colorSets = 1,
     .forcedFlags = FLAT,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "3mf",
     .extension = "3mf",
     .writer = WRITER_ARCHIVE,    // of materials the library would make black ones
     .forcedFlags = FLAT | EXPORT_TRIANGULATE,
     .unit = UNIT_MILLIMETER,
     .objectNameRule = NAME_NOT_EMPTY},
    {.exporter = "stp", .extension = "stp", .forcedFlags = FLAT | EXPORT_TRIANGULATE, .objectNameRule = NAME_UNIQUE},
    {.exporter = "assbin",
     .extension = "assbin",
     .abilities = EVERYTHING,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 8,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "assxml",
     .extension = "assxml",
     .abilities = EVERYTHING,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 8,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE,
     .maxLevels = 200},    // the library has room for the indents of some 250
    {.exporter = "assjson",
     .extension = "json",
     .abilities = EVERYTHING,
     .maps = ALL_MAPS,
     .uvSets = 8,
     .colorSets = 8,
     .forcedFlags = ALWAYS,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
    {.exporter = "pbrt",
     .extension = "pbrt",
     .abilities = CAN_TREE | CAN_NORMALS | CAN_MATERIALS | CAN_CAMERAS | CAN_LIGHTS,
     .maps = DIFFUSE,
     .uvSets = 1,
     .forcedFlags = ALWAYS | EXPORT_TRIANGULATE,
     .upAxis = UP_AXIS_Y,
     .objectNameRule = NAME_UNIQUE},
};

bool IsInLibrary(const ExportFormat& format)
{
    const Assimp::Exporter exporter;
    for (std::size_t i = 0; i < exporter.GetExportFormatCount(); i++)
        if (std::string_view(exporter.GetExportFormatDescription(i)->id) == format.exporter)
            return true;
    return false;
}

}

const ExportFormat* FindExportFormat(unsigned int fileClass, const CIoOptions& options)
{
    CXTString<wchar_t> form;
    options.GetCustomData().GetString(EXPORT_FORM, form);
    const std::string wanted = WideToUtf8(form);
    const ExportFormat* first = nullptr;
    for (const ExportFormat& format : s_formats)
        if (ClassOf(format.extension) == fileClass) {
            if (!wanted.empty() && format.form == wanted)
                return &format;
            first = first ? first : &format;
        }
    return first;
}

std::vector<const ExportFormat*> ListExportFormats()
{
    std::vector<const ExportFormat*> formats;
    for (const ExportFormat& format : s_formats)
        if (format.writer >= WRITER_GLTF || IsInLibrary(format))
            formats.push_back(&format);
    return formats;
}
