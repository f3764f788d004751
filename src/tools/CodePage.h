#pragma once

#include "tools/String.h"

/// Whether a text comes back the same from a code page, numbered as other systems do: 1252, 932, 65001 (UTF-8) ... A page that nobody
/// here knows is taken to hold ASCII alone.
ZEL_API bool SurvivesCodePage(const CXTString<wchar_t>& text, unsigned int codePage);
