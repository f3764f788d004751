#pragma once

#include <array>

#include "tools/Color.h"

/// Red, green, blue and alpha, 0 to 1, as GL takes them.
using GLColor = std::array<float, 4>;

inline GLColor GetColor4f(const CRGBColor& color, float divisor = 255)
{
    return {color.red / divisor, color.green / divisor, color.blue / divisor, color.alpha / divisor};
}

/// A colour of a material as it is drawn: never black, so that shapes show, and unless it is wholly transparent never less than 0.3 opaque.
inline GLColor GetDrawnColor(CRGBColor color)
{
    constexpr double DARKEST = 0.05;
    constexpr float THINNEST = 0.3f;
    if (color.GetLuminance() < DARKEST)
        color.SetLuminance(DARKEST);
    GLColor drawn = GetColor4f(color);
    if (drawn[3] != 0 && drawn[3] < THINNEST)
        drawn[3] = THINNEST;
    return drawn;
}
