#include "UnpackedImages.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "ImageCache.h"

namespace {

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

// The bare name, of letters that every file system takes.
std::string SafeName(std::string name)
{
    name.erase(0, name.find_last_of("/\\:") + 1);
    std::erase_if(name, [](unsigned char c) { return c < 32 || std::strchr("*?\"<>|", c); });
    const std::size_t point = std::min(name.rfind('.'), name.size());
    std::string title = name.substr(0, point), extension = name.substr(point, 20);
    title.resize(std::min<std::size_t>(title.size(), 100));
    return title.empty() || title == "." ? "texture" + extension : title + extension;
}

bool WriteFile(const CXTString<wchar_t>& path, const std::vector<unsigned char>& bytes)
{
    IoFile file;
    if (!file.OpenFile(path, 0, nullptr))
        return false;
    const bool written = file.WriteBytes(bytes.data(), bytes.size());
    return file.CloseFile(written) && written;
}

bool WritePixels(const CXTString<wchar_t>& path, const std::vector<unsigned char>& pixels, int width, int height)
{
    const std::unique_ptr<Bitmap> bitmap(rgbaBitmap::Create(width, height));
    if (!bitmap)
        return false;
    const auto row = static_cast<std::size_t>(width) * 4;
    for (int y = 0; y < height; y++)
        std::memcpy(bitmap->GetLine(y), pixels.data() + static_cast<std::size_t>(y) * row, row);
    C2DIo io(CFileNameSpec(path), FILEIO_SILENT, nullptr);
    return io.Save(bitmap.get()) == IORESULT_OK;
}

}

CXTString<wchar_t> UnpackedImages::FolderOf(const Image& image)
{
    const CXTString<wchar_t> cache = GetUnpackedTexturesPath();
    return cache.IsEmpty() ? cache : cache + Utf8ToWide(ContentHash(image.bytes.data(), image.bytes.size()) + "/");
}

CXTString<wchar_t> UnpackedImages::Add(Image image)
{
    image.name = SafeName(image.name);
    const CXTString<wchar_t> folder = FolderOf(image);
    if (folder.IsEmpty())
        return folder;
    m_images.push_back(std::move(image));
    return folder + Utf8ToWide(m_images.back().name);
}

CXTString<wchar_t> UnpackedImages::AddFile(const std::string& name, const void* bytes, std::size_t size)
{
    const auto* first = static_cast<const unsigned char*>(bytes);
    return Add({name, {first, first + size}});
}

CXTString<wchar_t> UnpackedImages::AddPixels(const std::string& name, const void* pixels, int width, int height)
{
    const auto* first = static_cast<const unsigned char*>(pixels);
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    return Add({name, {first, first + size}, width, height});
}

void UnpackedImages::Write(C3DScene& scene, CIoOptions& options) const
{
    bool hasGrown = false;
    for (const Image& image : m_images) {
        const CXTString<wchar_t> folder = FolderOf(image), file = folder + Utf8ToWide(image.name);
        const bool exists = !folder.IsEmpty() && fileExists(file);
        if (exists)
            MarkImageUsed(WideToUtf8(file));
        else if (folder.IsEmpty() || !fileCreateDirectory(folder, true) || !WriteImage(file, image)) {
            options.AddLogInfo(IoLogInfo::WARNING, L"an image of the file could not be written to " + file);
            continue;
        }
        hasGrown |= !exists;
        scene.AddTexturePath(folder);
    }
    if (hasGrown)
        LimitImageCache(WideToUtf8(GetUnpackedTexturesPath()));
}

bool UnpackedImages::WriteImage(const CXTString<wchar_t>& path, const Image& image)
{
    return image.height > 0 ? WritePixels(path, image.bytes, image.width, image.height) : WriteFile(path, image.bytes);
}

void UnpackedImages::Serialize(CXArchive& ar)
{
    if (ar.IsStoring()) {
        ar.WriteCount(m_images.size());
    } else {
        m_images.clear();
        m_images.resize(ar.ReadCount(2 * sizeof(std::int32_t)));
    }
    for (Image& image : m_images) {
        CXTString<wchar_t> name = Utf8ToWide(image.name);
        if (ar.IsStoring()) {
            ar << name << image.width << image.height;
            ar.WriteCount(image.bytes.size());
            ar.Write(image.bytes.data(), image.bytes.size());
            continue;
        }
        ar >> name >> image.width >> image.height;
        image.name = SafeName(WideToUtf8(name));
        image.bytes.resize(ar.ReadCount(1));
        ar.Read(image.bytes.data(), image.bytes.size());
        const std::int64_t pixels = std::int64_t{image.width} * image.height;
        if (image.width < 0 || image.height < 0 || (pixels > 0 && pixels * 4 != static_cast<std::int64_t>(image.bytes.size())))
            throw XSetThreadException(new CXArchiveException(CXArchiveException::ARCHIVE_BAD_VALUE));
    }
}
