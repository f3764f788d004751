#include "TextureExport.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

// The kinds of image that may stand inside; what a file is, its first bytes tell.
const char* HintOf(const std::vector<unsigned char>& bytes)
{
    const auto begins = [&bytes](const char* start, std::size_t size) {
        return bytes.size() >= size && std::memcmp(bytes.data(), start, size) == 0;
    };
    return begins("\x89PNG", 4) ? "png" : begins("\xFF\xD8", 2) ? "jpg" : nullptr;
}

}

TextureExport::TextureExport(const WriterTask& task)
    : m_format(task.format), m_losses(task.losses), m_folder(fileGetPath(fileMakeAbsolutePath(fileGetCurrentDirectory(), task.target))),
      m_sources(task.scene, task.options.texturesFromAnywhere)
{
    if (task.options.flags & EXPORT_MOVE_TEXTURES)
        for (const CXTString<wchar_t>& moved : task.options.textureNames)
            m_sources.Allow(moved);
}

std::string TextureExport::NameOf(const CMaterialMap& map, bool alpha)
{
    return ToName(alpha ? map.GetAlphaFileName() : map.GetFileName());
}

bool TextureExport::HasAlpha(const CMaterialMap& map) const
{
    constexpr std::size_t COLOR_TYPE_AT = 25;
    constexpr unsigned char HAS_ALPHA = 4;
    unsigned char head[COLOR_TYPE_AT + 1];
    IoFile file;
    return !map.GetFileName().IsEmpty() && file.OpenFile(PlaceOf(map.GetFileName()), 1, nullptr) &&
           file.ReadBytes(head, sizeof head) == sizeof head && std::memcmp(head, "\x89PNG", 4) == 0 && head[COLOR_TYPE_AT] & HAS_ALPHA;
}

std::string TextureExport::ToName(const CXTString<wchar_t>& file)
{
    if (file.IsEmpty())
        return {};
    if (m_format.Can(CAN_EMBED))
        if (std::string inside = Embed(PlaceOf(file)); !inside.empty())
            return inside;
    std::string name = WideToUtf8(file);
    std::ranges::replace(name, '\\', '/');
    return m_format.Can(NAMES_ARE_ADDRESSES) ? ToAddress(name) : name;
}

// Empty for what is no image that may stand inside.
std::string TextureExport::Embed(const CXTString<wchar_t>& path)
{
    const auto [place, isNew] = m_names.try_emplace(WideToUtf8(path));
    if (!isNew)
        return place->second;
    const std::vector<unsigned char> bytes = ReadImage(path);
    const char* hint = HintOf(bytes);
    if (!hint)
        return {};
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

// Empty, and counted, for what is no image that may stand inside or is not to be taken.
std::vector<unsigned char> TextureExport::ReadImage(const CXTString<wchar_t>& path)
{
    IoFile file;
    if (m_sources.Open(path, file) == CTextureSources::TEXTURE_OUTSIDE) {
        m_losses.Tell(L"The image " + path + L" lies outside the folders of the scene: its name is written, and not its content");
        return {};
    }
    std::vector<unsigned char> bytes(file.IsOpen() && file.GetLength() <= 0x7FFFFFFF ? file.GetLength() : 0);
    bytes.resize(file.ReadBytes(bytes.data(), bytes.size()));
    if (!HintOf(bytes))
        m_losses.Add(LOSS_TEXTURES);
    return bytes;
}

std::string ToAddress(const std::string& name)
{
    std::string address;
    for (const char character : name)
        if (std::isalnum(static_cast<unsigned char>(character)) || std::strchr("-._~/", character)) {
            address += character;
        } else {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned int>(static_cast<unsigned char>(character)));
            address += code;
        }
    return address;
}
