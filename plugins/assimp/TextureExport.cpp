#include "TextureExport.h"

#include <algorithm>
#include <cstring>

namespace {

std::vector<unsigned char> ReadFile(const CXTString<wchar_t>& path)
{
    IoFile file;
    if (!file.OpenFile(path, 1, nullptr) || file.GetLength() > 0x7FFFFFFF)
        return {};
    std::vector<unsigned char> bytes(file.GetLength());
    bytes.resize(file.ReadBytes(bytes.data(), bytes.size()));
    return bytes;
}

// The kinds of image that may stand inside; what a file is, its first bytes tell.
const char* HintOf(const std::vector<unsigned char>& bytes)
{
    const auto begins = [&bytes](const char* start, std::size_t size) {
        return bytes.size() >= size && std::memcmp(bytes.data(), start, size) == 0;
    };
    return begins("\x89PNG", 4) ? "png" : begins("\xFF\xD8", 2) ? "jpg" : nullptr;
}

}

TextureExport::TextureExport(const C3DScene& scene, const CXTString<wchar_t>& target, bool embed, LossLog& losses)
    : m_scene(scene), m_folder(fileGetPath(fileMakeAbsolutePath(fileGetCurrentDirectory(), target))), m_embed(embed), m_losses(losses)
{
}

std::string TextureExport::NameOf(const CMaterialMap& map, bool alpha)
{
    const CXTString<wchar_t>& name = alpha ? map.GetAlphaFileName() : map.GetFileName();
    if (name.IsEmpty())
        return {};
    const CXTString<wchar_t> path = map.GetBitmapPath(&m_scene, alpha, true);
    return ToName(path.IsEmpty() ? name : path);
}

bool TextureExport::HasAlpha(const CMaterialMap& map) const
{
    constexpr std::size_t COLOR_TYPE_AT = 25;
    constexpr unsigned char HAS_ALPHA = 4;
    unsigned char head[COLOR_TYPE_AT + 1];
    IoFile file;
    return file.OpenFile(map.GetBitmapPath(&m_scene, false, true), 1, nullptr) && file.ReadBytes(head, sizeof head) == sizeof head &&
           std::memcmp(head, "\x89PNG", 4) == 0 && head[COLOR_TYPE_AT] & HAS_ALPHA;
}

std::string TextureExport::ToName(const CXTString<wchar_t>& file)
{
    if (file.IsEmpty())
        return {};
    if (m_embed)
        if (std::string inside = Embed(file); !inside.empty())
            return inside;
    std::string name = WideToUtf8(file);
    std::ranges::replace(name, '\\', '/');
    if (!fileIsAbsolute(file))
        return name;
    const std::string relative = WideToUtf8(fileMakeRelativePath(m_folder, file));
    return relative.starts_with("..") ? name : relative;
}

// Empty for what is no image that may stand inside.
std::string TextureExport::Embed(const CXTString<wchar_t>& path)
{
    const auto [place, isNew] = m_names.try_emplace(WideToUtf8(path));
    if (!isNew)
        return place->second;
    const std::vector<unsigned char> bytes = ReadFile(path);
    const char* hint = HintOf(bytes);
    if (!hint) {
        m_losses.Add(LOSS_TEXTURES);
        return {};
    }
    auto texture = std::make_unique<aiTexture>();
    texture->mFilename = aiString(WideToUtf8(fileStripPath(path)));
    texture->mWidth = static_cast<unsigned int>(bytes.size());
    texture->pcData = new aiTexel[bytes.size() / sizeof(aiTexel) + 1];
    std::memcpy(texture->pcData, bytes.data(), bytes.size());
    std::strcpy(texture->achFormatHint, hint);
    place->second = std::string("*").append(std::to_string(m_embedded.size()));
    m_embedded.push_back(std::move(texture));
    return place->second;
}
