#pragma once

#include <memory>

#include "geometry/AxisInfo.h"
#include "geometry/PointList.h"
#include "tools/AssociationMap.h"

class C3DEdge;
class C3DPointSymetryMap;
class CIntCoordMap;
struct WeldProximityMap;
template <class T> class C4x4TMatrix;

/// Positions of a mesh.
class ZEL_API C3DPointList : public CTypedPointList<C3DTPoint<float>> {
    ZEL_DECLARE_CREATABLE(C3DPointList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no points of it.
    static C3DPointList* Create(C3DPointList* model = nullptr);
    C3DPointList();
    explicit C3DPointList(const C3DPointList* model);

    void RemoveAll() override;
    unsigned int GetChecksum(unsigned int mask) const override;
    C3DPointList& operator=(const CPointList& other) override;
    C3DPointList& operator=(const C3DPointList& other) { return *this = static_cast<const CPointList&>(other); }

    // --- Measures and transforms (3DPointList.cpp) ------------------------------------------------------------------------

    /// Box of the points, in scene units. False, with (0, 0, 0) in both, when no point took part. A coordinate that is not finite does
    /// not count.
    ///
    /// @param mask    0: every point; otherwise points whose (flags & mask) != 0 equals `wanted`
    /// @param matrix  measure the transformed points; may be null
    bool GetBoundingBox(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int mask = 0, bool wanted = true,
                        const C4x4TMatrix<float>* matrix = nullptr) const;
    /// (min + max) / 2 of all points; (0, 0, 0) for an empty list.
    C3DTPoint<float> GetCenterOfBoundingBox() const;
    /// Transforms every point. False, with nothing moved, for an identity within its tolerance. Marks nothing.
    bool MatrixTransform(const C4x4TMatrix<float>& matrix);
    /// The same without tolerance.
    void Transform(const C4x4TMatrix<float>& matrix);
    /// Exchanges and mirrors axes (geometry/Swap.h). False for a code without meaning. Marks nothing.
    bool SwapCoordinates(unsigned int code);
    /// Replaces each point for which (flags & mask) == mask equals `wanted` by the wave at its place.
    void NoisyWaveFunc(const C3DTPoint<float>& origin, const C3DTVector<float>& dir, double amplitude, double frequency, double phase,
                       _POINT_PROPERTIES mask, bool wanted);
    /// Unit normal of the triangle of three points of the list; (1, 0, 0) when it has none. False for null.
    bool GetNormal(const int* corners, C3DTVector<float>& normal) const;
    /// 1 for an equilateral triangle, towards 0 for a sliver; 0 for null.
    double GetCompacityFactor(const int* corners) const;

    // --- Materials of points (PointMaterialGraph.cpp) ---------------------------------------------------------------------

    /// Counted pair around the two queries below. Builds the point-to-face graph of the source face list for its own time.
    void InitPointMaterialGraph(const CGeomInfo* info);
    void DeletePointMaterialGraph();
    /// Material ids of the live faces around a point where at least two meet; null and 0 otherwise. In the slot order of a hash table.
    const unsigned int* GetMaterialsConnectedToPoint(int point, int& count) const;
    /// 1 for a point where fewer than two meet.
    int GetNumberOfMaterialsConnectedToPoint(int point) const;
    /// Sets POINT_SHARE_MATERIALS where materials meet, clears it elsewhere. True when any point has it.
    bool InitShareSeveralMaterialsFlag();

    // --- Points near a place (meshops/IntCoordMap.cpp) --------------------------------------------------------------------
    //
    // A grid of cells half as wide as the tolerance. An absolute tolerance is a length; another one is a fraction of the smallest
    // extent of the points' box. 0 stands for a fraction of 0.001.

    /// Null for an empty list. The caller deletes it.
    CIntCoordMap* InitIntCoordMap(double tolerance, bool absolute);
    /// The same grid with a buffer for Get3DProximityPoints.
    WeldProximityMap* InitWeldMap(double tolerance, bool absolute);
    void DeleteWeldMap(WeldProximityMap* map) const;
    /// Candidates for a merge with one point: all points in its grid cell and the 26 around it.
    ///
    /// No distance is tested; a candidate may lie up to CIntCoordMap::GetMaxDistance away.
    ///
    /// @param point  index into this list
    /// @param map    from InitWeldMap on this list; null finds nothing. Stale as soon as the list is resized or its points move; nothing
    ///               detects that
    /// @param count  out: number of candidates, 0 for none
    /// @return       `count` indices without `point`: cells with x slowest and z fastest, ascending inside a cell. Null for none. Belongs
    ///               to `map`; the next call overwrites it
    int* Get3DProximityPoints(int point, WeldProximityMap* map, int& count);

    // --- Points by their surroundings (meshops/SymetryMap.cpp, Corners.cpp, Slice.cpp, CoplanarPoints.cpp) ----------------

    /// Pairs each point with its mirror image across the middle of the box.
    ///
    /// @param tolerance  largest distance from the mirrored place, as a fraction of a twentieth of the extent along the axis
    /// @return           the caller's; null for an empty list, an empty map without extent along the axis
    C3DPointSymetryMap* InitSymetryMap(_AXIS_INFO axis, double tolerance);
    /// Sets POINT_2D_CORNER where a border turns by more than `angle` (radians); clears it elsewhere. Number of marks set.
    unsigned int Set2DCornerPointsStatus(CAssociationMap<C3DEdge, int, unsigned short>& edges, double angle);
    /// Sets POINT_3D_CORNER where the normals of two faces differ by more than `angle`; clears it elsewhere. Number of marks.
    unsigned int Set3DCornerPointsStatus(CFaceList* faces, double angle);
    /// A grid of nx by ny by nz cells over the box; the caller deletes it. Null for an empty list.
    ///
    /// @param fill  enters the points
    /// @param flag  0, or only points for which (flags & flag) != 0 equals `flagValue`
    CIntCoordMap* InitSlicerMap(bool fill, unsigned int nx, unsigned int ny, unsigned int nz, unsigned int flag, bool flagValue);
    /// Sets POINT_SHARE_COPLANAR on points of several faces, all within `angle` of the first; clears it elsewhere.
    void InitShareCoplanarFacesFlag(const CGeomInfo* info, double angle);

protected:
    CIntCoordMap* GetIntCoordMap(double tolerance, bool absolute, bool shifted);
    bool UpdateList(const CGeomInfo* info) override;
    ~C3DPointList() override;

private:
    struct MaterialGraph;
    void CreatePointMaterialGraph(const CGeomInfo* info);
    void DropMaterialGraph();

    std::unique_ptr<MaterialGraph> m_materialGraph;
    unsigned int m_materialGraphUse = 0;
};
