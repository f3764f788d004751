#include "tools/Color.h"

#include <algorithm>
#include <cmath>

#include "tools/Archive.h"

namespace {

unsigned char ToByte(double value)
{
    return static_cast<unsigned char>(std::lround(value > 0 ? std::min(value, 255.0) : 0.0));    // a NaN is 0 too
}

}

CRGBColor CRGBColor::operator*(double factor) const
{
    return {ToByte(red * factor), ToByte(green * factor), ToByte(blue * factor), ToByte(alpha * factor)};
}

CRGBColor CRGBColor::operator+(const CRGBColor& other) const
{
    return {ToByte(red + other.red), ToByte(green + other.green), ToByte(blue + other.blue), ToByte(alpha + other.alpha)};
}

void CRGBColor::Serialize(CXArchive& ar)
{
    static_assert(sizeof(CRGBColor) == 4);
    ar.MoveNumbers(ValPtr(), 4);
}

double CRGBColor::GetLuminance() const { return (std::max({red, green, blue}) + std::min({red, green, blue})) / 510.0; }

void CRGBColor::SetLuminance(double luminance)
{
    const double old = GetLuminance(), wanted = std::clamp(luminance, 0.0, 1.0);
    if (old == 0)
        red = green = blue = ToByte(wanted * 255);
    else {
        red = ToByte(red * wanted / old);
        green = ToByte(green * wanted / old);
        blue = ToByte(blue * wanted / old);
    }
}

CXTString<wchar_t> CRGBColor::GetRGBAString() const
{
    CXTString<wchar_t> text;
    text.FormatString(L"%d %d %d %d", red, green, blue, alpha);
    return text;
}

CXArchive& operator<<(CXArchive& ar, const CRGBColor& color)
{
    ar.Write(color.ValPtr(), 4);
    return ar;
}

CXArchive& operator>>(CXArchive& ar, CRGBColor& color)
{
    ar.Read(color.ValPtr(), 4);
    return ar;
}
