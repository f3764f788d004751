#include "geometry/4DVector.h"

#include "tools/Archive.h"

C4DVector& C4DVector::operator=(const C3DTVector<float>& v) { return *this = C4DVector(v.x, v.y, v.z); }

void C4DVector::Serialize(CXArchive& ar)
{
    for (double* value : {&x, &y, &z, &w})
        Move(ar, *value);
}

void C4DVector::InitFromPoints(const C3DTPoint<float>& a, const C3DTPoint<float>& b) { *this = b - a; }

void C4DVector::InitFromPoint(const C3DTPoint<float>& point) { *this = C4DVector(point.x, point.y, point.z); }

void C4DVector::Normalize()
{
    const double length = Length();
    if (length == 0)
        return;
    x /= length;
    y /= length;
    z /= length;
}

void C4DVector::Normal(const C4DVector& a, const C4DVector& b)
{
    const double nx = a.y * b.z - a.z * b.y, ny = a.z * b.x - a.x * b.z, nz = a.x * b.y - a.y * b.x;
    x = nx;
    y = ny;
    z = nz;
}

void C4DVector::GetPlaneVector(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
{
    constexpr double ZERO = 1e-15;
    Normal(C4DVector(a, b), C4DVector(a, c));
    if (std::fabs(x) < ZERO && std::fabs(y) < ZERO && std::fabs(z) < ZERO)
        x = 1, y = 0, z = 0;
    else
        Normalize();
    w = -(a.x * x + a.y * y + a.z * z);
}
