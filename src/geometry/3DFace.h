#pragma once

#include "geometry/4DVector.h"
#include "geometry/Face.h"
#include "geometry/Point.h"

class C2DPointList;
class C3DPointList;

/// View of a face of a C3DFaceList: flags, material, and measures over the source 3D points of a CGeomInfo.
///
/// Measures read the points at each call. Corners beyond the points never lead outside memory: a face with one has no
/// measure, and the result is the one told for each measure.
class ZEL_API C3DFace : public CFace {
public:
    /// The id that the scene's materials resolve. Flags are not looked at. 0 for a view of nothing.
    unsigned int GetMaterialID() const { return m_words ? m_words[1] : 0; }
    void SetMaterialID(unsigned int id)
    {
        if (m_words)
            m_words[1] = id;
    }
    void SetInvalidFlag(bool invalid) { SetFlag(FACE_INVALID, invalid); }

    // --- Measures (FaceGeometry.cpp) --------------------------------------------------------------------------------

    /// Normal by the sum over all edges, in float; towards the viewer of a counter-clockwise face. (1, 0, 0) for a face
    /// without area or with a broken corner. Fewer than 3 corners leave the vector.
    ///
    /// @param normalize  false gives the raw sum, twice as long as the polygon's area
    void GetNormal(const CGeomInfo* info, C3DTVector<float>& normal, bool normalize) const;
    /// Normal of the first three corners and, in w, minus its product with the first. All 0 without 3 sound corners.
    C4DVector GetPlane(const CGeomInfo* info) const;
    /// Area of the triangle of the first three corners, in double, whatever else the face has. 0 without 3 sound
    /// corners.
    double Area(const CGeomInfo* info) const;
    /// 1 for equilateral first three corners, towards 0 for a sliver. 0 without 3 sound corners.
    double GetCompacityFactor(const CGeomInfo* info) const;
    /// Mean of all corners, summed in double; not a number for a face without sound corners.
    void GetCenter(const CGeomInfo* info, C3DTPoint<double>& center) const;
    void GetCenter(const CGeomInfo* info, C3DTPoint<float>& center) const;
    using CFace::GetCenter;
    /// No corner turns against the first one. Corners in a line do not break it; false with a broken corner.
    bool IsConvex(const CGeomInfo* info) const;
    /// True for every face.
    bool IsPlane(const CGeomInfo*) const { return true; }
    /// Lays the polygon in its own plane: `list` gets a point a corner, the first at the origin, the second on the
    /// positive x axis. Empty with fewer than 3 corners or a broken one.
    void Get2DCoordinates(const CGeomInfo* info, C2DPointList& list) const;

    /// The normal and the plane of corners that are in no list. `xy` has a place for each corner; false, with nothing written, with fewer
    /// than 3 corners or a broken one.
    static void GetNormal(const C3DPointList& points, const int* corners, int count, C3DTVector<float>& normal, bool normalize);
    static bool Get2DCoordinates(const C3DPointList& points, const int* corners, int count, float (*xy)[2]);

    /// Splits this face by cutting off ears in its plane (meshops/Triangulate.cpp).
    ///
    /// @param info         source and destination lists and channels
    /// @param sourceFace   number of this face in the source
    /// @param firstTarget  where to write in the destination; -1 sizes the destination for this face alone
    /// @return             number of triangles written, up to corners - 2; a smaller face is copied
    int Triangulate(const CGeomInfo* info, int sourceFace, int firstTarget);
};
