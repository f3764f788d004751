#include "geometry/NoisyWave.h"

#include <cmath>
#include <numbers>

C3DTPoint<float> NoisyWaveFunc(const C3DTPoint<float>& p, const C3DTPoint<float>& origin, const C3DTVector<float>& dir, double amplitude,
                               double frequency, double phase)
{
    const double height = dir.Length() * amplitude;
    C3DTPoint<float> result;
    for (int i = 0; i < 3; i++) {
        if (dir[i] == 0)
            continue;
        const double way = static_cast<double>(p[i]) - origin[i];
        const double turns = way * frequency / dir[i] + phase;
        result[(i + 2) % 3] = static_cast<float>(std::sin(turns * 2 * std::numbers::pi) * height);
    }
    return result;
}
