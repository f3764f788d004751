#pragma once

#include "geometry/FaceList.h"

/// View of a face of vertex colours.
class ZEL_API CVCFace : public CFace {};

/// Faces of vertex colours: corners in the channel's point list, flags and no other data.
class ZEL_API CVCFaceList : public CFaceList {
    ZEL_DECLARE_CREATABLE(CVCFaceList)
public:
    /// An empty list of one owner, with the model's inherited chunks when there is one.
    static CVCFaceList* Create(const CVCFaceList* model = nullptr);
    using CFaceList::operator=;

    CVCFace* CreateFace() override;

protected:
    explicit CVCFaceList(const CVCFaceList* model = nullptr);
    ~CVCFaceList() override;
};
