#pragma once

#include <assimp/types.h>

#include <3dzel.h>

#include "PointJoin.h"

/// The affine part. Both systems multiply columns.
inline C4x4TMatrix<float> ToMatrix(const aiMatrix4x4& from)
{
    C4x4TMatrix<float> matrix;
    for (unsigned int row = 0; row < 3; row++)
        for (unsigned int column = 0; column < 4; column++)
            matrix.m[row][column] = static_cast<float>(from[row][column]);
    return matrix;
}

inline aiMatrix4x4 ToMatrix(const C4x4TMatrix<float>& from)
{
    aiMatrix4x4 matrix;
    for (unsigned int row = 0; row < 3; row++)
        for (unsigned int column = 0; column < 4; column++)
            matrix[row][column] = from.m[row][column];
    return matrix;
}

// Colours are told apart as bytes. Two of these fit into the digits of a float, and all four into a triple.

inline Position PackColor(const CRGBColor& color)
{
    return {static_cast<float>(color.red + 256 * color.green), static_cast<float>(color.blue + 256 * color.alpha), 0};
}
inline CRGBColor UnpackColor(const Position& packed)
{
    const auto redGreen = static_cast<unsigned int>(packed.x), blueAlpha = static_cast<unsigned int>(packed.y);
    const auto byte = [](unsigned int value) { return static_cast<unsigned char>(value & 255); };
    return {byte(redGreen), byte(redGreen >> 8), byte(blueAlpha), byte(blueAlpha >> 8)};
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
