#include "viewer/ImageSettings.h"

#include <algorithm>

#include "tools/FormatText.h"
#include "tools/FourCC.h"

namespace {

enum Key : unsigned int {
    BACKGROUND = FourCC("BKCO"),    // 0x00BBGGRR
    SMOOTH = FourCC("SMOO"),
    RENDER_MODE = FourCC("RDMD"),
    POINT_OF_VIEW = FourCC("RDPS"),
    VIEW_ANGLE = FourCC("VWAL"),
    WIDTH = FourCC("WIDT"),
    HEIGHT = FourCC("HEIG"),
    ANIMATED = FourCC("ANIM"),
    IMAGE_COUNT = FourCC("IMGN"),
    MOVEMENT = FourCC("MVMT"),
    AMPLITUDE = FourCC("AMPL"),
};

constexpr unsigned int LARGEST = 1 << 24;    // far beyond what can be rendered, and no overflow

unsigned int ReadUnsigned(const CCustomData& parameters, unsigned int key, unsigned int standard)
{
    unsigned int value;
    parameters.GetUnsigned(key, value, standard);
    return value;
}

int ReadCount(const CCustomData& parameters, unsigned int key, int standard)
{
    return static_cast<int>(std::clamp(ReadUnsigned(parameters, key, static_cast<unsigned int>(standard)), 1U, LARGEST));
}

}

void CImageSettings::Read(const CCustomData& parameters)
{
    const CImageSettings standard;
    const unsigned int color = ReadUnsigned(parameters, BACKGROUND, 0xFFFFFF);
    background =
        CRGBColor(static_cast<unsigned char>(color), static_cast<unsigned char>(color >> 8), static_cast<unsigned char>(color >> 16));
    parameters.GetBool(SMOOTH, smooth, standard.smooth);
    renderMode = ReadUnsigned(parameters, RENDER_MODE, standard.renderMode);
    pointOfView = ReadUnsigned(parameters, POINT_OF_VIEW, standard.pointOfView);
    viewAngle = ReadUnsigned(parameters, VIEW_ANGLE, standard.viewAngle);
    width = ReadCount(parameters, WIDTH, standard.width);
    height = ReadCount(parameters, HEIGHT, standard.height);
    parameters.GetBool(ANIMATED, animated, standard.animated);
    imageCount = ReadCount(parameters, IMAGE_COUNT, standard.imageCount);
    movement = ReadUnsigned(parameters, MOVEMENT, standard.movement);
    amplitude = std::max(1U, ReadUnsigned(parameters, AMPLITUDE, standard.amplitude));
}

void CImageSettings::Write(CCustomData& parameters) const
{
    parameters.SetUnsigned(BACKGROUND, background.red | background.green << 8 | background.blue << 16);
    parameters.SetBool(SMOOTH, smooth);
    parameters.SetUnsigned(RENDER_MODE, renderMode);
    parameters.SetUnsigned(POINT_OF_VIEW, pointOfView);
    parameters.SetUnsigned(VIEW_ANGLE, viewAngle);
    parameters.SetUnsigned(WIDTH, static_cast<unsigned int>(width));
    parameters.SetUnsigned(HEIGHT, static_cast<unsigned int>(height));
    parameters.SetBool(ANIMATED, animated);
    parameters.SetUnsigned(IMAGE_COUNT, static_cast<unsigned int>(imageCount));
    parameters.SetUnsigned(MOVEMENT, movement);
    parameters.SetUnsigned(AMPLITUDE, amplitude);
}

CTurntable CImageSettings::GetTurntable() const
{
    CTurntable turntable;
    turntable.count = animated ? imageCount : 1;
    turntable.movement = static_cast<CTurntable::Movement>(movement);
    turntable.amplitude = amplitude;
    return turntable;
}

std::vector<CXTString<wchar_t>> LoadTexts(unsigned int id)
{
    const CXTString<wchar_t> all = LoadText(id);
    std::vector<CXTString<wchar_t>> texts;
    for (int start = 0, end; start <= all.GetLength(); start = end + 1) {
        end = all.Find(L'|', start);
        if (end < 0)
            end = all.GetLength();
        texts.push_back(all.Mid(start, end - start));
    }
    return texts;
}

std::vector<CXTString<wchar_t>> CImageSettings::GetRenderModeNames()
{
    constexpr unsigned int NAMES = 9852;
    return LoadTexts(NAMES);
}

std::vector<CXTString<wchar_t>> CImageSettings::GetPointOfViewNames()
{
    constexpr unsigned int NAMES = 9853;
    return LoadTexts(NAMES);
}

std::vector<CXTString<wchar_t>> CImageSettings::GetMovementNames()
{
    constexpr unsigned int NAMES = 9854;
    return LoadTexts(NAMES);
}
