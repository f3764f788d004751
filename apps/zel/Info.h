#pragma once

#include <string>
#include <vector>

#include "Console.h"
#include "ExitCode.h"

/// zel info: what scene files hold, as text or as JSON (an object a file; an array for several files). `tree` adds all nodes. The object of a
/// file that cannot be read has `error` in place of what it holds.
ExitCode ShowInfo(const Console& console, const std::vector<std::string>& files, bool json, bool tree);
