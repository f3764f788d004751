#pragma once

#include "geometry/PointList.h"

/// Points of the plane, as working set.
class ZEL_API C2DPointList : public CTypedPointList<C2DTPoint<float>> {
    ZEL_DECLARE_CREATABLE(C2DPointList)
public:
    C2DPointList();
    explicit C2DPointList(const C2DPointList* model);

    C2DPointList& operator=(const CPointList& other) override;
    C2DPointList& operator=(const C2DPointList& other) { return *this = static_cast<const CPointList&>(other); }

    /// Public, so that a working set can live on the stack.
    ~C2DPointList() override;
};
