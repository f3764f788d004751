#pragma once

#include <string>

/// Why a file must not go to its importer, or null. Some importers believe a damaged count: they take minutes and all memory to make room for it,
/// or hand out points that nobody wrote. Others read what they do not know as what they know. Looks at the heads of OFF and PLY files; null for
/// other classes and whatever it cannot make out.
const char* FindFault(unsigned int fileClass, const std::string& path);
