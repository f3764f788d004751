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
            if (!known)
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

FormatTraits GetFormatTraits(unsigned int fileClass)
{
    FormatTraits traits;
    switch (fileClass) {
    case FourCC("AMF "):
    case FourCC("3MF "):
        traits.yUp = false;
        traits.unit = UNIT_MILLIMETER;
        traits.centimetres = 0.1;
        break;
    case FourCC("PLY "):
    case FourCC("OFF "):
        traits.yUp = false;
        traits.joinPoints = false;    // the file's own indices come through
        break;
    case FourCC("STL "):
    case FourCC("RAW "): traits.yUp = false; break;
    case FourCC("GLTF"):
    case FourCC("GLB "):
        traits.realRoot = true;
        traits.gltf = true;
        traits.placedTwice = true;
        traits.unit = UNIT_METER;
        traits.centimetres = 100;
        break;
    case FourCC("DAE "):
    case FourCC("ZAE "):
        traits.unit = UNIT_METER;    // the importer scales to it
        traits.centimetres = 100;
        break;
    case FourCC("3DS "):
    case FourCC("PRJ "): traits.placedTwice = true; break;
    case FourCC("X   "):
    case FourCC("IFC "):
    case FourCC("IFCZ"): traits.realRoot = true; break;
    default: break;
    }
    return traits;
}
