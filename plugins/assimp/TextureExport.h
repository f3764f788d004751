#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <assimp/texture.h>

#include <3dzel.h>

#include "Writers.h"

/// Names of image files as they go into a file, and the images that go in with them. The export preparation has made the names relative to
/// the file, or absolute.
class TextureExport {
public:
    explicit TextureExport(const WriterTask& task);

    /// Extensions of the image files that a format with CAN_EMBED takes inside.
    static std::vector<CXTString<wchar_t>> ListInside() { return {L".png", L".jpg", L".jpeg"}; }

    /// Name of the map's image, or of its alpha image, as ToName gives it; empty when the map names none.
    std::string NameOf(const CMaterialMap& map, bool alpha = false);
    /// The map's image is a PNG file with an alpha channel.
    bool HasAlpha(const CMaterialMap& map) const;
    /// The name with '/'; where it is an address, with its characters coded. An image that goes inside is "*0", "*1" ...
    std::string ToName(const CXTString<wchar_t>& file);

    /// What goes inside, in the order of their numbers.
    std::vector<std::unique_ptr<aiTexture>> TakeEmbedded() { return std::move(m_embedded); }

private:
    CXTString<wchar_t> PlaceOf(const CXTString<wchar_t>& name) const { return fileMakeAbsolutePath(m_folder, name); }
    std::string Embed(const CXTString<wchar_t>& path);
    std::vector<unsigned char> ReadImage(const CXTString<wchar_t>& path);

    const ExportFormat& m_format;
    LossLog& m_losses;
    CXTString<wchar_t> m_folder;    // of the file
    CTextureSources m_sources;
    std::map<std::string, std::string> m_names;    // of what is inside, by file; empty for what is not
    std::vector<std::unique_ptr<aiTexture>> m_embedded;
};

/// A name as it may stand in an address.
std::string ToAddress(const std::string& name);
