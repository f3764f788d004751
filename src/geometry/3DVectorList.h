#pragma once

#include "geometry/PointList.h"

template <class T> class C4x4TMatrix;

/// Normals of a mesh.
class ZEL_API C3DVectorList : public CTypedPointList<C3DTVector<float>> {
    ZEL_DECLARE_CREATABLE(C3DVectorList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no vectors of it.
    static C3DVectorList* Create(C3DVectorList* model = nullptr);
    C3DVectorList();
    explicit C3DVectorList(const C3DVectorList* model);

    unsigned int GetChecksum(unsigned int mask) const override;
    C3DVectorList& operator=(const CPointList& other) override;
    C3DVectorList& operator=(const C3DVectorList& other) { return *this = static_cast<const CPointList&>(other); }

    /// Turns every vector by the matrix without its scale and translation; lengths are not restored. False, with nothing changed,
    /// when an identity is left.
    bool MatrixTransform(const C4x4TMatrix<float>& matrix);
    /// See C3DPointList::SwapCoordinates.
    bool SwapCoordinates(unsigned int code);

protected:
    ~C3DVectorList() override;
};
