#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <assimp/texture.h>

#include <3dzel.h>

#include "LossLog.h"

/// Names of image files as they go into a file, and the images that go in with them.
class TextureExport {
public:
    /// `target`: complete name of the file that is written. `embed`: images go inside.
    TextureExport(const C3DScene& scene, const CXTString<wchar_t>& target, bool embed, LossLog& losses);

    /// Name of the map's image, or of its alpha image, as ToName gives it; empty when the map names none.
    std::string NameOf(const CMaterialMap& map, bool alpha = false);
    /// The map's image is a PNG file with an alpha channel.
    bool HasAlpha(const CMaterialMap& map) const;
    /// Relative to the target's folder, with '/', for a file below that; else the complete name; as it stands when the file is nowhere. An
    /// image that goes inside is "*0", "*1" ...
    std::string ToName(const CXTString<wchar_t>& file);

    /// What goes inside, in the order of their numbers.
    std::vector<std::unique_ptr<aiTexture>> TakeEmbedded() { return std::move(m_embedded); }

private:
    std::string Embed(const CXTString<wchar_t>& path);

    const C3DScene& m_scene;
    CXTString<wchar_t> m_folder;
    bool m_embed;
    LossLog& m_losses;
    std::map<std::string, std::string> m_names;    // of what is inside, by file
    std::vector<std::unique_ptr<aiTexture>> m_embedded;
};
