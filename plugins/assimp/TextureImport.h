#pragma once

#include <map>
#include <string>

#include <3dzel.h>

#include "UnpackedImages.h"

struct aiScene;
struct aiTexture;

/// Names of the image files of a scene's maps.
///
/// Images inside the scene's file go to UnpackedImages under the name that they have in the file.
class TextureImport {
public:
    /// @param decodesNames  names in the file are URIs
    TextureImport(const aiScene& source, bool decodesNames, UnpackedImages& images, CSceneImportOptions& options)
        : m_source(source), m_decodesNames(decodesNames), m_images(images), m_options(options)
    {
    }

    /// The file for a name in a material: as it stands there, with '/' for '\', or the absolute name of an image that was inside the file.
    /// Empty when there is none.
    CXTString<wchar_t> FileOf(const std::string& name);

private:
    CXTString<wchar_t> Unpack(const aiTexture& texture, const std::string& name);

    const aiScene& m_source;
    bool m_decodesNames;
    UnpackedImages& m_images;
    CSceneImportOptions& m_options;
    std::map<const aiTexture*, CXTString<wchar_t>> m_unpacked;
};
