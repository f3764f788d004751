#pragma once

#include "geometry/Point.h"

/// Texture coordinate: u, v, w behind the flags.
class ZEL_API CUVWPoint : public CPt {
public:
    CUVWPoint() = default;
    CUVWPoint(float u_, float v_, float w_) : u(u_), v(v_), w(w_) {}
    CUVWPoint(const CUVWPoint&) = default;
    CUVWPoint& operator=(const CUVWPoint&) = default;

    void To4DPoint(C4DPoint& point) const override;    // dimension 3
    /// Coordinates and flags of another texture coordinate; of another kind of element, its first three coordinates.
    CUVWPoint& operator=(const CPt& other) override;
    CUVWPoint& operator=(const C4DPoint& point) override;
    /// Flags, u, v, w.
    void Serialize(CXArchive& ar) override;

    /// The two coordinates in use: (u, v) when w is 0, else (u, w) when v is 0, else (v, w).
    void GetUVCoordinate(float& a, float& b) const
    {
        a = w == 0 || v == 0 ? u : v;
        b = w == 0 ? v : w;
    }

    float* ValPtr() { return &u; }
    const float* ValPtr() const { return &u; }
    /// Coordinate 0, 1 or 2, unchecked.
    float& operator[](int index) { return ValPtr()[index]; }
    float operator[](int index) const { return ValPtr()[index]; }
    operator C3DTVector<float>() const { return {u, v, w}; }

    CUVWPoint& operator+=(const CUVWPoint& p)
    {
        u += p.u, v += p.v, w += p.w;
        return *this;
    }
    CUVWPoint& operator-=(const CUVWPoint& p)
    {
        u -= p.u, v -= p.v, w -= p.w;
        return *this;
    }
    CUVWPoint& operator*=(const float& factor)
    {
        const float f = factor;    // may be a coordinate of this point
        u *= f, v *= f, w *= f;
        return *this;
    }

    float u = 0, v = 0, w = 0;
};

/// Coordinates exactly equal; flags do not count.
inline bool operator==(const CUVWPoint& a, const CUVWPoint& b) { return a.u == b.u && a.v == b.v && a.w == b.w; }
inline CUVWPoint operator+(const CUVWPoint& a, const CUVWPoint& b) { return {a.u + b.u, a.v + b.v, a.w + b.w}; }
inline CUVWPoint operator-(const CUVWPoint& a, const CUVWPoint& b) { return {a.u - b.u, a.v - b.v, a.w - b.w}; }
/// Squared distance over u, v and w, in float.
inline float DistanceSquared(const CUVWPoint& a, const CUVWPoint& b)
{
    const float du = a.u - b.u, dv = a.v - b.v, dw = a.w - b.w;
    return du * du + dv * dv + dw * dw;
}

static_assert(sizeof(CUVWPoint) == 24 || sizeof(void*) != 8);
