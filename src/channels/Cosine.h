#pragma once

#include <algorithm>
#include <cmath>

#include "geometry/Point.h"

/// Lengths and denominators below this are none.
constexpr double NO_LENGTH = 1e-15;

/// Of the angle between two vectors; 0 when one of them has no length.
inline double CosineBetween(const C3DTVector<float>& a, const C3DTVector<float>& b)
{
    const double denominator = std::sqrt(a.LengthSquared() * b.LengthSquared());
    return denominator < NO_LENGTH ? 0 : std::clamp(Dot(a, b) / denominator, -1.0, 1.0);
}

/// Whether the length is 1 as far as floats can tell. To divide such a vector by its length again moves its last bits.
inline bool IsNearlyUnit(const C3DTVector<float>& v)
{
    constexpr double OFF_UNIT = 1e-6;    // of the squared length: twice what rounding to float leaves, and more
    return std::abs(v.LengthSquared() - 1) < OFF_UNIT;
}

/// Makes a unit vector of one that has a length.
inline void NormalizeSum(C3DTVector<float>& sum)
{
    const double length = sum.Length();
    if (length > NO_LENGTH)
        sum /= length;
}

/// Whether vectors lie within an angle, told by its cosine: exactly !(cosine > CosineBetween(a, b)).
class CAngleTest {
public:
    explicit CAngleTest(double cosine) : m_cosine(cosine) {}

    double GetCosine() const { return m_cosine; }
    bool IsWithin(const C3DTVector<float>& a, const C3DTVector<float>& b) const
    {
        // Unit vectors, which most are, mostly need neither root nor division.
        const double excess = Dot(a, b) - m_cosine;
        if (std::abs(excess) > DOUBT && IsNearlyUnit(a) && IsNearlyUnit(b))
            return excess > 0;
        return !(m_cosine > CosineBetween(a, b));
    }

private:
    static constexpr double DOUBT = 4e-6;    ///< more than what IsNearlyUnit leaves open

    double m_cosine;
};
