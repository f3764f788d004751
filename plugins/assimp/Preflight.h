#pragma once

#include <string>

/// Whether a file ends before what it announces. Some importers believe a damaged count: they take minutes and all memory to make room for
/// it, or hand out points that nobody wrote. Looks at the heads of OFF and PLY files; false for other classes and whatever it cannot make out.
bool EndsBeforeItsContent(unsigned int fileClass, const std::string& path);
