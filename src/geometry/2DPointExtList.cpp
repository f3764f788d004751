#include "geometry/2DPointExtList.h"

ZEL_IMPLEMENT_CREATABLE(C2DPointExtMethods, C2DPointMethods)
ZEL_IMPLEMENT_CREATABLE(C2DPointExtList, C2DPointList)

C2DPointExtMethods::C2DPointExtMethods() : C2DPointMethods(sizeof(C2DPointExt), FourCC("2DEX")) {}
C2DPointExtMethods::~C2DPointExtMethods() = default;
void C2DPointExtMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) C2DPointExt;
}

C2DPointExtList::C2DPointExtList() { Init(new C2DPointExtMethods, nullptr); }
C2DPointExtList::~C2DPointExtList() = default;
