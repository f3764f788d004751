#pragma once

#include "tools/String.h"

/// True when a class that has the name's extension, of one of the families, can be read.
bool IsReadableFile(const CXTString<wchar_t>& path, unsigned int families);
/// The readable file behind (`step` 1) or before (-1) a name in its folder, in the order in which file managers show them; empty for none. The name
/// itself need not be there.
CXTString<wchar_t> GetNextReadableFile(const CXTString<wchar_t>& path, int step, unsigned int families);
