#pragma once

#include "channels/Channel.h"
#include "channels/NormalMode.h"

class C3DEdge;
class C3DVectorList;
class CNormalFaceList;

/// Normals that came with the file or from the caller.
///
/// A vector with POINT_COMPUTED is worked out from the faces that use it; one with POINT_UNSET has no value.
class ZEL_API CSpecNormalChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CSpecNormalChannel)
public:
    explicit CSpecNormalChannel(unsigned int id = NO_CHANNEL_ID);

    C3DVectorList* GetNormalVectorList() const;
    CNormalFaceList* GetNormalFaceList() const;

    /// Turns or mirrors the vectors.
    bool SwapCoordinates(unsigned int code) override;
    bool MatrixTransform(const C4x4TMatrix<float>& matrix) override;
    /// Tolerance 0: equal coordinates. Otherwise the angle between two vectors, as a part of pi: 0.5 joins vectors at up to
    /// 90 degrees. Unset vectors equal unset vectors alone.
    bool Compare(const CPt* a, const CPt* b, double tolerance) const override;
    CSpecNormalChannel* Duplicate(bool inherit) const override;

    // SpecNormals.cpp

    /// Works out the vectors with POINT_COMPUTED when the channel is stale or invalid. The weighting is that of the info's
    /// object; the mode is not looked at.
    void ComputeNormals(const CGeomInfo* info, _NormalSmoothMode mode);
    /// Makes every vector a unit vector; one of length zero, or that is no number, becomes POINT_UNSET, and a face of unset
    /// vectors alone loses its data. False, with CHANNEL_INVALID, when no face is left with data.
    bool Normalize();

    // GeneratedNormals.cpp

    /// Gives a normal to corners without one.
    ///
    /// @param options  1 faces without data get data; 2 act only when a vector is unset; 4 smooth by `angle` (radians);
    ///                 8 flat: the face's normal. Without 8 the fill is smooth; without 1 and 2 nothing is filled
    ///
    /// Cost of a smooth fill: linear in the corners, but the square of the faces at a point that they do not agree on.
    void GenerateNormals(const CGeomInfo* info, unsigned int options, double angle, _NormalSmoothMode mode);

    // NormalBreaks.cpp

    /// Sets POINT_NORMAL_BREAK where vectors at one geometry point or edge differ by more than `angle` (radians).
    void InitNormalBreakFlag(const CGeomInfo* info, double angle, bool alsoSource, _NormalSmoothMode mode);
    /// Whether the edge between two faces is a seam of the normals.
    bool IsNormalFrontier(const CGeomInfo* info, double angle, const C3DEdge& edge, int face1, int face2);

protected:
    ~CSpecNormalChannel() override;
};
