#pragma once

#include <optional>

#include "tools/Api.h"
#include "tools/String.h"

// For calls of code that may throw whatever it likes.

/// What the exception says that is being handled, whoever threw it; to be called in a catch block. Never empty.
ZEL_API CXTString<wchar_t> GetCaughtText();
/// What the exception says that was caught for good; of what this system throws, it destroys that one alone.
ZEL_API CXTString<wchar_t> TakeCaughtText();

/// Does the work; the text of what it threw, or nothing. No exception object is left: its code may lie in a module that is closed next.
template <class WORK> std::optional<CXTString<wchar_t>> CatchAll(const WORK& work)
{
    try {
        work();
        return std::nullopt;
    } catch (...) {
        return TakeCaughtText();
    }
}
