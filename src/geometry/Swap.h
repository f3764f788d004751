#pragma once

#include "geometry/4x4Matrix.h"

// Swap and mirror code: which two axes to exchange, then which axis to mirror. One value of each kind at most.

enum _SWAP_CODES : unsigned int {
    SWAP_XY = 0x1,
    SWAP_XZ = 0x2,
    SWAP_YZ = 0x4,
    SWAP_PAIR_MASK = 0x7,
    MIRROR_X = 0x10,
    MIRROR_Y = 0x20,
    MIRROR_Z = 0x40,
    MIRROR_MASK = 0x70,
};

/// What to do with a coordinate triple: exchange a and b, then negate `mirror`; -1 stands for nothing to do.
/// False for code 0, outputs untouched, and for two values of one kind: then an output that is not -1 does not count.
ZEL_API bool GetXYZSwap(unsigned int code, int& a, int& b, int& mirror);

/// The transform as seen from the changed axes: rows, columns and translation are exchanged, then mirrored.
/// An unusable half of the code is left out.
ZEL_API C4x4TMatrix<float> AdjustMatrix(unsigned int code, const C4x4TMatrix<float>& matrix);

/// Changes the translation and the columns, so that the result takes coordinates in the changed axes.
/// An unusable pair leaves everything as it is, an unusable mirror only the mirror out.
ZEL_API C4x4TMatrix<float> SwapMatrix(unsigned int code, const C4x4TMatrix<float>& matrix);
