#pragma once

#include "tools/Hash.h"
#include "tools/String.h"

/// A name that the pool does not hold: the name itself, or with 1, 2, 3... behind it.
///
/// @param limit  longest name; what is too long loses its end, in front of the number. 0 or less: none
/// @param add    the name joins the pool
/// @return       the name as it was cut when the limit leaves no other
///
/// Cost: a look-up for each doubling of the number, so that a thousand equal names are no matter.
ZEL_API CXTString<wchar_t> GetUniqueName(CHashTable<CXTString<wchar_t>>& pool, const CXTString<wchar_t>& name, int limit, bool add);
