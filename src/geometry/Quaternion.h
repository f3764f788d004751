#pragma once

#include "geometry/4x4Matrix.h"

/// Quaternion x i + y j + z k + w, four floats in that order. The default is (0, 0, 0, 1), no rotation.
///
/// Angles in radians. In `a * b` the rotation b applies first; C4x4TMatrix::FromQuaternion gives the transposed block,
/// so there the matrices multiply the other way round.
class ZEL_API CQuaternion {
public:
    CQuaternion() = default;
    CQuaternion(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    explicit CQuaternion(const float* values) : x(values[0]), y(values[1]), z(values[2]), w(values[3]) {}
    CQuaternion(const C3DTVector<float>& axis, double angle) { SetAxisAngle(axis, angle); }
    /// Heading about Y first, then pitch about X, then bank about Z.
    CQuaternion(double heading, double pitch, double bank);

    /// (v.x, v.y, v.z, 0).
    CQuaternion& operator=(const C3DTVector<float>& v);
    /// Rotation of a matrix, whose scale is taken off first: the inverse of C4x4TMatrix::FromQuaternion.
    CQuaternion& operator=(const C4x4TMatrix<float>& matrix);

    /// Every component within 1e-6. A quaternion and its negative differ.
    bool operator==(const CQuaternion& other) const;

    /// Hamilton product, i j = k.
    CQuaternion operator*(const CQuaternion& other) const;
    CQuaternion& operator*=(const CQuaternion& other) { return *this = *this * other; }
    CQuaternion operator*(double factor) const;
    CQuaternion operator/(double divisor) const;
    CQuaternion operator+(const CQuaternion& other) const;

    double Magnitude() const { return std::sqrt(MagnitudeSquared()); }
    double MagnitudeSquared() const;
    /// Divides by the magnitude; of a zero quaternion nothing usable is left.
    void Normalize() { *this = *this / Magnitude(); }

    /// *this = rotation * *this.
    void Rotate(const CQuaternion& rotation) { *this = rotation * *this; }
    void Rotate(const C3DTVector<float>& axis, double angle) { Rotate(CQuaternion(axis, angle)); }

    /// The axis need not have length 1; one of 1e-15 or shorter is used as it is.
    void SetAxisAngle(const C3DTVector<float>& axis, double angle);
    /// False, with angle 0 and axis (1, 0, 0), when there is no rotation to speak of. The angle is 0 to 2 pi.
    bool GetAxisAngle(C3DTVector<float>& axis, double& angle) const;
    /// Angles of the constructor with the same arguments. With a pitch of +-pi/2 the bank is 0.
    void GetHPBAngles(double& heading, double& pitch, double& bank) const;
    /// True when there is an axis to turn about: false also for (0, 0, 0, 1).
    bool IsValid() const;

    /// From a (t = 0) to b (t = 1) the short way round; the result is not normalised.
    static CQuaternion Slerp(const CQuaternion& a, const CQuaternion& b, float t);

    float* ValPtr() { return &x; }
    const float* ValPtr() const { return &x; }
    float& operator[](int index) { return ValPtr()[index]; }
    float operator[](int index) const { return ValPtr()[index]; }

    float x = 0, y = 0, z = 0, w = 1;
};
