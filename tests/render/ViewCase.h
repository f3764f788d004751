#pragma once

// Scenes drawn off screen, and what their pictures show.

#include <gtest/gtest.h>

#include <memory>

#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/Bitmap.h"

struct DeletePicture {
    void operator()(Bitmap* picture) const { Bitmap::DeleteBitmap(picture); }
};
using Picture = std::unique_ptr<Bitmap, DeletePicture>;

/// Number of pixels for which the test holds; it gets red, green, blue (and alpha) of each.
template <class TEST> int CountPixels(const Bitmap& picture, TEST&& test)
{
    int count = 0;
    for (int y = 0; y < picture.GetHeight(); y++)
        for (int x = 0; x < picture.GetWidth(); x++)
            count += test(picture.GetLine(y) + x * picture.GetBytesPerPixel());
    return count;
}
