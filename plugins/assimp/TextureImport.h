#pragma once

#include <map>
#include <string>

#include <3dzel.h>

struct aiScene;
struct aiTexture;

/// Names of the image files of a scene's maps.
///
/// Images inside the scene's file are written to 3dzel/textures/<hash of the content> in the user's cache folder ($XDG_CACHE_HOME or ~/.cache),
/// once for all files that hold them, under the name that they have in the file; the folder becomes a texture path of the scene.
class TextureImport {
public:
    TextureImport(const aiScene& source, C3DScene& scene, CSceneImportOptions& options)
        : m_source(source), m_scene(scene), m_options(options)
    {
    }

    /// The file for a name in a material: as it stands there, with '/' for '\', or the absolute name of an image that was inside the file.
    /// Empty when there is none.
    CXTString<wchar_t> FileOf(const std::string& name);

private:
    CXTString<wchar_t> Unpack(const aiTexture& texture, const std::string& name);

    const aiScene& m_source;
    C3DScene& m_scene;
    CSceneImportOptions& m_options;
    std::map<const aiTexture*, CXTString<wchar_t>> m_unpacked;
};
