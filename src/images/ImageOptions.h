#pragma once

#include "images/Bitmap.h"

/// How pictures are written, and what reading may cost.
struct CImageOptions {
    int jpegQuality = 90;              ///< 1 to 100
    bool jpegFullColor = false;        ///< colours at full resolution, not at half
    int pngLevel = 4;                  ///< 0 fastest to 9 smallest
    bool webpLossless = true;          ///< else webpQuality counts, and colours under transparent pixels change
    int webpQuality = 90;              ///< 0 to 100
    bool compress = true;              ///< TIFF and TGA
    int maxSide = BITMAP_MAX_SIDE;     ///< of what is read: the longest side,
    long long maxBytes = 1LL << 30;    ///< the bytes of all pictures of a file together, as they are in memory,
    int maxFrames = 10000;             ///< and their number
};
