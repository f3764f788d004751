#pragma once

#include "channels/WeightPoint.h"
#include "geometry/PointList.h"
#include "geometry/PointMethods.h"

/// CWeightPoint.
class ZEL_API CWeightPointMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(CWeightPointMethods)
public:
    CWeightPointMethods();
    void ConstructElement(void* element) const override;

protected:
    ~CWeightPointMethods() override;
};

/// Points of weights.
class ZEL_API CWeightPointList : public CTypedPointList<CWeightPoint> {
    ZEL_DECLARE_CREATABLE(CWeightPointList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no points of it.
    static CWeightPointList* Create(CWeightPointList* model = nullptr);
    CWeightPointList();
    explicit CWeightPointList(const CWeightPointList* model);

    unsigned int GetChecksum(unsigned int mask) const override;
    CWeightPointList& operator=(const CPointList& other) override;
    CWeightPointList& operator=(const CWeightPointList& other) { return *this = static_cast<const CPointList&>(other); }

protected:
    ~CWeightPointList() override;
};
