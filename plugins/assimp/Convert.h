#pragma once

#include <assimp/matrix4x4.h>

#include <3dzel.h>

/// The affine part. Both systems multiply columns.
inline C4x4TMatrix<float> ToMatrix(const aiMatrix4x4& from)
{
    C4x4TMatrix<float> matrix;
    for (unsigned int row = 0; row < 3; row++)
        for (unsigned int column = 0; column < 4; column++)
            matrix.m[row][column] = static_cast<float>(from[row][column]);
    return matrix;
}

/// To the bit: a node without a key is smaller and exact.
inline bool IsExactIdentity(const C4x4TMatrix<float>& matrix)
{
    const C4x4TMatrix<float> identity;
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 4; column++)
            if (matrix.m[row][column] != identity.m[row][column])
                return false;
    return true;
}
