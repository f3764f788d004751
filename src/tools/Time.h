#pragma once

#include <cstdint>

#include "tools/Api.h"

/// Milliseconds on a clock that never goes back; never 0, which therefore can stand for "no time". Differences count, the
/// start means nothing.
ZEL_API std::int64_t timeGetTick();
