#pragma once

#include <string>
#include <vector>

#include <3dzel.h>

/// What a format can hold, one bit each. What a scene holds beyond that is left out, with a line in the log.
enum ExportAbility : unsigned int {
    CAN_TREE = 0x1,         ///< nodes with names and matrices; objects that several nodes share
    CAN_POLYGONS = 0x2,     ///< faces of more than three corners
    CAN_NORMALS = 0x4,      ///< per corner
    CAN_MATERIALS = 0x8,    ///< colours and factors
    CAN_KEYS = 0x10,        ///< animation of nodes
    CAN_CAMERAS = 0x20,
    CAN_LIGHTS = 0x40,
    CAN_BONES = 0x80,
    CAN_CURVES = 0x100,               ///< lines
    CAN_POINTS = 0x200,               ///< objects of points without faces
    CAN_SHINE_STRENGTH = 0x400,       ///< a specular factor beside the specular colour
    CAN_EMBED = 0x800,                ///< image files inside
    NORMALS_TURNED = 0x20000,         ///< the library turns normals inwards, unless they are
    TIMES_IN_SECONDS = 0x8000,        ///< the library takes key times for seconds, whatever it is told
    IMAGE_HIDES_COLOR = 0x10000,      ///< a material has a diffuse image or a diffuse colour
    KEYS_TOGETHER = 0x4000,           ///< a node has as many keys of each kind
    NORMAL_MAPS_ONLY = 0x2000,        ///< of bump maps, those that hold normals
    GIVEN_NORMALS_ONLY = 0x1000,      ///< of normals, only specified ones are written
    NAMES_ARE_ADDRESSES = 0x40000,    ///< names of files have their characters coded as those of addresses are
};

/// Who writes a format.
enum ExportWriter {
    WRITER_LIBRARY,    ///< the import library
    WRITER_ARCHIVE,    ///< the same, where it packs files into an archive on disk, past all that would keep the old file whole
    WRITER_GLTF,       ///< GltfWriter: a fourth of the library's time; cameras and lights too
    WRITER_OBJ,        ///< ObjWriter: a tenth of the library's time, corners share indices, points stay as they are
    WRITER_PLY,        ///< PlyWriter: the library splits and triangulates
    WRITER_STL,        ///< StlWriter
};

/// A format that is written, and what it imposes on a scene.
struct ExportFormat {
    const char* exporter;    ///< its name in the library
    const char* extension;
    const char* form = "";    ///< see EXPORT_FORM; empty for what the extension stands for
    ExportWriter writer = WRITER_LIBRARY;
    unsigned int abilities = 0;    ///< ExportAbility
    unsigned int maps = 0;         ///< of the types of maps, 1 << MapType each
    unsigned int uvSets = 0;       ///< at most
    unsigned int colorSets = 0;
    unsigned int forcedFlags = 0;    ///< _EXPORT_FLAGS
    _UP_AXIS_MODE upAxis = UP_AXIS_Z;
    _UNIT_MODE unit = UNIT_UNDEFINED;                              ///< that lengths are in, when the format fixes it
    unsigned int maxPoints = 0xFFFFFFFF, maxFaces = 0xFFFFFFFF;    ///< of an object
    unsigned int objectNameRule = 0, materialNameRule = 0;         ///< as in CSceneExportOptions
    /// Levels of nodes that the library writes: it descends by calls, which take up to 1,500 bytes of stack for a level (FBX).
    std::size_t maxLevels = 1000;

    bool Can(unsigned int ability) const { return (abilities & ability) == ability; }
    bool HasMap(MapType type) const { return maps & 1u << type; }
};

/// The form of a format that the options ask for; null for a class that is not written.
const ExportFormat* FindExportFormat(unsigned int fileClass, const CIoOptions& options);
/// All forms that the library of this system writes, the preferred form of an extension first.
std::vector<const ExportFormat*> ListExportFormats();
