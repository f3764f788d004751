#pragma once

#include <cstring>

// The product of two 4x4 matrices as plain arrays, for C4x4TMatrix<float> and for loops that multiply many.

/// The bottom row is (0, 0, 0, 1).
inline bool IsAffineMatrix(const float (&m)[4][4])
{
    static constexpr float BOTTOM[4] = {0, 0, 0, 1};
    return std::memcmp(m[3], BOTTOM, sizeof(BOTTOM)) == 0;
}

/// out = a * b. Each value is summed in double from the left, and rounded once. `out` may be `a` or `b`.
inline void MultiplyMatrices(const float (&a)[4][4], const float (&b)[4][4], float (&out)[4][4])
{
    using Row [[gnu::vector_size(32)]] = double;
    using FloatRow [[gnu::vector_size(16)]] = float;

    FloatRow floats[4];
    std::memcpy(floats, b, sizeof(floats));
    Row rows[4];
    for (int k = 0; k < 4; k++)
        rows[k] = __builtin_convertvector(floats[k], Row);

    // Of two affine matrices the last summand is 0 but for the translation, and 0 changes no sum that began at 0.
    const bool affine = IsAffineMatrix(a) && IsAffineMatrix(b);
    if (affine) {
        for (int i = 0; i < 3; i++) {
            Row sum = {};
            for (int k = 0; k < 3; k++)
                sum += static_cast<double>(a[i][k]) * rows[k];
            sum[3] += static_cast<double>(a[i][3]);
            floats[i] = __builtin_convertvector(sum, FloatRow);
        }
    } else {
        for (int i = 0; i < 4; i++) {
            Row sum = {};
            for (int k = 0; k < 4; k++)
                sum += static_cast<double>(a[i][k]) * rows[k];
            floats[i] = __builtin_convertvector(sum, FloatRow);
        }
    }
    std::memcpy(out, floats, sizeof(floats));
}
