#pragma once

#include <string>

/// Why nothing can be written at that place: there is no such folder, it is write-protected... Empty when nothing is seen to stand in the
/// way.
std::string GetObstacle(const std::string& target);
/// Makes a folder with those above it. Empty, or why that failed; one that is there already is fine.
std::string MakeFolder(const std::string& folder);
