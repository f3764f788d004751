#pragma once

#include "geometry/Point.h"

/// Wave that runs along `dir`, one term an axis: sin(((p - origin) frequency / dir + phase) 2 pi) |dir| amplitude, and 0
/// where `dir` is 0. The axes rotate: x gets the term of y, y that of z, z that of x. Flags 0.
///
/// @param phase  in turns
ZEL_API C3DTPoint<float> NoisyWaveFunc(const C3DTPoint<float>& p, const C3DTPoint<float>& origin, const C3DTVector<float>& dir,
                                       double amplitude, double frequency, double phase);
