#pragma once

#include <string>
#include <string_view>

/// A binary FBX file as the library writes it, with the empty record behind the children of each node, which it leaves out and without which
/// no program reads the file. Empty when the file is not made as expected.
std::string RepairFbx(std::string_view file);
