#pragma once

#include <memory>
#include <string>

#include <3dzel.h>

#include "Console.h"
#include "ExitCode.h"

struct DeletePicture {
    void operator()(Bitmap* picture) const { Bitmap::DeleteBitmap(picture); }
};
using Picture = std::unique_ptr<Bitmap, DeletePicture>;

/// An image file to be written, in the format that its name tells. It stands whole or not at all, and what stood there before stays until then.
class PictureFile {
public:
    /// `otherwise`: class of the format for a name that tells none; 0 for no such.
    explicit PictureFile(std::string name, unsigned int otherwise = 0);

    /// EXIT_DONE when it can be written as far as can be seen. Any other code comes after one line of the console: the name tells no format
    /// that can be written, or one that cannot hold the picture, or is that of the file `source`, or something is in the way.
    ExitCode Check(const Console& console, bool hasAlpha, const std::string& source) const;
    /// Whether several pictures go into the one file.
    bool HoldsMany() const;
    /// The file beside this one for one of several pictures: name0007.png.
    PictureFile GetNumbered(int number) const;

    /// EXIT_FAILED, with one line of the console, when it cannot be written.
    ExitCode Write(const Console& console, const Bitmap& picture) const;
    ExitCode Write(const Console& console, const CFrameBitmap& pictures) const;

private:
    template <class SAVE> ExitCode Save(const Console& console, SAVE&& save) const;

    std::string m_name;
    unsigned int m_class;
};
