#pragma once

#include <string>
#include <vector>

#include <3dzel.h>

/// Images that lay inside a model's file, on their way to the user's cache.
///
/// Each goes to <hash of the content> in GetUnpackedTexturesPath, once for all files that hold it. Who reads a file only learns where its
/// images will be; the host writes them, so that a worker need not write anywhere.
class UnpackedImages {
public:
    /// A file of an image, as it stood in the model's file.
    ///
    /// @param name  file name of the image; what no file system would take is left out
    /// @return      where it will be; empty without a cache folder
    CXTString<wchar_t> AddFile(const std::string& name, const void* bytes, std::size_t size);
    /// Rows of pixels of four bytes, red, green, blue and alpha, the upper row first.
    CXTString<wchar_t> AddPixels(const std::string& name, const void* pixels, int width, int height);

    /// Writes what is not there yet, and makes the folders texture paths of the scene. A warning for each image that cannot be written.
    void Write(C3DScene& scene, CIoOptions& options) const;
    /// Throws CXArchiveException when the bytes are none of these.
    void Serialize(CXArchive& ar);

private:
    struct Image {
        std::string name;
        std::vector<unsigned char> bytes;
        std::int32_t width = 0, height = 0;    ///< of pixels; 0 for a file
    };

    static CXTString<wchar_t> FolderOf(const Image& image);
    static bool WriteImage(const CXTString<wchar_t>& path, const Image& image);
    CXTString<wchar_t> Add(Image image);

    std::vector<Image> m_images;
};
