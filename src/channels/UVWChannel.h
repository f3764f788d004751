#pragma once

#include "channels/Channel.h"

class C3DEdge;
class CUVWFaceList;
class CUVWPointList;

/// Texture coordinates.
class ZEL_API CUVWChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CUVWChannel)
public:
    explicit CUVWChannel(unsigned int id = NO_CHANNEL_ID);

    CUVWFaceList* GetUVWFaceList() const;
    CUVWPointList* GetUVWPointList() const;

    /// Tolerance 0: u, v, w exactly equal. Otherwise a distance in texture space, inclusive.
    bool Compare(const CPt* a, const CPt* b, double tolerance) const override;
    CUVWChannel* Duplicate(bool inherit) const override;

    /// Marks the points where several texture coordinates meet.
    ///
    /// Two or more groups of equal coordinates at a geometry point, a corner without data counting as one more: that point
    /// and its channel points get POINT_SHARE_UV. More than two: the geometry point gets POINT_UV_SEAM too. A point with a
    /// single corner of data is not marked.
    ///
    /// @param tolerance   distance below which coordinates are equal; 0 asks for exact equality
    /// @param alsoSource  clears both bits on the geometry points first; the channel's points are cleared always
    void InitShareUVFlag(const CGeomInfo* info, float tolerance, bool alsoSource);
    /// Whether the texture is cut along the edge between two faces: one of them without data, the edge not in both, or an
    /// end of it further apart than `tolerance`, where 0 finds no difference.
    bool IsUVFrontier(const CGeomInfo* info, float tolerance, const C3DEdge& edge, int face1, int face2);

protected:
    ~CUVWChannel() override;
};
