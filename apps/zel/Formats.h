#pragma once

#include "Console.h"
#include "ExitCode.h"

/// zel formats: what can be read and written, and by which plug-in.
ExitCode ShowFormats(const Console& console, bool json);
