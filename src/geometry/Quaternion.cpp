#include "geometry/Quaternion.h"

#include <cmath>
#include <numbers>

CQuaternion::CQuaternion(double heading, double pitch, double bank)
{
    const C3DTVector<float> xAxis(1, 0, 0), yAxis(0, 1, 0), zAxis(0, 0, 1);
    *this = CQuaternion(zAxis, bank) * CQuaternion(xAxis, pitch) * CQuaternion(yAxis, heading);
}

CQuaternion& CQuaternion::operator=(const C3DTVector<float>& v) { return *this = CQuaternion(v.x, v.y, v.z, 0); }

CQuaternion& CQuaternion::operator=(const C4x4TMatrix<float>& matrix)
{
    C4x4TMatrix<float> rotation = matrix;
    rotation.SetTranslation(0, 0, 0);
    rotation.m[3][0] = rotation.m[3][1] = rotation.m[3][2] = 0;
    rotation.m[3][3] = 1;
    rotation.RemoveScale();
    const auto m = [&](int i, int j) { return static_cast<double>(rotation.m[i][j]); };

    const double trace = m(0, 0) + m(1, 1) + m(2, 2);
    if (trace > 0) {
        const double s = std::sqrt(trace + 1), f = 0.5 / s;
        w = static_cast<float>(s / 2);
        x = static_cast<float>((m(1, 2) - m(2, 1)) * f);
        y = static_cast<float>((m(2, 0) - m(0, 2)) * f);
        z = static_cast<float>((m(0, 1) - m(1, 0)) * f);
        return *this;
    }

    // More than a third of a turn: w is small, so everything is taken from the largest component.
    int i = m(1, 1) > m(0, 0) ? 1 : 0;
    if (m(2, 2) > m(i, i))
        i = 2;
    const int j = (i + 1) % 3, k = (j + 1) % 3;
    double s = std::sqrt(m(i, i) - (m(j, j) + m(k, k)) + 1);
    CQuaternion& q = *this;
    q[i] = static_cast<float>(s / 2);
    if (s != 0)
        s = 0.5 / s;
    q[j] = static_cast<float>((m(i, j) + m(j, i)) * s);
    q[k] = static_cast<float>((m(i, k) + m(k, i)) * s);
    w = static_cast<float>((m(j, k) - m(k, j)) * s);
    return *this;
}

bool CQuaternion::operator==(const CQuaternion& other) const
{
    for (int i = 0; i < 4; i++)
        if (const float difference = (*this)[i] - other[i]; !(std::fabs(static_cast<double>(difference)) <= 1e-6))
            return false;
    return true;
}

CQuaternion CQuaternion::operator*(const CQuaternion& other) const
{
    const double ax = x, ay = y, az = z, aw = w, bx = other.x, by = other.y, bz = other.z, bw = other.w;
    return {static_cast<float>(aw * bx + ax * bw + ay * bz - az * by), static_cast<float>(aw * by - ax * bz + ay * bw + az * bx),
            static_cast<float>(aw * bz + ax * by - ay * bx + az * bw), static_cast<float>(aw * bw - ax * bx - ay * by - az * bz)};
}

CQuaternion CQuaternion::operator*(double factor) const
{
    return {static_cast<float>(x * factor), static_cast<float>(y * factor), static_cast<float>(z * factor), static_cast<float>(w * factor)};
}

CQuaternion CQuaternion::operator/(double divisor) const
{
    return {static_cast<float>(x / divisor), static_cast<float>(y / divisor), static_cast<float>(z / divisor),
            static_cast<float>(w / divisor)};
}

CQuaternion CQuaternion::operator+(const CQuaternion& other) const { return {x + other.x, y + other.y, z + other.z, w + other.w}; }

double CQuaternion::MagnitudeSquared() const
{
    const double dx = x, dy = y, dz = z, dw = w;
    return dx * dx + dy * dy + dz * dz + dw * dw;
}

void CQuaternion::SetAxisAngle(const C3DTVector<float>& axis, double angle)
{
    const double length = axis.Length();
    const double s = std::sin(angle / 2) / (length > 1e-15 ? length : 1);
    x = static_cast<float>(axis.x * s);
    y = static_cast<float>(axis.y * s);
    z = static_cast<float>(axis.z * s);
    w = static_cast<float>(std::cos(angle / 2));
}

bool CQuaternion::GetAxisAngle(C3DTVector<float>& axis, double& angle) const
{
    constexpr double ZERO = 1e-15;
    const CQuaternion unit = *this / Magnitude();
    const bool hasAxis = !(std::fabs(unit.x) < ZERO && std::fabs(unit.y) < ZERO && std::fabs(unit.z) < ZERO);

    // Asked this way round, a zero quaternion and a w rounded to more than 1 have no axis either.
    const float s = std::sqrt(1 - unit.w * unit.w);
    if (!hasAxis || !(s >= 1e-6)) {
        angle = 0;
        axis = C3DTVector<float>(1, 0, 0);
        return false;
    }
    angle = 2 * std::acos(static_cast<double>(unit.w));
    axis = C3DTVector<float>(unit.x, unit.y, unit.z) / s;
    return true;
}

void CQuaternion::GetHPBAngles(double& heading, double& pitch, double& bank) const
{
    const double dx = x, dy = y, dz = z, dw = w;
    const double xx = dx * dx, yy = dy * dy, zz = dz * dz, ww = dw * dw;
    const double unit = xx + yy + zz + ww, test = dy * dz + dx * dw;
    if (std::fabs(test) > 0.499 * unit) {
        const double side = test > 0 ? 1 : -1;
        heading = side * 2 * std::atan2(dz, dw);
        pitch = side * std::numbers::pi / 2;
        bank = 0;
        return;
    }
    heading = std::atan2(2 * dy * dw - 2 * dz * dx, zz - yy - xx + ww);
    pitch = std::asin(2 * test / unit);
    bank = std::atan2(2 * dz * dw - 2 * dy * dx, yy - zz - xx + ww);
}

bool CQuaternion::IsValid() const
{
    C3DTVector<float> axis;
    double angle;
    return GetAxisAngle(axis, angle);
}

CQuaternion CQuaternion::Slerp(const CQuaternion& a, const CQuaternion& b, float t)
{
    const float cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    const float absolute = std::fabs(cosine);
    double s1 = 1 - static_cast<double>(t), s2 = t;
    if (1 - absolute > 1e-6f) {
        const double angle = std::acos(static_cast<double>(absolute)), sine = std::sin(angle);
        s1 = std::sin(s1 * angle) / sine;
        s2 = std::sin(s2 * angle) / sine;
    }
    if (cosine < 0)
        s2 = -s2;
    return {static_cast<float>(s1 * a.x + s2 * b.x), static_cast<float>(s1 * a.y + s2 * b.y), static_cast<float>(s1 * a.z + s2 * b.z),
            static_cast<float>(s1 * a.w + s2 * b.w)};
}
