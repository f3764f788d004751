#include "Formats.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/importerdesc.h>

#include "ExportFormats.h"

namespace {

// The class of an extension is the extension in upper case, filled up with blanks or cut to four characters. Where that would
// give two extensions one class, or one that the system uses itself, the class stands here.
struct {
    const char* extension;
    unsigned int fileClass;
} const s_classes[] = {
    {"md5anim", FourCC("MD5A")}, {"md5camera", FourCC("MD5C")}, {"md5mesh", FourCC("MD5M")}, {"mesh.xml", FourCC("MXML")},
    {"irrmesh", FourCC("IRRM")}, {"ifczip", FourCC("IFCZ")},    {"assbin", FourCC("ASSB")},  {"x3db", FourCC("X3DB")},
};

// Extensions that the library announces and of whose files it reads none: it has readers for another content of that name, or broken ones.
constexpr std::string_view s_unreadable[] = {
    "step", "stp",        // parts and assemblies; of this family of files it knows buildings alone, which have extensions of their own
    "x3db",               // the binary form, for which it has no decoder
    "bsp",                // a level outside its archive, which is what it opens
    "irr",  "irrmesh",    // no geometry comes of any, whatever their encoding
};

// The library's description of a form, without what tells the form.
std::string DescriptionOf(const ExportFormat& format)
{
    const Assimp::Exporter exporter;
    for (std::size_t i = 0; i < exporter.GetExportFormatCount(); i++)
        if (const aiExportFormatDesc* info = exporter.GetExportFormatDescription(i); std::string_view(info->id) == format.exporter)
            return info->description;
    return format.extension;
}

}

unsigned int ClassOf(const std::string& extension)
{
    for (const auto& row : s_classes)
        if (extension == row.extension)
            return row.fileClass;
    unsigned int fileClass = 0;
    for (std::size_t i = 0; i < 4; i++) {
        const int character = i < extension.size() ? std::toupper(static_cast<unsigned char>(extension[i])) : ' ';
        fileClass = fileClass << 8 | static_cast<unsigned int>(character);
    }
    return fileClass;
}

std::vector<Format> ListFormats()
{
    std::vector<Format> formats;
    const Assimp::Importer importer;
    for (std::size_t i = 0; i < importer.GetImporterCount(); i++) {
        const aiImporterDesc* info = importer.GetImporterInfo(i);
        std::istringstream extensions(info->mFileExtensions);
        for (std::string extension; extensions >> extension;) {
            const bool known = std::ranges::find(formats, extension, &Format::extension) != formats.end();
            if (!known && std::ranges::count(s_unreadable, extension) == 0)
                formats.push_back({extension, info->mName, ClassOf(extension), FILE_KIND_READ});
        }
    }
    for (const ExportFormat* written : ListExportFormats()) {
        const auto known = std::ranges::find(formats, written->extension, &Format::extension);
        if (known != formats.end())
            known->abilities |= FILE_KIND_WRITE;
        else
            formats.push_back({written->extension, DescriptionOf(*written), ClassOf(written->extension), FILE_KIND_WRITE});
    }
    return formats;
}

namespace {

// Which axis points up in what the library gives: +y, but for the formats of the first list, whose content it leaves as it is. The second list
// has those that it turns from +z to +y, by the matrix of its root node.
constexpr unsigned int s_zUp[] = {
    FourCC("3MF "),    // by the standard: the axis in which a printer builds
    FourCC("AMF "),    // likewise
    FourCC("STL "),    // from the same world, though a file can't say so
    FourCC("PLY "),    // can't say: scanners, surveys and CAD have z up, and this is how such files are written here
    FourCC("OFF "),    // can't say; likewise
    FourCC("RAW "),    // can't say; likewise
    FourCC("BLEN"),    // its program's z: Suzanne looks along -y and has her ears at +x and -x
    FourCC("SMD "),    // its engine's z: Wuson stands from 0 to 1.5 along it, the grail from 0.1 to 23.4
    FourCC("VTA "),    // shapes for the same models
    FourCC("COB "),    // its program's z: the dwarf stands on 0 and is 70 high along it
    FourCC("SCN "),    // scenes of the same program
    FourCC("HMP "),    // heights of its terrain, -20 to 20, lie along z
    FourCC("OGEX"),    // z unless the file says otherwise, and all that were seen say z
    FourCC("CSM "),    // markers on an actor, from the floor to 2 m along it
    FourCC("Q3O "),    // can't say: the walker stands on 0 and is 1,920 high along it
    FourCC("Q3S "),    // scenes of the same program
    FourCC("3D  "),    // its engine's z: models are scaled along it on their own
    FourCC("UC  "),    // the description that goes with such a model
};
constexpr unsigned int s_turned[] = {
    FourCC("3DS "), FourCC("PRJ "), FourCC("ASE "), FourCC("ASK "),                    // one program's z
    FourCC("DXF "),                                                                    // drawings, which rise along z
    FourCC("MD2 "), FourCC("MD3 "), FourCC("MD5M"), FourCC("MD5A"), FourCC("MD5C"),    // engines of one family, with z up
    FourCC("MDC "), FourCC("MDL "), FourCC("IQM "),
};

}

FormatTraits GetFormatTraits(unsigned int fileClass)
{
    FormatTraits traits;
    if (std::ranges::count(s_zUp, fileClass) > 0)
        traits.up = UP_AXIS_Z;
    traits.turned = std::ranges::count(s_turned, fileClass) > 0;
    switch (fileClass) {
    case FourCC("AMF "):
    case FourCC("3MF "):
        traits.tellsUp = true;
        traits.unit = UNIT_MILLIMETER;
        traits.centimetres = 0.1;
        break;
    case FourCC("PLY "):
    case FourCC("OFF "):
        traits.joinPoints = false;    // the file's own indices come through
        break;
    case FourCC("GLTF"):
    case FourCC("GLB "):
        traits.tellsUp = true;
        traits.realRoot = true;
        traits.gltf = true;
        traits.placedTwice = true;
        traits.unit = UNIT_METER;
        traits.centimetres = 100;
        break;
    case FourCC("FBX "): traits.tellsUp = true; break;
    case FourCC("DAE "):
    case FourCC("ZAE "):
        traits.tellsUp = true;
        traits.unit = UNIT_METER;    // the importer scales to it
        traits.centimetres = 100;
        break;
    case FourCC("3DS "):
    case FourCC("PRJ "): traits.placedTwice = true; break;
    case FourCC("X   "): traits.realRoot = true; break;
    case FourCC("IFC "):
    case FourCC("IFCZ"):
        traits.tellsUp = true;
        traits.realRoot = true;
        break;
    default: break;
    }
    return traits;
}
