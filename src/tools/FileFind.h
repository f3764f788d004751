#pragma once

#include "tools/Api.h"
#include "tools/String.h"

/// The file whose name differs from `path` in the case of letters alone, in its folders or in its own; `path` as it stands when that is there.
/// Of several the first by code point. Empty when there is none. Reads each folder on the way that is not there as written.
ZEL_API CXTString<wchar_t> fileFindAnyCase(const CXTString<wchar_t>& path);
