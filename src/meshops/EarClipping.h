#pragma once

#include <memory>

#include "geometry/2DPointExtList.h"
#include "tools/Api.h"
#include "tools/BlockVector.h"

class C3DPointList;

/// Triangle of a polygon, as positions of its corners in the polygon: the corner that is cut off, the one behind it, the one before it.
struct Ear {
    unsigned short corner, next, prev;
};
using EarArray = CBlockVector<Ear>;

/// Cuts polygons into triangles, ear by ear.
///
/// The candidate is the sharpest corner at first, and then one of the two beside the last ear, so that a strip is cut across. It is given
/// up for the sharpest of all when it is reflex or wider than a right angle (and a little). An ear with a reflex corner inside stays. An
/// ear that has one point twice is cut off without a triangle. Where no corner is above 0 the one of the smallest inner angle is cut off,
/// so that the triangles have the outline of the polygon: a closed mesh stays closed. They may overlap or have no area where the polygon
/// crosses itself or runs straight on.
///
/// Keep one for many polygons: it then allocates nothing. Cost: near linear in the corners.
class ZEL_API CEarClipping {
public:
    CEarClipping();
    CEarClipping(const CEarClipping&) = delete;
    ~CEarClipping();

    /// Appends the triangles of a polygon in space; a corner beyond `points` gives none. Their number.
    int Cut(const C3DPointList& points, const int* corners, int count, EarArray& ears);

private:
    class CSharpest;
    class CReflexTree;
    class CLargePolygon;

    C2DPointExtList m_corners;
    CBlockVector<float> m_coordinates;
    std::unique_ptr<CSharpest> m_sharpest;
    std::unique_ptr<CReflexTree> m_reflex;
};
