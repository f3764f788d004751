#include "channels/VCPoint.h"

#include <cstdlib>

#include "tools/Archive.h"

void CVCPoint::To4DPoint(C4DPoint& point) const
{
    point.dimension = 4;
    for (int i = 0; i < 4; i++)
        point.values[i] = ValPtr()[i];
}

CVCPoint& CVCPoint::operator=(const CPt& other)
{
    if (typeid(other) == typeid(CVCPoint))
        return *this = static_cast<const CVCPoint&>(other);
    C4DPoint point;
    other.To4DPoint(point);
    CPt::operator=(other);
    return *this = point;
}

static unsigned char ToByte(double value)
{
    return value >= 255 ? 255 : value > 0 ? static_cast<unsigned char>(value) : 0;    // not a number: 0
}

CVCPoint& CVCPoint::operator=(const C4DPoint& point)
{
    unsigned char bytes[4] = {0, 0, 0, 255};
    for (int i = 0; i < point.dimension && i < 4; i++)
        bytes[i] = ToByte(point.values[i]);
    m_color = CRGBColor(bytes[0], bytes[1], bytes[2], bytes[3]);
    return *this;
}

void CVCPoint::Serialize(CXArchive& ar)
{
    CPt::Serialize(ar);
    m_color.Serialize(ar);
}

bool CVCPoint::DiffersFrom(const CVCPoint& other, int tolerance) const
{
    for (int i = 0; i < 3; i++)
        if (std::abs(ValPtr()[i] - other.ValPtr()[i]) > tolerance)
            return true;
    return false;
}
