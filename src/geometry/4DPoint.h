#pragma once

#include "tools/Api.h"

/// Neutral form of any list element: a dimension of 0 to 4 and that many doubles.
///
/// Only the first `dimension` values mean something. Colour bytes stand here as numbers 0 to 255.
class ZEL_API C4DPoint {
public:
    static constexpr int MAX_DIMENSION = 4;

    /// Dimension 0, all values 0.
    C4DPoint() : dimension(0), values{} {}
    /// The values are zeroed when `clear` is not 0, and left unset otherwise.
    C4DPoint(int n, int clear) : dimension(Clamp(n))
    {
        if (clear)
            Init(n);
    }
    /// Sets the dimension and zeroes the values: those beyond it too, so that a wider operand finds zeros there.
    void Init(int n)
    {
        dimension = Clamp(n);
        for (double& value : values)
            value = 0;
    }

    double* ValPtr() { return values; }
    const double* ValPtr() const { return values; }
    double& operator[](int index) { return values[index]; }
    double operator[](int index) const { return values[index]; }

    // Componentwise over the dimension of the left operand, which these leave as it is.
    C4DPoint& operator+=(const C4DPoint& other)
    {
        return Apply(other, [](double a, double b) { return a + b; });
    }
    C4DPoint& operator-=(const C4DPoint& other)
    {
        return Apply(other, [](double a, double b) { return a - b; });
    }
    C4DPoint& operator*=(const C4DPoint& other)
    {
        return Apply(other, [](double a, double b) { return a * b; });
    }
    C4DPoint& operator/=(const C4DPoint& other)
    {
        return Apply(other, [](double a, double b) { return a / b; });
    }
    C4DPoint& operator*=(double factor)
    {
        return Apply(*this, [=](double a, double) { return a * factor; });
    }
    C4DPoint& operator/=(double divisor)
    {
        return Apply(*this, [=](double a, double) { return a / divisor; });
    }

    // The same values, under the dimension of the right operand; what the left operand lacks is 0.
    friend C4DPoint operator+(const C4DPoint& a, const C4DPoint& b) { return Shaped(C4DPoint(a) += b, b); }
    friend C4DPoint operator-(const C4DPoint& a, const C4DPoint& b) { return Shaped(C4DPoint(a) -= b, b); }
    friend C4DPoint operator*(const C4DPoint& a, const C4DPoint& b) { return Shaped(C4DPoint(a) *= b, b); }
    friend C4DPoint operator/(const C4DPoint& a, const C4DPoint& b) { return Shaped(C4DPoint(a) /= b, b); }
    friend C4DPoint operator*(C4DPoint a, double factor) { return a *= factor; }
    friend C4DPoint operator/(C4DPoint a, double divisor) { return a /= divisor; }

    int dimension;
    double values[MAX_DIMENSION];

private:
    static int Clamp(int n) { return n < 0 ? 0 : n < MAX_DIMENSION ? n : MAX_DIMENSION; }
    template <class F> C4DPoint& Apply(const C4DPoint& other, F operation)
    {
        for (int i = 0; i < dimension; i++)
            values[i] = operation(values[i], other.values[i]);
        return *this;
    }
    static C4DPoint Shaped(const C4DPoint& result, const C4DPoint& model)
    {
        C4DPoint shaped;
        shaped.dimension = model.dimension;
        for (int i = 0; i < result.dimension; i++)
            shaped.values[i] = result.values[i];
        return shaped;
    }
};
