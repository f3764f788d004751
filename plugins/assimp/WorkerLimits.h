#pragma once

#include <cstdint>

#include <3dzel.h>

// Memory that this process may take while it reads a file. One at a time: the limits are the process's.

/// Sets the limit, and lets no file grow. 0 is no limit.
///
/// @param megabytes  on top of what the process has now and what its threads take
/// @param growth     bytes for each byte of the files that are read beside
void SetWorkerLimits(std::uint64_t megabytes, std::uint64_t growth);
/// A file beside is about to be read.
void GrowWorkerLimits(std::uint64_t fileSize);
/// Memory ran out: there is a little more to tell of it. Whatever `new` asks for in vain is noted by itself.
void NoteLackOfMemory();
/// The result may become as large as the memory that was allowed.
void AllowWorkerResult();
/// What to tell the user when memory ran out; empty when it did not.
CXTString<wchar_t> DescribeLackOfMemory();
