#pragma once

#include "geometry/Point.h"

class CXArchive;

/// Homogeneous vector, or a plane: (x, y, z) its unit normal, and w so that x X + y Y + z Z + w = 0 on it. All in double.
class ZEL_API C4DVector {
public:
    /// Sets nothing.
    C4DVector() {}
    /// w = 1.
    C4DVector(double x_, double y_, double z_) : x(x_), y(y_), z(z_), w(1) {}
    C4DVector(double x_, double y_, double z_, double w_) : x(x_), y(y_), z(z_), w(w_) {}
    /// b - a, subtracted in float; w = 1.
    C4DVector(const C3DTPoint<float>& a, const C3DTPoint<float>& b) { InitFromPoints(a, b); }
    C4DVector(const C4DVector&) = default;
    C4DVector& operator=(const C4DVector&) = default;
    /// The coordinates; w = 1.
    C4DVector& operator=(const C3DTVector<float>& v);

    /// x, y, z, w.
    virtual void Serialize(CXArchive& ar);

    void InitFromPoints(const C3DTPoint<float>& a, const C3DTPoint<float>& b);
    void InitFromPoint(const C3DTPoint<float>& point);
    /// Length of (x, y, z).
    double Length() const { return std::sqrt(x * x + y * y + z * z); }
    /// Divides (x, y, z) by its length unless that is exactly 0; w stays.
    void Normalize();
    /// (x, y, z) = a cross b; w stays.
    void Normal(const C4DVector& a, const C4DVector& b);
    /// Four-term dot product.
    double operator*(const C4DVector& other) const { return x * other.x + y * other.y + z * other.z + w * other.w; }
    /// Plane through three points, normal (b - a) cross (c - a). Points in a line give the normal (1, 0, 0).
    void GetPlaneVector(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c);

    double x, y, z, w;
};
