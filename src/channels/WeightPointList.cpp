#include "channels/WeightPointList.h"

#include "geometry/CoordinateLoops.h"

ZEL_IMPLEMENT_CREATABLE(CWeightPointMethods, CPointMethods)
ZEL_IMPLEMENT_CREATABLE(CWeightPointList, CPointList)

CWeightPointMethods::CWeightPointMethods() : CPointMethods(sizeof(CWeightPoint), FourCC("WGPT"), sizeof(float)) {}

CWeightPointMethods::~CWeightPointMethods() = default;

void CWeightPointMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) CWeightPoint;
}

CWeightPointList* CWeightPointList::Create(CWeightPointList* model) { return new CWeightPointList(model); }

CWeightPointList::CWeightPointList() : CWeightPointList(nullptr) {}

CWeightPointList::CWeightPointList(const CWeightPointList* model) { Init(new CWeightPointMethods, model); }

CWeightPointList::~CWeightPointList() = default;

CWeightPointList& CWeightPointList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    return *this;
}

unsigned int CWeightPointList::GetChecksum(unsigned int mask) const
{
    unsigned int hash = 0;
    if (mask & 1) {
        const CWeightPoint* points = GetFirst();
        for (int i = 0, count = GetSize(); i < count; i++)
            if (!(points[i].flags & POINT_INVALID))
                hash = (hash + i) * 16 + ChecksumBits(points[i].GetWeight());
    }
    return hash + CPointList::GetChecksum(mask);
}
