#pragma once

#include <cmath>
#include <typeinfo>

#include "geometry/4DPoint.h"
#include "tools/Api.h"

class CXArchive;

/// Bits of a point's flags.
enum _POINT_PROPERTIES : unsigned int {
    POINT_INVALID = 0x2,         ///< no live face uses it; Clean drops it
    POINT_UNSET = 0x4,           ///< channel point without a value
    POINT_COMPUTED = 0x8,        ///< normal that is computed from the faces around, not given
    POINT_BORDER = 0x10,         ///< on an edge of one face
    POINT_INNER_EDGE = 0x20,     ///< on an edge of other than one face
    POINT_BORDER_LINK = 0x40,    ///< off the border, but an edge leads there
    POINT_3D_CORNER = 0x100,
    POINT_2D_CORNER = 0x200,
    POINT_SHARE_UV = 0x1000,
    POINT_VC_FRONTIER = 0x2000,
    POINT_NORMAL_BREAK = 0x4000,
    POINT_SMOOTH_SPLIT = 0x8000,
    POINT_UV_SEAM = 0x10000,
    POINT_SHARE_COPLANAR = 0x20000,
    POINT_SHARE_MATERIALS = 0x40000,    ///< faces of several materials meet here
    POINT_SLICED = 0x1000000,
};

/// Base of every element of a point list: one word of flags, 0 on construction.
class ZEL_API CPt {
public:
    virtual ~CPt() = default;    // inline: a temporary point must cost nothing to destroy
    /// Dimension and coordinates as doubles.
    virtual void To4DPoint(C4DPoint& point) const = 0;
    /// The other point's flags, and in derived classes its coordinates.
    virtual CPt& operator=(const CPt& other)
    {
        flags = other.flags;
        return *this;
    }
    /// Takes the coordinates and leaves the flags; a coordinate that `point` lacks becomes 0.
    virtual CPt& operator=(const C4DPoint& point) = 0;
    /// The flags as one word, then in derived classes the coordinates.
    virtual void Serialize(CXArchive& ar);

    unsigned int GetFlags() const { return flags; }
    void SetFlags(unsigned int value) { flags = value; }
    /// Sets or clears every bit of the mask.
    void SetFlags(unsigned int mask, bool set) { flags = set ? flags | mask : flags & ~mask; }
    void SetFlag(_POINT_PROPERTIES mask, bool set) { SetFlags(static_cast<unsigned int>(mask), set); }
    /// Every bit of the mask.
    bool IsFlagSet(_POINT_PROPERTIES mask) const { return (flags & mask) == mask; }
    /// Any bit of the mask.
    bool IsOneFlagSet(int mask) const { return (flags & static_cast<unsigned int>(mask)) != 0; }

    unsigned int flags = 0;

protected:
    CPt() = default;
    CPt(const CPt&) = default;
};

/// Point of the plane.
template <class T> class ZEL_API C2DTPoint : public CPt {
public:
    C2DTPoint() = default;
    C2DTPoint(T x_, T y_) : x(x_), y(y_) {}
    C2DTPoint(const C2DTPoint&) = default;
    C2DTPoint& operator=(const C2DTPoint&) = default;

    void To4DPoint(C4DPoint& point) const override
    {
        point.dimension = 2;
        point.values[0] = x;
        point.values[1] = y;
    }
    /// From another kind of point: its first two coordinates.
    C2DTPoint& operator=(const CPt& other) override;
    C2DTPoint& operator=(const C4DPoint& point) override
    {
        x = point.dimension > 0 ? static_cast<T>(point.values[0]) : 0;
        y = point.dimension > 1 ? static_cast<T>(point.values[1]) : 0;
        return *this;
    }
    void Serialize(CXArchive& ar) override;

    T* ValPtr() { return &x; }
    const T* ValPtr() const { return &x; }
    /// Coordinate 0 or 1, unchecked.
    T& operator[](int index) { return ValPtr()[index]; }
    T operator[](int index) const { return ValPtr()[index]; }

    T x = 0, y = 0;
};

/// What C3DTPoint and C3DTVector have in common: three coordinates behind the flags.
template <class T> class ZEL_API C3DTCoordinates : public CPt {
public:
    void To4DPoint(C4DPoint& point) const override
    {
        point.dimension = 3;
        point.values[0] = x;
        point.values[1] = y;
        point.values[2] = z;
    }
    /// From another kind of point: its first three coordinates.
    C3DTCoordinates& operator=(const CPt& other) override;
    C3DTCoordinates& operator=(const C4DPoint& point) override
    {
        x = point.dimension > 0 ? static_cast<T>(point.values[0]) : 0;
        y = point.dimension > 1 ? static_cast<T>(point.values[1]) : 0;
        z = point.dimension > 2 ? static_cast<T>(point.values[2]) : 0;
        return *this;
    }
    void Serialize(CXArchive& ar) override;

    T* ValPtr() { return &x; }
    const T* ValPtr() const { return &x; }
    /// Coordinate 0, 1 or 2, unchecked.
    T& operator[](int index) { return ValPtr()[index]; }
    T operator[](int index) const { return ValPtr()[index]; }

    T x = 0, y = 0, z = 0;

protected:
    C3DTCoordinates() = default;
    C3DTCoordinates(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    C3DTCoordinates(const C3DTCoordinates&) = default;
    C3DTCoordinates& operator=(const C3DTCoordinates&) = default;
};

/// Direction or difference. Arithmetic gives values with flags 0.
template <class T> class ZEL_API C3DTVector : public C3DTCoordinates<T> {
public:
    using C3DTCoordinates<T>::x, C3DTCoordinates<T>::y, C3DTCoordinates<T>::z;

    C3DTVector() = default;
    C3DTVector(T x_, T y_, T z_) : C3DTCoordinates<T>(x_, y_, z_) {}
    C3DTVector(const C3DTVector&) = default;
    /// The coordinates of a point or vector of either element type, flags 0.
    template <class U>
    explicit C3DTVector(const C3DTCoordinates<U>& other)
        : C3DTCoordinates<T>(static_cast<T>(other.x), static_cast<T>(other.y), static_cast<T>(other.z))
    {
    }
    C3DTVector& operator=(const C3DTVector&) = default;
    using C3DTCoordinates<T>::operator=;

    /// Square root of the sum of squares, in double.
    double Length() const { return std::sqrt(LengthSquared()); }
    double LengthSquared() const
    {
        const double dx = x, dy = y, dz = z;
        return dx * dx + dy * dy + dz * dz;
    }
    /// Divides by the length, in double, unless that is exactly 0. Returns the length.
    double Normalize()
    {
        const double length = Length();
        if (length != 0)
            *this /= length;
        return length;
    }

    C3DTVector& operator+=(const C3DTVector& v)
    {
        x += v.x, y += v.y, z += v.z;
        return *this;
    }
    C3DTVector& operator-=(const C3DTVector& v)
    {
        x -= v.x, y -= v.y, z -= v.z;
        return *this;
    }
    /// Each component in double, rounded to T.
    C3DTVector& operator*=(double factor)
    {
        x = static_cast<T>(x * factor), y = static_cast<T>(y * factor), z = static_cast<T>(z * factor);
        return *this;
    }
    C3DTVector& operator/=(double divisor)
    {
        x = static_cast<T>(x / divisor), y = static_cast<T>(y / divisor), z = static_cast<T>(z / divisor);
        return *this;
    }
};

/// Position. Arithmetic gives values with flags 0.
template <class T> class ZEL_API C3DTPoint : public C3DTCoordinates<T> {
public:
    using C3DTCoordinates<T>::x, C3DTCoordinates<T>::y, C3DTCoordinates<T>::z;

    C3DTPoint() = default;
    C3DTPoint(T x_, T y_, T z_) : C3DTCoordinates<T>(x_, y_, z_) {}
    C3DTPoint(const C3DTPoint&) = default;
    /// The coordinates of a point or vector of either element type, flags 0.
    template <class U>
    explicit C3DTPoint(const C3DTCoordinates<U>& other)
        : C3DTCoordinates<T>(static_cast<T>(other.x), static_cast<T>(other.y), static_cast<T>(other.z))
    {
    }
    C3DTPoint& operator=(const C3DTPoint&) = default;
    using C3DTCoordinates<T>::operator=;

    C3DTPoint& operator+=(const C3DTVector<T>& v)
    {
        x += v.x, y += v.y, z += v.z;
        return *this;
    }
    C3DTPoint& operator-=(const C3DTVector<T>& v)
    {
        x -= v.x, y -= v.y, z -= v.z;
        return *this;
    }
};

// Operators work in the element type except where a double takes part, and allocate nothing.

template <class T> C3DTVector<T> operator-(const C3DTPoint<T>& a, const C3DTPoint<T>& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
template <class T> C3DTPoint<T> operator+(const C3DTPoint<T>& p, const C3DTVector<T>& v) { return {p.x + v.x, p.y + v.y, p.z + v.z}; }
template <class T> C3DTPoint<T> operator-(const C3DTPoint<T>& p, const C3DTVector<T>& v) { return {p.x - v.x, p.y - v.y, p.z - v.z}; }
template <class T> C3DTVector<T> operator+(const C3DTVector<T>& a, const C3DTVector<T>& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
template <class T> C3DTVector<T> operator-(const C3DTVector<T>& a, const C3DTVector<T>& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
template <class T> C3DTVector<T> operator-(const C3DTVector<T>& v) { return {-v.x, -v.y, -v.z}; }
/// Each component in double, rounded to T.
template <class T> C3DTVector<T> operator*(const C3DTVector<T>& v, double factor)
{
    return {static_cast<T>(v.x * factor), static_cast<T>(v.y * factor), static_cast<T>(v.z * factor)};
}
template <class T> C3DTVector<T> operator/(const C3DTVector<T>& v, double divisor)
{
    return {static_cast<T>(v.x / divisor), static_cast<T>(v.y / divisor), static_cast<T>(v.z / divisor)};
}
/// Coordinates exactly equal; flags do not count.
template <class T> bool operator==(const C3DTPoint<T>& a, const C3DTPoint<T>& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
template <class T> bool operator==(const C3DTVector<T>& a, const C3DTVector<T>& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
/// (a.y b.z - a.z b.y, a.z b.x - a.x b.z, a.x b.y - a.y b.x).
template <class T> C3DTVector<T> Cross(const C3DTVector<T>& a, const C3DTVector<T>& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
/// In double.
template <class T> double Dot(const C3DTVector<T>& a, const C3DTVector<T>& b)
{
    return static_cast<double>(a.x) * b.x + static_cast<double>(a.y) * b.y + static_cast<double>(a.z) * b.z;
}
/// (1/x, 1/y, 1/z), divided in double; a 0 gives an infinity.
template <class T> C3DTVector<T> Reciprocal(const C3DTVector<T>& v)
{
    return {static_cast<T>(1.0 / v.x), static_cast<T>(1.0 / v.y), static_cast<T>(1.0 / v.z)};
}

template <class T> C2DTPoint<T>& C2DTPoint<T>::operator=(const CPt& other)
{
    if (typeid(other) == typeid(C2DTPoint))
        return *this = static_cast<const C2DTPoint&>(other);
    C4DPoint point;
    other.To4DPoint(point);
    CPt::operator=(other);
    return *this = point;
}

template <class T> C3DTCoordinates<T>& C3DTCoordinates<T>::operator=(const CPt& other)
{
    if (typeid(other) == typeid(C3DTPoint<T>) || typeid(other) == typeid(C3DTVector<T>))
        return *this = static_cast<const C3DTCoordinates&>(other);
    C4DPoint point;
    other.To4DPoint(point);
    CPt::operator=(other);
    return *this = point;
}

extern template class C2DTPoint<float>;
extern template class C3DTCoordinates<float>;
extern template class C3DTCoordinates<double>;
extern template class C3DTPoint<float>;
extern template class C3DTPoint<double>;
extern template class C3DTVector<float>;
extern template class C3DTVector<double>;

static_assert(sizeof(C2DTPoint<float>) == 24 || sizeof(void*) != 8);
static_assert(sizeof(C3DTPoint<float>) == 24 && sizeof(C3DTVector<float>) == 24, "meshes come by the million points");
