#pragma once

#include "geometry/Quaternion.h"

/// A matrix taken apart: T * U^-1 * K * U * Q * F, see Recompose.
struct _MatrixDecomposition {
    C3DTVector<float> translation;    ///< T
    C3DTVector<float> stretch;        ///< K: factors along the stretch axes, not negative
    CQuaternion rotation;             ///< Q: essential rotation
    CQuaternion stretchRotation;      ///< U: turns the stretch axes onto x, y, z
    double sign = 1;                  ///< F: -1 for a matrix that mirrors, else 1
};

/// Polar decomposition of an affine matrix. Of all orders of the stretch axes it takes the one with the least stretch
/// rotation. A singular matrix has several decompositions; one of them results.
ZEL_API void Decompose(const C4x4TMatrix<float>& matrix, _MatrixDecomposition& parts);

/// The matrix of the parts. The identity when the stretch rotation is no rotation at all.
ZEL_API C4x4TMatrix<float> Recompose(const _MatrixDecomposition& parts);
