#include "geometry/Swap.h"

#include <utility>

namespace {
/// Axes that the pair bits exchange; false for none or several.
bool GetPair(unsigned int code, int& a, int& b)
{
    switch (code & SWAP_PAIR_MASK) {
    case SWAP_XY: a = 0, b = 1; return true;
    case SWAP_XZ: a = 0, b = 2; return true;
    case SWAP_YZ: a = 1, b = 2; return true;
    default: return false;
    }
}

/// Axis that the mirror bits name; -1 for none or several.
int GetMirror(unsigned int code)
{
    switch (code & MIRROR_MASK) {
    case MIRROR_X: return 0;
    case MIRROR_Y: return 1;
    case MIRROR_Z: return 2;
    default: return -1;
    }
}

void SwapColumns(C4x4TMatrix<float>& matrix, int a, int b)
{
    for (auto& row : matrix.m)
        std::swap(row[a], row[b]);
}
}

bool GetXYZSwap(unsigned int code, int& a, int& b, int& mirror)
{
    if (code == 0)
        return false;
    a = b = -1;
    mirror = GetMirror(code);
    if (mirror == -1 && (code & MIRROR_MASK))
        return false;
    return GetPair(code, a, b) || !(code & SWAP_PAIR_MASK);
}

C4x4TMatrix<float> AdjustMatrix(unsigned int code, const C4x4TMatrix<float>& matrix)
{
    C4x4TMatrix<float> result = matrix;
    int a, b;
    if (GetPair(code, a, b)) {
        std::swap(result.m[a], result.m[b]);    // rows, with the translation
        for (int i = 0; i < 3; i++)
            std::swap(result.m[i][a], result.m[i][b]);
    }
    if (const int axis = GetMirror(code); axis != -1) {
        for (int i = 0; i < 3; i++)
            if (i != axis) {
                result.m[i][axis] = -result.m[i][axis];
                result.m[axis][i] = -result.m[axis][i];
            }
        result.m[axis][3] = -result.m[axis][3];
    }
    return result;
}

C4x4TMatrix<float> SwapMatrix(unsigned int code, const C4x4TMatrix<float>& matrix)
{
    C4x4TMatrix<float> result = matrix;
    int a, b;
    if (GetPair(code, a, b)) {
        std::swap(result.m[a][3], result.m[b][3]);
        SwapColumns(result, a, b);
    } else if (code & SWAP_PAIR_MASK)
        return result;
    if (const int axis = GetMirror(code); axis != -1) {
        result.m[axis][3] = -result.m[axis][3];
        for (auto& row : result.m)
            row[axis] = -row[axis];
    }
    return result;
}
