#pragma once

#include <vector>

#include "channels/Channel.h"
#include "channels/NormalMode.h"
#include "geometry/3DFaceList.h"
#include "scene/BaseObject.h"

class C3DPointList;
class CDependentChannels;
class CFaceNormalChannel;
class CPointNormalChannel;
class CMapChannelID;
template <class ID, class COUNT> class CGroupMap;

/// How the faces of an object are culled.
enum _faceModeEnum : unsigned int {
    FACE_MODE_VIEW = 0,         ///< as the view says
    FACE_MODE_ONE_SIDED = 1,    ///< back faces are culled
    FACE_MODE_TWO_SIDED = 2,    ///< nothing is culled
};

/// Flags of the bounding boxes of objects and nodes.
enum _BOX_FLAGS : unsigned int {
    BOX_FACES = 0x1,              ///< the points that live faces use
    BOX_POINTS = 0x2,             ///< the whole point list
    BOX_SKIP_HIDDEN = 0x4,        ///< no hidden nodes below
    BOX_SELECTED_ONLY = 0x8,      ///< only selected nodes below
    BOX_NODE_ONLY = 0x10,         ///< nothing below
    BOX_NODE_FLAGS = 0x20,        ///< value1 is a set of node flags that each node below must have; cancels BOX_NODE_ONLY
    BOX_KINDS = 0x40,             ///< value2 is the kind mask of the nodes below
    BOX_NOT_KINDS = 0x80,         ///< the kind mask is ~value2; BOX_KINDS goes first
    BOX_IN_NODE_SPACE = 0x100,    ///< object boxes: measured in scene coordinates, through the node given
};

/// Which faces C3DGeomObject::SubObject takes.
enum _SUBOBJECT_MODE : int { SUBOBJECT_EXACT = 1, SUBOBJECT_MORE = 3 };

/// Scene angle in place of an own one.
constexpr float SMOOTH_ANGLE_INHERITED = -1.0f;

/// Object with geometry: points, faces, and the channels over the faces, all three its own by reference.
///
/// Whoever changes points or faces reports it through Invalidate (scene/UpdateFlags.h) and needs to do nothing else.
class ZEL_API C3DGeomObject : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DGeomObject)
public:
    using MaterialMap = C3DFaceList::MaterialsMap;

    /// Kind 0, no lists, empty channels.
    C3DGeomObject();
    /// Takes over one reference on each; null channels are made.
    C3DGeomObject(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);
    /// Copies lists, channels and settings; a new id. Kind and caches come along.
    C3DGeomObject(const C3DGeomObject& other);

    // Virtual operations of the base

    void Serialize(CXArchive& ar) override;
    /// Checksum of points plus that of faces; with `mode & 16` also of every channel that neither is invalid nor
    /// computed. Modulo 2^32.
    unsigned int GetChecksum(unsigned int mode) const override;
    /// Generates texture coordinates where a material asks for them; never clears box staleness.
    bool Update(C3DScene* scene, unsigned int flags) override;
    /// Marks the lists changed, drops the normal channels that can be computed again, then the base's part.
    void Invalidate(unsigned int flags, bool set) override;
    void InheritFlags(const C3DBaseObject& from, int copyFlags) override;
    /// Transforms points and channels; turns the faces round when the matrix mirrors. False for the identity. Reports the
    /// change. Points take the smallest transform, normals none within IsIdentity.
    bool MatrixTransform(const C4x4TMatrix<float>& matrix) override;
    bool InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const override;

    // Virtual operations of its own, in the order of their slots

    /// Takes over one reference on the list (null: none); the old one is released when `deleteOld`. Nothing for the list
    /// that is held.
    virtual void SetFaceList(C3DFaceList* faces, bool deleteOld);
    virtual void SetPointList(C3DPointList* points, bool deleteOld);
    /// The same; null makes empty channels.
    virtual void SetChannels(CDependentChannels* channels, bool deleteOld);
    /// Number of live faces by material, owned by the face list, valid until faces change; null without a face list.
    /// `withBack` counts back materials too. A curve counts its own material as one face.
    virtual const MaterialMap* GetMaterialsHashMap(bool withBack);
    /// Repairs degenerate faces, removes what is marked invalid and points that no face uses; channels keep step.
    /// OBJECT_EMPTY when nothing is left.
    virtual void Clean();
    /// False when nothing was replaced.
    virtual bool ReplaceMaterial(unsigned int from, unsigned int to);
    /// Applies every pair whose source the object uses, all at once: ids that are exchanged do not run into one another.
    virtual bool ReplaceMaterials(const MaterialMap& map);

    // Lists and channels (GeomObject.cpp)

    C3DPointList* GetPointList() const { return m_points; }
    C3DFaceList* GetFaceList() const { return m_faces; }
    CDependentChannels* GetChannels() const { return m_channels; }
    int GetPointNbr() const;    // 0 without a list
    int GetFaceNbr() const;
    void FreeExtra();
    /// Takes the structure (side data, list flags) of the other's lists without elements, and by CopyChannels the channels
    /// of the types in `channelTypes` with `options`.
    void Inherit(const C3DGeomObject& from, unsigned int channelTypes, unsigned int options);
    /// Same order of faces by material in list and channels; reports the change when there is one.
    bool SortFaces(_FACE_SORT_MODE mode);
    /// Makes a face invalid when it has a corner beyond the points; a face of a channel with one beyond the channel's points loses its
    /// data. Reports the change. The numbers of the faces go behind those in `told`, which may be null. Storing does this first: no
    /// reader takes such a corner.
    bool DropBadFaces(std::vector<unsigned int>* told = nullptr);
    /// True when no face of more than 3 corners has ((flags & properties) == properties) == wanted.
    bool IsTriangular(_FACE_PROPERTIES properties, bool wanted);

    // Channels (GeomObjectChannels.cpp)

    /// Takes over one reference, appends; the index, or 0xFFFFFFFF for null.
    unsigned int AddChannel(CChannel* channel);
    CChannel* GetChannelByID(unsigned int id, _Channel3DType type) const;
    CChannel* GetChannelByIndex(int index, _Channel3DType type, bool skipInvalid) const;
    unsigned int GetGlobalUVWChannel() const { return m_globalUVW; }
    void SetGlobalUVWChannel(unsigned int id);
    unsigned int GetGlobalVCChannel(float& strength) const;
    void SetGlobalVCChannel(unsigned int id, float strength);

    // Normals (GeomObjectNormals.cpp)

    /// The channel, made when missing, and brought up to date. Null for curves and groups.
    CFaceNormalChannel* GetFaceNormalChannel();
    CPointNormalChannel* GetPointNormalChannel();

    // Smooth settings (GeomObjectSmooth.cpp)

    /// Effective angle in radians: the own one, else the scene's, else the preferences'. `inherited` may be null.
    float GetSmoothAngle(bool* inherited = nullptr) const;
    /// Radians, held to 0..pi; SMOOTH_ANGLE_INHERITED gives it back to the scene. A change drops the point normals.
    void SetSmoothAngle(float angle);
    _NormalSmoothMode GetSmoothMode(bool* inherited = nullptr) const;
    /// 0 gives it back to the scene.
    void SetSmoothMode(_NormalSmoothMode mode);
    _faceModeEnum GetFaceMode() const { return m_faceMode; }
    void SetFaceMode(_faceModeEnum mode);

    // Boxes (GeomObjectBox.cpp)

    /// Box of the object, in its own space or with BOX_IN_NODE_SPACE in the scene's.
    ///
    /// @param boxFlags     BOX_FACES or BOX_POINTS; without a face list faces fall back on the points
    /// @param pointFilter  mask of point flags (BOX_FACES: of face flags); 0 takes all
    /// @param wanted       which of the elements take part: those with a bit of the filter, or those without
    /// @param node         needed for BOX_IN_NODE_SPACE, at time 0
    /// @return             false for an OBJECT_EMPTY object or without BOX_FACES and BOX_POINTS, the outputs untouched;
    ///                     for faces whether any face took part
    ///
    /// Two boxes are cached, until Invalidate reports a change. The cache does not look at the filter: the first answer
    /// stands. Cost: linear on a miss.
    bool GetBoundingBox(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags, unsigned int pointFilter = 0,
                        bool wanted = false, const C3DSceneNode* node = nullptr);
    /// Centre of the box of all points; false without a point list.
    bool GetCG(C3DTPoint<float>& center) const;

    // Cleaning (GeomObjectClean.cpp)

    /// Removes channels that are invalid, out of step or without any data, and by type: with `keepTypes` those outside
    /// `typeMask`, without it those inside; 0xFFFFFFFF asks for no types.
    void CleanChannels(unsigned int typeMask, bool keepTypes);

    // Mesh operations, each in the file of its name in meshops/. None touches the object when the user stops it.

    /// Joins points whose grid cells touch (Weld.cpp).
    ///
    /// @param tolerance     as for C3DPointList::InitWeldMap
    /// @param channelTypes  channels whose points are joined too, where they are equal
    /// @param conditions    number of pairs (mask of point flags, mode) that follow; mode bits: 1 a point with the mask is not joined, 2 one
    ///                      without it is not, 4 a point with it joins no other, 8 one without it joins no other
    /// @return              true when points or channel points were joined
    bool Weld3DPoints(double tolerance, bool absolute, unsigned int channelTypes, unsigned int conditions, ...);
    /// Splits faces of more than 3 corners for which ((flags & properties) == properties) == wanted (Triangulate.cpp). False when there are
    /// none, and for curves.
    bool Triangulate(unsigned int channelTypes, _FACE_PROPERTIES properties, bool wanted);
    /// Splits faces of more than 4 corners into triangles (Triangulate.cpp).
    bool Quadrangulate(unsigned int channelTypes);
    /// One polygon for each flat region of one material without seams (CoplanarMerge.cpp). `angle` in radians. True when faces went.
    bool MergeCoplanarFaces(double angle, unsigned int channelTypes);
    /// One orientation for connected faces, outward where there is an outside (Unify.cpp). False without faces.
    bool UnifyNormals();
    /// Appends a new object for each part that hangs together through edges (Explode.cpp); the caller's. Number of parts; 0 for an object
    /// that is one part.
    int ExplodeIntoIsolatedParts(CXArray<C3DGeomObject*, C3DGeomObject*>& parts);
    /// A new object of the listed live faces with their points in order of first use, and their channels (SubObject.cpp). Null for none.
    C3DObject* SubObject(const int* faces, unsigned int count);
    /// The same of the live faces with that many corners, or more.
    C3DObject* SubObject(int corners, _SUBOBJECT_MODE mode);
    /// Splits points where the channels of the types in `options` differ between faces, and numbers these channels as the object's corners
    /// (Disconnect.cpp).
    ///
    /// @param pointFlag  set on split points and their copies
    /// @param faceFlag   set on the faces that keep and that get a copy
    /// @param map        receives each point with its copies; may be null
    /// @param noPoints   only flags and `map` are filled: what a split would do
    /// @param extra      receives each touched face as it was; may be null
    /// @return           false when there is no seam
    bool DisconnectBorderFaces(unsigned int options, unsigned int pointFlag, unsigned int faceFlag, CGroupMap<int, unsigned short>* map,
                               bool noPoints, C3DFaceList* extra);
    /// One UVW channel out of those that the diffuse maps of the materials use (GlobalChannel.cpp). `removeOld` removes these. Its id, or
    /// 0xFFFFFFFF for none.
    unsigned int GlobalizeChannels(C3DScene* scene, bool removeOld);
    /// Makes real coordinates for each material whose diffuse map is a projection (UVGeneration.cpp). True when a channel was made.
    bool GenerateUVW(C3DScene* scene);
    /// Appends other objects, or those of their faces that pass the filter, with their channels (Concatenate.cpp). True when anything was
    /// joined; false leaves this object untouched.
    bool Concatenate(C3DScene* scene, const CXArray<C3DGeomObject*, C3DGeomObject*>& sources, const C3DFilter* filter);
    /// Renames the channels in the object's settings and in the materials that it uses (Concatenate.cpp).
    void ChangeChannelID(C3DScene* scene, const CChannelMap& map);
    void ChangeMaterialsChannelID(C3DScene* scene, const CChannelMap& map);

    // Faces turned round (GeomObjectTransform.cpp)

    /// Reverses all live faces, channels included. False without faces or for an OBJECT_EMPTY object.
    bool FlipNormals();

protected:
    explicit C3DGeomObject(_OBJECT_KINDOF kind);
    C3DGeomObject(_OBJECT_KINDOF kind, C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);
    ~C3DGeomObject() override;

    /// The channel, not in the object yet; null for an empty table. Entries without a channel leave the table (GlobalChannel.cpp).
    CChannel* MakeGlobalChannel(CHashTable<CMapChannelID>*& table, _Channel3DType type);
    /// Coordinates for the faces of one material (UVGeneration.cpp): the channel's id; 0 without a map or on a curve, 0xFFFFFFFF for a map
    /// that is no projection.
    unsigned int CreateUVWChannel(CMaterialMap* map, unsigned int materialID, bool freeExtra);

private:
    struct Box {
        float min[3] = {}, max[3] = {};

        void Get(C3DTPoint<float>& outMin, C3DTPoint<float>& outMax) const;
        void Set(const C3DTPoint<float>& inMin, const C3DTPoint<float>& inMax);
    };
    void CopyGeometry(C3DGeomObject& target, C3DObjectCreator& creator) const;
    bool MeasurePoints(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int filter, bool wanted, C4x4TMatrix<float>* matrix);
    bool MeasureFaces(C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int filter, bool wanted, C4x4TMatrix<float>* matrix);

    bool m_hasFaceBox = false;
    Box m_pointBox;
    Box m_faceBox;
    float m_smoothAngle = SMOOTH_ANGLE_INHERITED;
    _NormalSmoothMode m_smoothMode = {};
    _faceModeEnum m_faceMode = FACE_MODE_VIEW;
    C3DFaceList* m_faces = nullptr;
    C3DPointList* m_points = nullptr;
    CDependentChannels* m_channels;
    unsigned int m_globalUVW = NO_CHANNEL_ID;
    unsigned int m_globalVC = NO_CHANNEL_ID;
    float m_vcStrength = 1.0f;
};
