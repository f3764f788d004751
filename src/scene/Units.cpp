#include "scene/Units.h"

CXTString<wchar_t> GetUnitText(_UNIT_MODE unit, bool abbreviated)
{
    static constexpr const wchar_t* NAMES[][2] = {
        {L"centimeter", L"cm"}, {L"nanometer", L"nm"},  {L"micrometer", L"\u00B5m"},
        {L"millimeter", L"mm"}, {L"centimeter", L"cm"}, {L"meter", L"m"},
        {L"kilometer", L"km"},  {L"inch", L"in"},       {L"foot", L"ft"},
        {L"yard", L"yd"},       {L"mile", L"mi"},
    };
    const unsigned int row = unit <= UNIT_MILE ? unit : UNIT_CENTIMETER;
    return NAMES[row][abbreviated ? 1 : 0];
}
