#include "geometry/2DPointList.h"

#include "geometry/PointMethods.h"

ZEL_IMPLEMENT_CREATABLE(C2DPointList, CPointList)

C2DPointList::C2DPointList() : C2DPointList(nullptr) {}
C2DPointList::C2DPointList(const C2DPointList* model) { Init(new C2DPointMethods, model); }
C2DPointList::~C2DPointList() = default;

C2DPointList& C2DPointList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    return *this;
}
