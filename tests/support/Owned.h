#pragma once

#include <memory>

#include "tools/Object.h"

/// Holds the one reference that a maker hands out, and gives it back.
struct Releaser {
    void operator()(const CInstanciatedObject* object) const { DeleteMe(object); }
};
template <class T> using Owned = std::unique_ptr<T, Releaser>;
