#pragma once

#include "channels/Channel.h"

class C3DEdge;
class CVCFaceList;
class CVCPointList;

/// Vertex colours.
class ZEL_API CVCChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CVCChannel)
public:
    explicit CVCChannel(unsigned int id = NO_CHANNEL_ID);

    CVCFaceList* GetVCFaceList() const;
    CVCPointList* GetVCPointList() const;

    /// Tolerance below 1/255: all four bytes equal. Otherwise red, green and blue each within tolerance * 255, truncated;
    /// alpha does not count.
    bool Compare(const CPt* a, const CPt* b, double tolerance) const override;
    CVCChannel* Duplicate(bool inherit) const override;

    /// Marks with POINT_VC_FRONTIER, on geometry and channel points: where colours at one geometry point differ, where some
    /// corner of it has no data, and where the colours at the two ends of a face's edge differ.
    ///
    /// @param tolerance   largest difference of a red, green or blue byte
    /// @param alsoSource  clears the bit on the geometry points first; the channel's points are cleared always
    void InitVCFrontierFlag(const CGeomInfo* info, int tolerance, bool alsoSource);
    /// Whether the colours break along the edge between two faces: one of them without data, the edge not in both, or
    /// colours that differ across it, along it, or along the edges beside it.
    bool IsVCFrontier(const CGeomInfo* info, int tolerance, const C3DEdge& edge, int face1, int face2);

protected:
    ~CVCChannel() override;

private:
    void MarkPoints(const CGeomInfo* info, CPointList& source, int tolerance);
    void MarkFaces(const CGeomInfo* info, CPointList& source, int tolerance);
};
