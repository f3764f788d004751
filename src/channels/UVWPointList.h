#pragma once

#include "channels/UVWPoint.h"
#include "geometry/PointList.h"
#include "geometry/PointMethods.h"

/// CUVWPoint.
class ZEL_API CUVWPointMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(CUVWPointMethods)
public:
    CUVWPointMethods();
    void ConstructElement(void* element) const override;

protected:
    ~CUVWPointMethods() override;
};

/// Points of texture coordinates.
class ZEL_API CUVWPointList : public CTypedPointList<CUVWPoint> {
    ZEL_DECLARE_CREATABLE(CUVWPointList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no points of it.
    static CUVWPointList* Create(CUVWPointList* model = nullptr);
    CUVWPointList();
    explicit CUVWPointList(const CUVWPointList* model);

    unsigned int GetChecksum(unsigned int mask) const override;
    CUVWPointList& operator=(const CPointList& other) override;
    CUVWPointList& operator=(const CUVWPointList& other) { return *this = static_cast<const CPointList&>(other); }

protected:
    ~CUVWPointList() override;
};
