#pragma once

#include "tools/Api.h"

/// Drawing of an icon or a mouse pointer, by the number of its resource: SVG of 24 units a side, part of the library. Lines that have the colour of
/// text say "currentColor". Null for a number without one.
ZEL_API const char* FindIcon(unsigned int id);
