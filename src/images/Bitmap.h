#pragma once

#include <memory>

#include "tools/Api.h"
#include "tools/Rect.h"

enum BitmapType { BITMAP_RGB = 1, BITMAP_RGBA = 2, BITMAP_GREY = 4 };

/// Picture of 8 bits a channel, rows from the top without padding.
class ZEL_API Bitmap {
public:
    virtual ~Bitmap();
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    BitmapType GetType() const { return m_type; }
    int GetBytesPerPixel() const { return m_type == BITMAP_RGBA ? 4 : m_type == BITMAP_RGB ? 3 : 1; }
    /// Pixels of a row, red green blue and, for BITMAP_RGBA, alpha; one byte for BITMAP_GREY. Null outside.
    unsigned char* GetLine(int y);
    const unsigned char* GetLine(int y) const;

    /// Scales to another size: mode 0 takes the nearest pixel, 1 the average of those covered (bilinear when growing). False for
    /// a size below 1 or too large.
    bool Resize(int width, int height, int mode);
    /// A new picture of that type, the caller's; a new alpha is 255. A grey picture takes the alpha where there is one, else the
    /// brightness. Null for an unknown type.
    Bitmap* ConvertToType(BitmapType type) const;
    /// True when a pixel has an alpha below 255.
    bool HasAlpha() const;
    void InvertAlpha();
    /// Destroys a picture; accepts null.
    static void DeleteBitmap(Bitmap* bitmap);

protected:
    Bitmap(BitmapType type, int width, int height);

private:
    BitmapType m_type;
    int m_width, m_height;
    std::unique_ptr<unsigned char[]> m_pixels;
};

/// Largest side and number of pixels that a picture may have.
constexpr int BITMAP_MAX_SIDE = 1 << 16;
constexpr long long BITMAP_MAX_PIXELS = 1LL << 29;

/// Pictures of one type. Create gives null for a size that cannot be; all bytes are 0.
class ZEL_API rgbBitmap : public Bitmap {
public:
    static rgbBitmap* Create(int width, int height);
    ~rgbBitmap() override;

private:
    rgbBitmap(int width, int height) : Bitmap(BITMAP_RGB, width, height) {}
};

class ZEL_API rgbaBitmap : public Bitmap {
public:
    static rgbaBitmap* Create(int width, int height);
    ~rgbaBitmap() override;

private:
    rgbaBitmap(int width, int height) : Bitmap(BITMAP_RGBA, width, height) {}
};

/// One byte a pixel: a mask, an alpha on its own, shades of grey.
class ZEL_API greyBitmap : public Bitmap {
public:
    static greyBitmap* Create(int width, int height);
    ~greyBitmap() override;

private:
    greyBitmap(int width, int height) : Bitmap(BITMAP_GREY, width, height) {}
};
