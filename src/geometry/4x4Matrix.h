#pragma once

#include "geometry/Point.h"

class CQuaternion;
class CXArchive;

/// Transform of points taken as columns: p' = M p, so the translation is the last column and `a * b` applies b first.
///
/// Values stand as m[row][column], row after row. The bottom row is (0, 0, 0, 1); point transforms neither read it nor
/// divide by w.
template <class T> class ZEL_API C4x4TMatrix {
public:
    /// Identity.
    C4x4TMatrix();
    C4x4TMatrix(const C4x4TMatrix&) = default;

    /// The 16 values, row after row.
    virtual void Serialize(CXArchive& ar);
    virtual C4x4TMatrix& operator=(const C4x4TMatrix& other);

    void SetIdentity();
    /// Every diagonal value within 0.005 of 1, every other within 0.005 of 0.
    bool IsIdentity() const;
    /// Inverse of an affine matrix; its bottom row is (0, 0, 0, 1). `dst` may be `src`.
    /// False, with `dst` untouched, when the 3x3 block is singular: its determinant is 0, or below 1e-15 of the sum of the
    /// absolute values of its six terms.
    static bool GetInverse(const C4x4TMatrix& src, C4x4TMatrix& dst);

    /// m = m * diag(x, y, z, 1).
    void Scale(double x, double y, double z);
    /// Lengths of the images of the three unit axes.
    void GetScale(C3DTVector<float>& scale) const;
    /// Divides the columns by the lengths that GetScale gives, unless the sum of their squares is within 0.005 of 1.
    void RemoveScale();

    C3DTVector<T> GetTranslation() const { return {m[0][3], m[1][3], m[2][3]}; }
    void SetTranslation(T x, T y, T z)
    {
        m[0][3] = x;
        m[1][3] = y;
        m[2][3] = z;
    }

    /// Rotation block of a quaternion of any length; last row and column of the identity.
    ///
    /// The block is the transpose of the usual one for columns. CQuaternion::operator= is the way back.
    void FromQuaternion(const CQuaternion& q);

    C4x4TMatrix operator*(const C4x4TMatrix& right) const;
    /// *this = *this * right.
    C4x4TMatrix& operator*=(const C4x4TMatrix& right);
    /// All 16 values equal.
    bool operator==(const C4x4TMatrix& other) const;

    T* ValPtr() { return m[0]; }
    const T* ValPtr() const { return m[0]; }
    T* operator[](int row) { return m[row]; }
    const T* operator[](int row) const { return m[row]; }

    T m[4][4];
};

extern template class C4x4TMatrix<float>;

/// Image of a point, computed in the wider of the two element types; flags 0.
template <class T, class U> C3DTPoint<U> operator*(const C4x4TMatrix<T>& a, const C3DTPoint<U>& p)
{
    return {static_cast<U>(a.m[0][0] * p.x + a.m[0][1] * p.y + a.m[0][2] * p.z + a.m[0][3]),
            static_cast<U>(a.m[1][0] * p.x + a.m[1][1] * p.y + a.m[1][2] * p.z + a.m[1][3]),
            static_cast<U>(a.m[2][0] * p.x + a.m[2][1] * p.y + a.m[2][2] * p.z + a.m[2][3])};
}

/// Image of a vector: the same without the translation; not renormalised.
template <class T, class U> C3DTVector<U> operator*(const C4x4TMatrix<T>& a, const C3DTVector<U>& v)
{
    return {static_cast<U>(a.m[0][0] * v.x + a.m[0][1] * v.y + a.m[0][2] * v.z),
            static_cast<U>(a.m[1][0] * v.x + a.m[1][1] * v.y + a.m[1][2] * v.z),
            static_cast<U>(a.m[2][0] * v.x + a.m[2][1] * v.y + a.m[2][2] * v.z)};
}
