#pragma once

#include "geometry/3DPointList.h"
#include "tools/Hash.h"
#include "tools/SimpleCollection.h"

/// Materials of the points where at least two meet; the other points, most of a mesh, have no entry.
struct C3DPointList::MaterialGraph {
    CHashMap<int, unsigned int> entries;    // point to entry
    CSimpleCollection<unsigned int, unsigned short> materials;
};
