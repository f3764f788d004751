#pragma once

#include <vector>

#include "tools/Memory.h"

/// A vector for what grows with a mesh: its memory is that of the big lists.
template <class T> using CBlockVector = std::vector<T, XBlockAllocator<T>>;
