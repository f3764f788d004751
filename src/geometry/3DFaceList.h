#pragma once

#include "geometry/3DFace.h"
#include "geometry/FaceList.h"

class C3DVectorList;
class CBitArray;
template <class T> class C4x4TMatrix;

/// How Sort orders faces. Both go by ascending material; faces of one material keep their order.
enum _FACE_SORT_MODE : int {
    FACE_SORT_MATERIAL = 1,
    FACE_SORT_MATERIAL_2 = 2,
};

/// What of a face list is to be split into triangles.
enum _TriangularInfo : int { TRIANGULAR_NOTHING = 0, TRIANGULAR_SOME = 1, TRIANGULAR_ALL = 2 };

constexpr unsigned int CHUNK_BACK_MATERIAL = FourCC("BKMT");    ///< present once a back material was set
constexpr unsigned int NO_MATERIAL = 0xFFFFFFFF;

/// Face list of geometry: corners are positions in a C3DPointList, and each face has a material.
///
/// A new face has material 0. A back material is a value of its own chunk; NO_MATERIAL means that a face has none.
class ZEL_API C3DFaceList : public CFaceList {
    ZEL_DECLARE_CREATABLE(C3DFaceList)
public:
    /// A new list, which the caller owns (DeleteMe). A model gives its inherited chunks, no faces of it.
    static C3DFaceList* Create(C3DFaceList* model);
    C3DFaceList();
    explicit C3DFaceList(const C3DFaceList* model);

    void Serialize(CXArchive& ar) override;
    C3DFace* CreateFace() override;
    void Inherit(const CFaceList& model) override;
    CFaceList& operator=(const CFaceList& model) override;
    C3DFaceList& operator=(const C3DFaceList& model)
    {
        *this = static_cast<const CFaceList&>(model);
        return *this;
    }
    /// As in the base; drops the materials map as well.
    virtual void RemoveAll();

    // --- Materials (FaceMaterials.cpp) ------------------------------------------------------------------------------

    using MaterialsMap = CHashMap<unsigned int, unsigned int, unsigned int>;

    /// NO_MATERIAL for a dead or missing face.
    unsigned int GetFaceMaterial(unsigned int i) const;
    /// Leaves the materials map alone.
    void SetFaceMaterial(unsigned int i, unsigned int id);
    /// NO_MATERIAL without back materials and for a missing face.
    unsigned int GetBackFaceMaterial(unsigned int i) const;
    /// The first call gives every other face NO_MATERIAL. A missing face is ignored.
    void SetBackFaceMaterial(unsigned int i, unsigned int id);
    bool HasBackFaceMaterials() const;
    /// False when there are none.
    bool RemoveBackFaceMaterials();
    /// `to` in place of `from` in all faces, dead ones too, front and back. False when nothing is replaced. A built map
    /// then counts for `to` what it counted for `from`.
    bool ReplaceMaterial(unsigned int from, unsigned int to);

    /// Faces by material, live faces only. Built at the first call and kept until the list changes; the list owns it.
    ///
    /// @param withBack  counts back materials too, NO_MATERIAL like any other, when there are any
    const MaterialsMap* GetMaterialsHashMap(const CGeomInfo* info, bool withBack);
    void CreateMaterialsHashMap(bool withBack);
    void DeleteMaterialsHashMap();

    /// Face numbers by material: the old number for each new place. `changed` tells whether that moves any. The caller
    /// frees the array with delete[]. Null for an empty list.
    unsigned int* Sort(_FACE_SORT_MODE mode, bool& changed) const;

    // --- With the channels of the source (channels/FaceOrder.cpp) ---------------------------------------------------

    /// Sorts the faces, and takes those of every channel along that is not invalid. False when nothing moves.
    bool Sort(const CGeomInfo* info, _FACE_SORT_MODE mode);
    /// Reverses one live face, and that face of each channel in which it is live. Marks nothing.
    void Flip(const CGeomInfo* info, int face);

    // --- Measures (FaceGeometry.cpp) --------------------------------------------------------------------------------

    /// Normals of all faces at once, vector i of face i as C3DFace::GetNormal gives it. Zero for a face with FACE_INVALID or with fewer
    /// than 3 corners. Resizes `normals`; cost: one pass over the corners.
    void GetNormals(const CGeomInfo* info, C3DVectorList& normals, bool normalize) const;
    /// Box of the source points that live faces use.
    ///
    /// @param min, max  both (0, 0, 0) when no face takes part
    /// @param mask      0, or only faces whose (flags & mask) != 0 equals `wanted`
    /// @param m         null, or what the points are transformed by first
    /// @return          true when a face took part
    bool GetBoundingBox(const CGeomInfo* info, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int mask, bool wanted,
                        C4x4TMatrix<float>* m) const;

    // --- Triangles (meshops/Triangulate.cpp) ------------------------------------------------------------------------
    //
    // A face of more than 3 corners is split when ((flags & properties) == properties) == wanted.

    /// Number of faces after splitting; `out` tells whether there is anything to split.
    int GetTriangularCount(const CGeomInfo* info, _TriangularInfo* out, _FACE_PROPERTIES properties, bool wanted);
    /// Writes the faces, split, to the destination list of `info` (made when missing), and those of the channels of the types given to its
    /// destination channels. With nothing to split source and destination share their lists. Number of faces.
    int Triangulate(CGeomInfo* info, unsigned int channelTypes, _FACE_PROPERTIES properties, bool wanted);

    // --- Regions (meshops/CoplanarMerge.cpp, Unify.cpp) -------------------------------------------------------------

    /// Writes to the destination of `info` one polygon for each region of faces in one plane, of one material, without a seam.
    ///
    /// @param angle  largest angle between normals of neighbours, radians
    /// @return       number of faces in the destination; -1 when the user stopped it
    int MergeCoplanarFaces(const CGeomInfo* info, double angle);
    /// Gives connected faces one orientation, and each group of them outward normals. `flipped`: one bit a face. True.
    bool UnifyNormals(CGeomInfo* info, CBitArray& flipped);

protected:
    int DoTriangulation(const CGeomInfo* info, int total, _TriangularInfo what, _FACE_PROPERTIES properties, bool wanted);
    bool UpdateList(const CGeomInfo* info) override;
    ~C3DFaceList() override;

private:
    enum MapState { MAP_NONE = 0, MAP_FRONT = 1, MAP_BOTH = 2 };

    void EnsureMaterials();
    template <class MATERIALS> void CountMaterials(const MATERIALS& materials);

    MaterialsMap m_materials;
    MapState m_mapState = MAP_NONE;
};
