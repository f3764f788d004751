#pragma once

#include "geometry/FaceList.h"

/// View of a face of normals.
class ZEL_API CNormalFace : public CFace {};

/// Faces of normals: corners in the channel's point list, flags and no other data.
class ZEL_API CNormalFaceList : public CFaceList {
    ZEL_DECLARE_CREATABLE(CNormalFaceList)
public:
    /// An empty list of one owner, with the model's inherited chunks when there is one.
    static CNormalFaceList* Create(const CNormalFaceList* model = nullptr);
    using CFaceList::operator=;

    CNormalFace* CreateFace() override;

protected:
    explicit CNormalFaceList(const CNormalFaceList* model = nullptr);
    ~CNormalFaceList() override;
};
