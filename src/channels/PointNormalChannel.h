#pragma once

#include "channels/Channel.h"
#include "geometry/Point.h"

class C3DVectorList;
class CNormalFaceList;
class CSpecNormalChannel;

/// Smoothed normal of every corner, worked out on demand from the faces and a smooth angle, and never stored.
class ZEL_API CPointNormalChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CPointNormalChannel)
public:
    explicit CPointNormalChannel(unsigned int id = NO_CHANNEL_ID);

    C3DVectorList* GetNormalVectorList() const;
    CNormalFaceList* GetNormalFaceList() const;
    /// Radians: the angle of the last InitNormals.
    float GetSmoothAngle() const { return m_smoothAngle; }

    /// Turns or mirrors the vectors.
    bool SwapCoordinates(unsigned int code) override;
    bool MatrixTransform(const C4x4TMatrix<float>& matrix) override;
    /// Marks the channel stale; false.
    bool Clean(const CGeomInfo* info, CXArray<unsigned int, unsigned int>* faceMap, CXArray<unsigned int, unsigned int>* pointMap) override;
    bool CanBeRecomputed() override;
    CPointNormalChannel* Duplicate(bool inherit) const override;

    // PointNormals.cpp

    /// Brings the normals up to date for a smooth angle in radians. Nothing happens when the channel is neither stale nor
    /// invalid and the angle is exactly that of the last call, or without source faces and points.
    ///
    /// Around each point the faces, ascending, join the first group whose first face is within the angle, or open a group. The
    /// corners of a group share the normalised sum of what its faces contribute in the info's smooth mode; equal sums share a
    /// vector across points. Sets POINT_SMOOTH_SPLIT on the source points with several groups, clears it on the others.
    ///
    /// Cost: near linear in the corners, whatever the number of faces or groups of a point.
    void InitNormals(const CGeomInfo* info, float angle);

    // SmoothNormals.cpp

    /// Prepares GetSmoothNormal… for a pass over one object. `given` may be null; else its computed normals are brought up
    /// to date. The lists are referred to, not held: valid as long as they are.
    void PrepareSmoothing(const CGeomInfo* info, CSpecNormalChannel* given);
    /// The given normal of a corner where there is one, else the smoothed one; after InitNormals and PrepareSmoothing.
    ///
    /// @param status  out, may be null: 2 given, 5 given as computed, 9 smoothed, 0 none
    C3DTVector<float>* GetSmoothNormalByCorner(int face, int corner, unsigned int* status);
    /// The same by geometry point; null and 0 when the face does not hold it.
    C3DTVector<float>* GetSmoothNormalByIndex(int face, int point, unsigned int* status);

protected:
    ~CPointNormalChannel() override;

private:
    float m_smoothAngle = 1.0f;
    CNormalFaceList* m_specFaces = nullptr;    ///< the three are set by PrepareSmoothing, not owned
    C3DVectorList* m_specVectors = nullptr;
    CFaceList* m_geometryFaces = nullptr;
};
