#include "TextureImport.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>
#include <vector>

#include <assimp/scene.h>
#include <assimp/texture.h>

#include "Uri.h"

namespace {

// What tells the format of an image: the hint of the file, or else its first bytes.
std::string ExtensionOf(const aiTexture& texture)
{
    const std::string hint(texture.achFormatHint, strnlen(texture.achFormatHint, HINTMAXTEXTURELEN - 1));
    if (!hint.empty() && std::ranges::all_of(hint, [](unsigned char c) { return std::isalnum(c) != 0; }))
        return hint;
    const struct {
        std::string_view start;
        const char* extension;
    } known[] = {{"\x89PNG", "png"}, {"\xFF\xD8", "jpg"}, {"GIF8", "gif"}, {"BM", "bmp"}, {"RIFF", "webp"}, {"II*", "tif"}, {"MM", "tif"}};
    const std::string_view bytes(reinterpret_cast<const char*>(texture.pcData), texture.mWidth);
    for (const auto& row : known)
        if (bytes.starts_with(row.start))
            return row.extension;
    return "tga";    // says nothing of itself
}

// The bare name without extension.
std::string TitleOf(std::string name)
{
    name.erase(0, name.find_last_of("/\\:") + 1);
    if (const std::size_t point = name.rfind('.'); point != std::string::npos && point > 0)
        name.resize(point);
    return name.empty() ? "texture" : name;
}

std::vector<unsigned char> PixelsOf(const aiTexture& texture)
{
    std::vector<unsigned char> pixels;
    const aiTexel* const end = texture.pcData + std::size_t{texture.mWidth} * texture.mHeight;
    for (const aiTexel* texel = texture.pcData; texel != end; texel++)
        pixels.insert(pixels.end(), {texel->r, texel->g, texel->b, texel->a});
    return pixels;
}

}

CXTString<wchar_t> TextureImport::FileOf(const std::string& name)
{
    if (name.empty())
        return {};
    if (const aiTexture* texture = m_source.GetEmbeddedTexture(name.c_str()))
        return Unpack(*texture, name);
    if (name.front() == '*')
        return {};    // a number without image
    std::string path = m_decodesNames ? DecodeUri(name) : name;
    if (path.find('/') == std::string::npos || path.find('\\') < path.find('/'))
        std::ranges::replace(path, '\\', '/');
    while (path.starts_with("./"))
        path.erase(0, 2);
    if (path.starts_with("//"))
        path.erase(0, 2);    // "beside the file", in some programs
    return Utf8ToWide(path);
}

CXTString<wchar_t> TextureImport::Unpack(const aiTexture& texture, const std::string& name)
{
    const auto [place, isNew] = m_unpacked.try_emplace(&texture);
    CXTString<wchar_t>& path = place->second;
    const bool isFile = texture.mHeight == 0;    // compressed, as it would lie on disk
    const std::size_t size = isFile ? texture.mWidth : std::size_t{texture.mWidth} * texture.mHeight * sizeof(aiTexel);
    if (!isNew || size == 0 || !texture.pcData)
        return path;

    const std::string title = TitleOf(texture.mFilename.length > 0 ? texture.mFilename.C_Str() : name[0] == '*' ? "" : name);
    path = isFile ? m_images.AddFile(title + "." + ExtensionOf(texture), texture.pcData, size)
                  : m_images.AddPixels(title + ".png", PixelsOf(texture).data(), static_cast<int>(texture.mWidth),
                                       static_cast<int>(texture.mHeight));
    if (path.IsEmpty())
        m_options.AddLogInfo(IoLogInfo::WARNING, L"an image of the file has no place: there is no cache folder");
    return path;
}
