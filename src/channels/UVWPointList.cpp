#include "channels/UVWPointList.h"

#include "geometry/CoordinateLoops.h"

ZEL_IMPLEMENT_CREATABLE(CUVWPointMethods, CPointMethods)
ZEL_IMPLEMENT_CREATABLE(CUVWPointList, CPointList)

CUVWPointMethods::CUVWPointMethods() : CPointMethods(sizeof(CUVWPoint), FourCC("UVWP"), 3 * sizeof(float)) {}

CUVWPointMethods::~CUVWPointMethods() = default;

void CUVWPointMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) CUVWPoint;
}

CUVWPointList* CUVWPointList::Create(CUVWPointList* model) { return new CUVWPointList(model); }

CUVWPointList::CUVWPointList() : CUVWPointList(nullptr) {}

CUVWPointList::CUVWPointList(const CUVWPointList* model) { Init(new CUVWPointMethods, model); }

CUVWPointList::~CUVWPointList() = default;

CUVWPointList& CUVWPointList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    return *this;
}

unsigned int CUVWPointList::GetChecksum(unsigned int mask) const
{
    unsigned int hash = 0;
    if (mask & 1) {
        const CUVWPoint* points = GetFirst();
        for (int i = 0, count = GetSize(); i < count; i++)
            if (!(points[i].flags & POINT_INVALID))
                hash = (hash + i) * 16 + ChecksumBits(points[i].u) + ChecksumBits(points[i].v) + ChecksumBits(points[i].w);
    }
    return hash + CPointList::GetChecksum(mask);
}
