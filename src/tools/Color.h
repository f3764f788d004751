#pragma once

#include <string>

#include "tools/Api.h"
#include "tools/String.h"

class CXArchive;

/// Colour of four bytes, each 0 to 255. The default is opaque black.
class ZEL_API CRGBColor {
public:
    constexpr CRGBColor() = default;
    constexpr CRGBColor(unsigned char r, unsigned char g, unsigned char b, unsigned char a = 255) : red(r), green(g), blue(b), alpha(a) {}

    friend constexpr bool operator==(const CRGBColor&, const CRGBColor&) = default;
    /// Per channel, rounded to the nearest and clamped to 0..255.
    CRGBColor operator*(double factor) const;
    CRGBColor operator+(const CRGBColor& other) const;
    unsigned char* ValPtr() { return &red; }
    const unsigned char* ValPtr() const { return &red; }
    /// Red, green, blue, alpha: four bytes.
    void Serialize(CXArchive& ar);

    /// (max + min) / 2 of the three colours, 0..1.
    double GetLuminance() const;
    /// Scales the three colours to that luminance; a black becomes a grey.
    void SetLuminance(double luminance);
    /// "R G B A" in decimals.
    CXTString<wchar_t> GetRGBAString() const;

    unsigned char red = 0, green = 0, blue = 0, alpha = 255;
};

ZEL_API CXArchive& operator<<(CXArchive& ar, const CRGBColor& color);
ZEL_API CXArchive& operator>>(CXArchive& ar, CRGBColor& color);
