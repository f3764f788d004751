#include "TextureImport.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include <assimp/scene.h>
#include <assimp/texture.h>

namespace {

CXTString<wchar_t> TextureCacheFolder()
{
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache && *cache == '/')    // a relative one does not count
        return Utf8ToWide(std::string(cache) + "/3dzel/textures/");
    const char* home = std::getenv("HOME");
    return home && *home ? Utf8ToWide(std::string(home) + "/.cache/3dzel/textures/") : CXTString<wchar_t>();
}

// 128 bits of the content: files that share a name here are the same.
std::string ContentHash(const unsigned char* bytes, std::size_t size)
{
    std::uint64_t a = HashMix64(size), b = HashMix64(~a);
    for (std::size_t i = 0; i < size; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, std::min<std::size_t>(8, size - i));
        a = HashMix64(a ^ word);
        b = HashMix64(b + word) * 0x9E3779B97F4A7C15u;
    }
    char text[33];
    std::snprintf(text, sizeof text, "%016llx%016llx", static_cast<unsigned long long>(a), static_cast<unsigned long long>(b));
    return text;
}

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

// The bare name without extension, of letters that every file system takes.
std::string TitleOf(std::string name)
{
    name.erase(0, name.find_last_of("/\\:") + 1);
    if (const std::size_t point = name.rfind('.'); point != std::string::npos && point > 0)
        name.resize(point);
    std::erase_if(name, [](unsigned char c) { return c < 32 || std::strchr("*?\"<>|", c); });
    if (name.size() > 100)
        name.resize(100);
    return name.empty() || name == "." || name == ".." ? "texture" : name;
}

bool WriteBytes(const CXTString<wchar_t>& path, const void* bytes, std::size_t size)
{
    IoFile file;
    if (!file.OpenFile(path, 0, nullptr))
        return false;
    const bool written = file.WriteBytes(bytes, size);
    return file.CloseFile(written) && written;
}

bool WriteTexels(const CXTString<wchar_t>& path, const aiTexture& texture)
{
    const std::unique_ptr<Bitmap> bitmap(rgbaBitmap::Create(static_cast<int>(texture.mWidth), static_cast<int>(texture.mHeight)));
    if (!bitmap)
        return false;
    const aiTexel* texel = texture.pcData;
    for (int y = 0; y < bitmap->GetHeight(); y++) {
        unsigned char* pixel = bitmap->GetLine(y);
        for (int x = 0; x < bitmap->GetWidth(); x++, texel++, pixel += 4)
            pixel[0] = texel->r, pixel[1] = texel->g, pixel[2] = texel->b, pixel[3] = texel->a;
    }
    C2DIo io(CFileNameSpec(path), FILEIO_SILENT, nullptr);
    return io.Save(bitmap.get()) == IORESULT_OK;
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
    std::string path = name;
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

    const auto* bytes = reinterpret_cast<const unsigned char*>(texture.pcData);
    const std::string title = TitleOf(texture.mFilename.length > 0 ? texture.mFilename.C_Str() : name[0] == '*' ? "" : name);
    const CXTString<wchar_t> cache = TextureCacheFolder(), folder = cache + Utf8ToWide(ContentHash(bytes, size) + "/");
    const CXTString<wchar_t> file = folder + Utf8ToWide(title + "." + (isFile ? ExtensionOf(texture) : "png"));
    if (cache.IsEmpty() || !fileCreateDirectory(folder, true) ||
        !(fileExists(file) || (isFile ? WriteBytes(file, bytes, size) : WriteTexels(file, texture)))) {
        m_options.AddLogInfo(IoLogInfo::WARNING, L"an image of the file could not be written to " + file);
        return path;
    }
    m_scene.AddTexturePath(folder);
    return path = file;
}
