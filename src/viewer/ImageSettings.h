#pragma once

#include <vector>

#include "render/Turntable.h"
#include "tools/CustomData.h"

/// What C3DSaveAsBitmap renders, as the command's parameters hold it.
struct ZEL_API CImageSettings {
    /// Values of `pointOfView`: the six sides and the slanted ones come first, user views behind.
    enum : unsigned int { VIEW_FRONT = 0, FIRST_SLANTED = 6, LAST_SLANTED = 13, VIEW_PRESENT = 14, FIRST_USER_VIEW = 15 };

    CRGBColor background{255, 255, 255};
    bool smooth = true;             ///< rendered at twice the size and averaged
    unsigned int renderMode = 3;    ///< index of GetRenderModeNames
    unsigned int pointOfView = VIEW_PRESENT;
    unsigned int viewAngle = 30;    ///< of the slanted points of view, degrees
    int width = 720, height = 568;
    bool animated = false;
    int imageCount = 12;             ///< of a series
    unsigned int movement = 0;       ///< CTurntable::Movement
    unsigned int amplitude = 360;    ///< degrees

    /// What the bag lacks has its standard value; sizes and counts are 1 at least.
    void Read(const CCustomData& parameters);
    void Write(CCustomData& parameters) const;

    /// Of what is rendered: one picture without a series.
    CTurntable GetTurntable() const;

    static std::vector<CXTString<wchar_t>> GetRenderModeNames();
    /// Of values below FIRST_USER_VIEW.
    static std::vector<CXTString<wchar_t>> GetPointOfViewNames();
    static std::vector<CXTString<wchar_t>> GetMovementNames();
};

/// Parts of a text of the string table, which '|' keeps apart.
std::vector<CXTString<wchar_t>> LoadTexts(unsigned int id);
