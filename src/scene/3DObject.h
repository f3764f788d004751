#pragma once

#include "scene/GeomObject.h"

/// Polygon object.
class ZEL_API C3DObject : public C3DGeomObject {
    ZEL_DECLARE_CREATABLE(C3DObject)
public:
    C3DObject();
    /// Takes over one reference on each; null channels are made.
    C3DObject(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);
    C3DObject(const C3DObject& other);

    /// Gives a new object without lists its lists, sized: points at the origin, faces without corners but with room for
    /// `cornersPerFace`.
    ///
    /// With `hasUVW` and `uvwPointNbr` both not 0 a texture channel of that id (0xFFFFFFFF: a new one) is added, its faces
    /// sized like the object's. Always true.
    bool Init(int pointNbr, int faceNbr, int cornersPerFace, int hasUVW, int uvwPointNbr, unsigned int uvwChannelID);

protected:
    ~C3DObject() override;
};

/// A polygon object from raw arrays, owned by the caller; all sizes in bytes, remainders ignored.
///
/// @param points     x, y, z of each point; pointBytes / 12 points
/// @param triangles  three point indices of each triangle; triangleBytes / 12 of them. They come first in the face list
/// @param quads      four point indices of each quadrangle; quadBytes / 16 of them
/// @return           material 0, no channels; null when an index is outside the points or there are more than 2^31 - 1
///                   elements of a kind
///
/// A null array counts as empty. Cost: linear, in memory bandwidth; the lists are exactly as large as needed.
ZEL_API C3DObject* CreateObjectFromArrays(const float* points, unsigned int pointBytes, const int* triangles, unsigned int triangleBytes,
                                          const int* quads, unsigned int quadBytes);
