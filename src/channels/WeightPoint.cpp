#include "channels/WeightPoint.h"

#include "tools/Archive.h"

void CWeightPoint::To4DPoint(C4DPoint& point) const
{
    point.dimension = 1;
    point.values[0] = m_weight;
}

CWeightPoint& CWeightPoint::operator=(const CPt& other)
{
    if (typeid(other) == typeid(CWeightPoint))
        return *this = static_cast<const CWeightPoint&>(other);
    C4DPoint point;
    other.To4DPoint(point);
    CPt::operator=(other);
    return *this = point;
}

CWeightPoint& CWeightPoint::operator=(const C4DPoint& point)
{
    m_weight = point.dimension > 0 ? static_cast<float>(point.values[0]) : 0;
    return *this;
}

void CWeightPoint::Serialize(CXArchive& ar)
{
    CPt::Serialize(ar);
    Move(ar, m_weight);
}
