#include "channels/UVWPoint.h"

#include "tools/Archive.h"

void CUVWPoint::To4DPoint(C4DPoint& point) const
{
    point.dimension = 3;
    point.values[0] = u;
    point.values[1] = v;
    point.values[2] = w;
}

CUVWPoint& CUVWPoint::operator=(const CPt& other)
{
    if (typeid(other) == typeid(CUVWPoint))
        return *this = static_cast<const CUVWPoint&>(other);
    C4DPoint point;
    other.To4DPoint(point);
    CPt::operator=(other);
    return *this = point;
}

CUVWPoint& CUVWPoint::operator=(const C4DPoint& point)
{
    for (int i = 0; i < 3; i++)
        ValPtr()[i] = i < point.dimension ? static_cast<float>(point.values[i]) : 0;
    return *this;
}

void CUVWPoint::Serialize(CXArchive& ar)
{
    CPt::Serialize(ar);
    Move(ar, u);
    Move(ar, v);
    Move(ar, w);
}
