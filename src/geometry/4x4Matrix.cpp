#include "geometry/4x4Matrix.h"

#include <algorithm>
#include <cmath>

#include "geometry/MatrixProduct.h"
#include "geometry/Quaternion.h"
#include "tools/Archive.h"

template <class T> C4x4TMatrix<T>::C4x4TMatrix() { SetIdentity(); }

template <class T> void C4x4TMatrix<T>::Serialize(CXArchive& ar) { ar.MoveNumbers(ValPtr(), 16); }

template <class T> C4x4TMatrix<T>& C4x4TMatrix<T>::operator=(const C4x4TMatrix& other)
{
    std::copy_n(other.ValPtr(), 16, ValPtr());
    return *this;
}

template <class T> void C4x4TMatrix<T>::SetIdentity()
{
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            m[i][j] = i == j;
}

template <class T> bool C4x4TMatrix<T>::IsIdentity() const
{
    constexpr double TOLERANCE = 0.005;
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++) {
            const double model = i == j;
            const double value = m[i][j];
            if (!(value >= model - TOLERANCE && value <= model + TOLERANCE))
                return false;
        }
    return true;
}

template <class T> bool C4x4TMatrix<T>::GetInverse(const C4x4TMatrix& src, C4x4TMatrix& dst)
{
    double a[3][3];
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            a[i][j] = src.m[i][j];

    // Terms of either sign apart: what is left of them against what they were tells how much cancelled out.
    double positive = 0, negative = 0;
    for (const double term : {a[0][0] * a[1][1] * a[2][2], a[0][1] * a[1][2] * a[2][0], a[0][2] * a[1][0] * a[2][1],
                              -a[0][2] * a[1][1] * a[2][0], -a[0][1] * a[1][0] * a[2][2], -a[0][0] * a[1][2] * a[2][1]})
        (term >= 0 ? positive : negative) += term;
    const double determinant = positive + negative;
    if (determinant == 0 || !(std::fabs(determinant / (positive - negative)) >= 1e-15))
        return false;    // values that are no numbers come here too

    double inverse[3][4];
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++) {
            const int r0 = (j + 1) % 3, r1 = (j + 2) % 3, c0 = (i + 1) % 3, c1 = (i + 2) % 3;
            inverse[i][j] = (a[r0][c0] * a[r1][c1] - a[r0][c1] * a[r1][c0]) / determinant;
        }
    for (auto& row : inverse)
        row[3] = -(row[0] * src.m[0][3] + row[1] * src.m[1][3] + row[2] * src.m[2][3]);

    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 4; j++)
            dst.m[i][j] = static_cast<T>(inverse[i][j]);
    for (int j = 0; j < 4; j++)
        dst.m[3][j] = j == 3;
    return true;
}

template <class T> void C4x4TMatrix<T>::Scale(double x, double y, double z)
{
    for (auto& row : m) {
        row[0] = static_cast<T>(row[0] * x);
        row[1] = static_cast<T>(row[1] * y);
        row[2] = static_cast<T>(row[2] * z);
    }
}

template <class T> void C4x4TMatrix<T>::GetScale(C3DTVector<float>& scale) const
{
    // The image of an axis less that of the origin is a column; taken as such, a far translation costs no digits.
    for (int j = 0; j < 3; j++)
        scale[j] = static_cast<float>(C3DTVector<double>(m[0][j], m[1][j], m[2][j]).Length());
}

template <class T> void C4x4TMatrix<T>::RemoveScale()
{
    C3DTVector<float> scale;
    GetScale(scale);
    if (!(std::fabs(scale.LengthSquared() - 1) < 0.005))
        Scale(1.0 / scale.x, 1.0 / scale.y, 1.0 / scale.z);
}

template <class T> void C4x4TMatrix<T>::FromQuaternion(const CQuaternion& q)
{
    const double xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z, ww = q.w * q.w;
    const double xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
    const double wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
    const double n = xx + yy + zz + ww;
    const double block[3][3] = {{xx - yy - zz + ww, 2 * (wz + xy), 2 * (xz - wy)},
                                {2 * (xy - wz), yy - xx - zz + ww, 2 * (wx + yz)},
                                {2 * (xz + wy), 2 * (yz - wx), zz - xx - yy + ww}};
    SetIdentity();
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            m[i][j] = static_cast<T>(block[i][j] / n);
}

template <class T> C4x4TMatrix<T> C4x4TMatrix<T>::operator*(const C4x4TMatrix& right) const
{
    C4x4TMatrix product;
    MultiplyMatrices(m, right.m, product.m);
    return product;
}

template <class T> C4x4TMatrix<T>& C4x4TMatrix<T>::operator*=(const C4x4TMatrix& right)
{
    MultiplyMatrices(m, right.m, m);
    return *this;
}

template <class T> bool C4x4TMatrix<T>::operator==(const C4x4TMatrix& other) const
{
    return std::equal(ValPtr(), ValPtr() + 16, other.ValPtr());
}

template class C4x4TMatrix<float>;
