#pragma once

#include <string>
#include <vector>

/// Folders in which modules of a kind ("plugins", "windows") are looked for, best first: those of the environment variable (colon separated; not for
/// programs with raised rights), 3dzel/<kind> beside the library, and `installed` unless it is null.
std::vector<std::string> GetModuleFolders(const char* variable, const std::string& kind, const char* installed);
