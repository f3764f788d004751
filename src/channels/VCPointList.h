#pragma once

#include "channels/VCPoint.h"
#include "geometry/PointList.h"
#include "geometry/PointMethods.h"

/// CVCPoint.
class ZEL_API CVCPointMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(CVCPointMethods)
public:
    CVCPointMethods();
    void ConstructElement(void* element) const override;

protected:
    ~CVCPointMethods() override;
};

/// Points of vertex colours.
class ZEL_API CVCPointList : public CTypedPointList<CVCPoint> {
    ZEL_DECLARE_CREATABLE(CVCPointList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no points of it.
    static CVCPointList* Create(CVCPointList* model = nullptr);
    CVCPointList();
    explicit CVCPointList(const CVCPointList* model);

    unsigned int GetChecksum(unsigned int mask) const override;
    CVCPointList& operator=(const CPointList& other) override;
    CVCPointList& operator=(const CVCPointList& other) { return *this = static_cast<const CPointList&>(other); }

protected:
    ~CVCPointList() override;
};
