#include "PictureFile.h"

#include <cstdio>

#include "InputFiles.h"
#include "OutputTarget.h"
#include "SceneFile.h"

namespace {

constexpr unsigned int JPEG = FourCC("JPEG"), GIF = FourCC("GIF "), WEBP = FourCC("WEBP"), TIFF = FourCC("TIFF");
constexpr int PNG_LEVEL = 3;    // of what is drawn: a third faster than level 4, and files at most a tenth larger

}

PictureFile::PictureFile(std::string name, unsigned int otherwise) : m_name(std::move(name)), m_class(otherwise)
{
    CFileExt format;
    if (fileGetFileExt(fileGetExtension(Utf8ToWide(m_name)), &format, FILE_FAMILY_BITMAP) && format.CanWrite())
        m_class = format.fileClass;
}

ExitCode PictureFile::Check(const Console& console, bool hasAlpha, const std::string& source) const
{
    if (m_class == 0) {
        std::string list;
        for (const CFileExt& format : fileGetExtensions(FILE_FAMILY_BITMAP, FILE_KIND_WRITE))
            list += (list.empty() ? "" : ", ") + WideToUtf8(format.GetMainExtension());
        console.Fail(m_name + ": no picture of that kind can be written; there are " + list);
        return EXIT_USAGE;
    }
    if (hasAlpha && m_class == JPEG) {
        console.Fail(m_name + ": a JPEG has no transparency");
        return EXIT_USAGE;
    }
    if (InputFiles({source}).Contain(m_name)) {
        console.Fail(m_name + ": is read too");
        return EXIT_USAGE;
    }
    if (const std::string obstacle = GetObstacle(m_name); !obstacle.empty()) {
        console.Fail(m_name + ": " + obstacle);
        return EXIT_FAILED;
    }
    return EXIT_DONE;
}

bool PictureFile::HoldsMany() const { return m_class == GIF || m_class == WEBP || m_class == TIFF; }

PictureFile PictureFile::GetNumbered(int number) const
{
    char digits[16];
    std::snprintf(digits, sizeof(digits), "%04d", number);
    const std::size_t extension = WideToUtf8(fileGetExtension(Utf8ToWide(m_name))).size();
    std::string name = m_name;
    return PictureFile(name.insert(name.size() - extension, digits), m_class);
}

template <class SAVE> ExitCode PictureFile::Save(const Console& console, SAVE&& save) const
{
    C2DIo io(CFileNameSpec(Utf8ToWide(m_name), m_class), FILEIO_SILENT, nullptr);
    io.GetOptions().pngLevel = PNG_LEVEL;
    if (save(io) == IORESULT_OK)
        return EXIT_DONE;
    console.Fail(NameFailure(m_name, WideToUtf8(io.GetResultText())));
    return EXIT_FAILED;
}

ExitCode PictureFile::Write(const Console& console, const Bitmap& picture) const
{
    return Save(console, [&](C2DIo& io) { return io.Save(&picture); });
}

ExitCode PictureFile::Write(const Console& console, const CFrameBitmap& pictures) const
{
    return Save(console, [&](C2DIo& io) {
        return io.PrepareSaving(&pictures, pictures.GetFrameCount()) == IORESULT_OK ? io.Save(&pictures, 0) : IORESULT_FAILED;
    });
}
