#pragma once

#include "tools/Api.h"
#include "tools/String.h"

/// Unit of a scene's lengths. Values are stored; 0, undefined, counts as centimetres.
enum _UNIT_MODE : unsigned int {
    UNIT_UNDEFINED = 0,
    UNIT_NANOMETER = 1,
    UNIT_MICROMETER = 2,
    UNIT_MILLIMETER = 3,
    UNIT_CENTIMETER = 4,
    UNIT_METER = 5,
    UNIT_KILOMETER = 6,
    UNIT_INCH = 7,
    UNIT_FOOT = 8,
    UNIT_YARD = 9,
    UNIT_MILE = 10,
};

/// Name of a unit: "centimeter", or with `abbreviated` "cm". An unknown value reads as centimetres.
ZEL_API CXTString<wchar_t> GetUnitText(_UNIT_MODE unit, bool abbreviated);
