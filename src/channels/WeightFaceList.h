#pragma once

#include "geometry/FaceList.h"

/// View of a face of weights.
class ZEL_API CWeightFace : public CFace {};

/// Faces of weights: corners in the channel's point list, flags and no other data.
class ZEL_API CWeightFaceList : public CFaceList {
    ZEL_DECLARE_CREATABLE(CWeightFaceList)
public:
    /// An empty list of one owner, with the model's inherited chunks when there is one.
    static CWeightFaceList* Create(const CWeightFaceList* model = nullptr);
    using CFaceList::operator=;

    CWeightFace* CreateFace() override;

protected:
    explicit CWeightFaceList(const CWeightFaceList* model = nullptr);
    ~CWeightFaceList() override;
};
