#include "channels/VCPointList.h"

ZEL_IMPLEMENT_CREATABLE(CVCPointMethods, CPointMethods)
ZEL_IMPLEMENT_CREATABLE(CVCPointList, CPointList)

CVCPointMethods::CVCPointMethods() : CPointMethods(sizeof(CVCPoint), FourCC("VCPT"), sizeof(CRGBColor)) {}

CVCPointMethods::~CVCPointMethods() = default;

void CVCPointMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) CVCPoint;
}

CVCPointList* CVCPointList::Create(CVCPointList* model) { return new CVCPointList(model); }

CVCPointList::CVCPointList() : CVCPointList(nullptr) {}

CVCPointList::CVCPointList(const CVCPointList* model) { Init(new CVCPointMethods, model); }

CVCPointList::~CVCPointList() = default;

CVCPointList& CVCPointList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    return *this;
}

unsigned int CVCPointList::GetChecksum(unsigned int mask) const
{
    unsigned int hash = 0;
    if (mask & 1) {
        const CVCPoint* points = GetFirst();
        for (int i = 0, count = GetSize(); i < count; i++)
            if (!(points[i].flags & POINT_INVALID))
                hash = (hash + i + points[i][0] + points[i][1] + points[i][2] + points[i][3]) * 16;
    }
    return hash + CPointList::GetChecksum(mask);
}
