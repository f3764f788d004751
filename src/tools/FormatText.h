#pragma once

#include "tools/String.h"

/// Text of an entry of the string table; empty for an unknown id.
inline CXTString<wchar_t> LoadText(unsigned int id)
{
    CXTString<wchar_t> text;
    text.LoadStringW(id);
    return text;
}

inline const wchar_t* FormatArgument(const CXTString<wchar_t>& text) { return text.c_str(); }
template <class NUMBER> NUMBER FormatArgument(const NUMBER& number) { return number; }

/// The entry with its %s, %d and %g filled in.
template <class... ARGUMENTS> CXTString<wchar_t> FormatText(unsigned int id, const ARGUMENTS&... arguments)
{
    CXTString<wchar_t> text;
    text.FormatString(LoadText(id), FormatArgument(arguments)...);
    return text;
}
