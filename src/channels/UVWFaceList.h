#pragma once

#include "geometry/FaceList.h"

/// View of a face of texture coordinates.
class ZEL_API CUVWFace : public CFace {};

/// Faces of texture coordinates: corners in the channel's point list, flags and no other data.
class ZEL_API CUVWFaceList : public CFaceList {
    ZEL_DECLARE_CREATABLE(CUVWFaceList)
public:
    /// An empty list of one owner, with the model's inherited chunks when there is one.
    static CUVWFaceList* Create(const CUVWFaceList* model = nullptr);
    using CFaceList::operator=;

    CUVWFace* CreateFace() override;

protected:
    explicit CUVWFaceList(const CUVWFaceList* model = nullptr);
    ~CUVWFaceList() override;
};
