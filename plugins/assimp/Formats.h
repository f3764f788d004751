#pragma once

#include <string>
#include <vector>

#include <3dzel.h>

/// What the plug-in knows of a format beyond what the import library tells.
struct FormatTraits {
    _UP_AXIS_MODE up = UP_AXIS_Y;    ///< axis that points up in the scenes that the import library gives
    bool tellsUp = false;            ///< the file or its standard says which axis is up
    bool turned = false;             ///< content has +z up, and the library turns it to +y
    bool joinPoints = true;          ///< the importer gives each face corner a point of its own, so that equal positions are one point
    bool realRoot = false;           ///< the root node is the file's own, not the importer's
    bool gltf = false;               ///< spots come with half their angles, coordinates of textures are moved in an order of its own
    bool placedTwice = false;        ///< cameras and lights come with the place of their node, which they are on already
    double centimetres = 0;          ///< length of a unit when the format fixes it; 0 when it does not
    _UNIT_MODE unit = UNIT_UNDEFINED;
};

/// An extension that the import library reads or that is written.
struct Format {
    std::string extension;    ///< lower case, without its point
    std::string description;
    unsigned int fileClass;
    unsigned int abilities;    ///< FILE_KIND_READ, FILE_KIND_WRITE
};

/// Every extension of every importer and exporter that works, once, in the library's order.
std::vector<Format> ListFormats();

/// The class under which an extension is registered.
unsigned int ClassOf(const std::string& extension);

FormatTraits GetFormatTraits(unsigned int fileClass);
