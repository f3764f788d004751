#pragma once

#include "channels/NormalMode.h"
#include "geometry/4x4Matrix.h"
#include "scene/Forward.h"
#include "scene/Materials.h"
#include "scene/NodePos.h"
#include "scene/SceneNode.h"
#include "scene/Units.h"
#include "scene/UpAxis.h"
#include "tools/CustomData.h"
#include "tools/Object.h"
#include "tools/Tree.h"

class CFileNameSpec;
class CSceneExportOptions;
class CSceneImportOptions;

/// Flags of the copies of scenes, branches and nodes.
enum _SCENE_COPY_FLAGS : int {
    SCENE_COPY_NO_HIDDEN = 0x1,    ///< leaves out hidden nodes
    SCENE_COPY_NO_CURVES = 0x2,    ///< and these kinds
    SCENE_COPY_NO_PATCHES = 0x4,
    SCENE_COPY_NO_POLYGONS = 0x8,
    SCENE_COPY_NO_GROUPS = 0x10,
    SCENE_COPY_SELECTED = 0x20,            ///< when a node is selected, only selected ones
    SCENE_COPY_REMEMBER_SOURCE = 0x100,    ///< binary custom datum 'RFNO' of the new node: the address of its source
    SCENE_COPY_ONE_LEVEL = 0x200,          ///< without what is below the children
    SCENE_COPY_FLATTEN = 0x800,            ///< all nodes go under one parent
    SCENE_COPY_NO_MATERIALS = 0x10000,
    SCENE_COPY_NO_SCENE_DATA = 0x20000,    ///< without the parameters
};

/// A scene: the tree of nodes under a root, the materials, and the parameters in the custom data.
///
/// Reference counted, released with DeleteMe. Owns its nodes. The root holds a group, is nobody's child and is not visited by
/// walks. Wherever a node argument may be null, null means the root unless told otherwise. No lock: one thread at a time.
class ZEL_API C3DScene : public CTree, public C3DAnimatable, public CInstanciatedObject {
    ZEL_DECLARE_CREATABLE(C3DScene)
public:
    C3DScene();
    static C3DScene* Create();

    // Virtual operations

    /// Version, parser info, parameters, materials, tree (SceneStream.cpp).
    void Serialize(CXArchive& ar) override;
    /// Union of the ranges of all nodes and frame 0.
    CTimeRange GetTimeRange(std::uint64_t classID) override;
    /// Key before (mode 1), after (2) or at (4) a time among all nodes; its time, or -1, goes to `keyTime`.
    const C3DKeyframe* GetConstKey(int time, unsigned int mode, std::uint64_t classID, int* keyTime) const override;

    // Tree (3DScene.cpp)

    /// Appends a detached node, with what is below it, under `parent`; the scene owns it from here on. False for null or a
    /// node that is in a tree. Object ids stay as they are: nodes of another scene come by Merge or AddScene.
    bool AddNode(C3DSceneNode* parent, C3DSceneNode* node);
    C3DSceneNode* GetRoot() const { return static_cast<C3DSceneNode*>(CTree::GetRoot()); }
    bool IsSceneRoot(const C3DSceneNode* node) const { return node && node == GetRoot(); }
    C3DSceneNode* GetParent(const C3DSceneNode* node) const;       // null for null
    C3DSceneNode* GetChildNode(const C3DSceneNode* node) const;    // first child
    C3DSceneNode* GetRightNode(const C3DSceneNode* node) const;    // next sibling; null for null
    /// 0 for a child of the root; 0xFFFFFFFF for the root and for null.
    unsigned int GetChildDepth(const C3DSceneNode* node) const;
    CTree* GetTree() { return this; }
    /// Number of nodes below, at any depth, whose object's kind is in the mask. Linear.
    int GetChildCount(const C3DSceneNode* node, unsigned int kindMask) const;
    /// Number of direct children; the mask is not looked at. Linear.
    int GetDirectChildCount(const C3DSceneNode* node, unsigned int kindMask) const;
    bool IsNodeInScene(const C3DSceneNode* node) const;
    /// True when `node` lies below `parent`.
    bool IsChildNode(const C3DSceneNode* parent, const C3DSceneNode* node) const;
    /// Of the nodes with an object; null for none and for 0xFFFFFFFF. Linear: whoever looks up much builds a map.
    C3DSceneNode* GetNodeByID(unsigned int id) const;
    C3DBaseObject* GetObjectByID(unsigned int id) const;
    /// Sums over all nodes of what is drawn for them: a shared object counts for each of its nodes.
    int GetPointNbr() const;
    int GetFaceNbr() const;

    // Walks (NodePos.cpp)

    /// Position on the first node of a depth-first walk, parent first, over the nodes whose object kind is in the mask.
    ///
    /// @param start  the walk begins below it; a walk that is not held below it (ITER_SUBTREE) goes on through the rest of
    ///               the tree, but one that begins below a leaf is empty
    /// @param stop   without ITER_SUBTREE: bounds the walk to what lies below it
    ///
    /// No allocation unless ITER_UNIQUE_OBJECTS.
    C3DNodePos GetFirstNode(unsigned int kindMask, unsigned int iterFlags = 0, const C3DSceneNode* start = nullptr,
                            const C3DSceneNode* stop = nullptr) const;
    /// The same over all kinds.
    C3DNodePos GetFirstNode(const C3DSceneNode* start, unsigned int iterFlags, const C3DSceneNode* stop) const;
    /// The node at the position, which moves on; its object, or null, goes to `object`. Null at the end.
    C3DSceneNode* GetNextNode(C3DBaseObject*& object, C3DNodePos& pos) const;
    /// The same for a walk over geometric kinds.
    C3DSceneNode* GetNextNode(C3DGeomObject*& object, C3DNodePos& pos) const;
    C3DSceneNode* GetNextNode(C3DNodePos& pos) const;

    // Removal (SceneRemove.cpp)

    /// Destroys the node with all below it (null or the root: everything below the root), or without `destroy` takes the
    /// branch out, which then belongs to the caller. Returns the node from which a walk goes on, or null.
    C3DSceneNode* RemoveNode(C3DSceneNode* node, bool destroy);
    /// The same during a walk that stands on the node; whether the position still stands on one.
    bool RemoveNode(C3DSceneNode* node, C3DNodePos& pos, bool destroy);
    /// Destroys every node of the branch, `start` included, that passes the filter. Children of a node that goes move up to
    /// its place and keep their place in space at all key times.
    bool DeleteNodes(C3DSceneNode* start, const C3DFilter* filter);
    /// False for a new node that is in a tree and an old one that is not in this. `keepChildren`: those of the old node go to the new
    /// one.
    bool ReplaceNode(C3DSceneNode* newNode, C3DSceneNode* oldNode, bool keepChildren);
    /// Nodes, materials, parameters and parser info.
    void RemoveAll();
    void RemoveAllNodes();
    /// Keeps `child` in place in space at all key times of both when it leaves `parent`. Both get matrix keys.
    bool MergeMatrixKeyframes(C3DSceneNode* parent, C3DSceneNode* child);
    /// Cleans every geometric object.
    void Clean();

    // Groups (SceneGroups.cpp)

    /// Moves every node directly under the root, level by level, and deletes the groups. For scenes whose transforms are baked:
    /// keys stay as they are. Linear.
    void RemoveGroups();
    /// Frees the geometric nodes of the branch of `start`, itself included, of their children: each child goes into a group of its
    /// name, which stands beside the node, with the node's flags, keys and custom data. Nothing moves in space. True when something
    /// changed. Linear.
    bool MakeGroupForChilds(C3DSceneNode* start);
    /// Deletes groups without children (with their parents that become empty), or without `onlyEmpty` groups with at most one
    /// child, which moves up.
    void CleanGroups(bool onlyEmpty);

    // Instances (SceneInstances.cpp)

    /// The object with one more reference and one more user, for SetObject of another node.
    C3DBaseObject* CreateObjectInstance(const C3DBaseObject* object) const;
    /// A detached copy of the branch that shares its objects; its top has no keys. Null for null.
    C3DSceneNode* CreateInstance(const C3DSceneNode* node);
    /// Makes the objects of all nodes below unique; how many were not.
    int DeleteInstanciation(C3DSceneNode* start);
    /// Appends the nodes below `start` that hold the object; the size of the array. `reset` empties it first.
    int GetInstancesByID(C3DSceneNode* start, unsigned int objectID, CXArray<C3DSceneNode*>& nodes, bool reset) const;
    /// The same for the object of a node; a node whose object is not shared is appended alone.
    int GetInstancesByID(C3DSceneNode* start, C3DSceneNode* reference, CXArray<C3DSceneNode*>& nodes, bool reset) const;

    // Copies (SceneCopy.cpp). `flags`: _SCENE_COPY_FLAGS; a null creator means the default one.
    //
    // Shared objects stay shared; with one creator also over several calls into the same scene. Objects for another scene keep
    // their ids, unless that scene has them already. `dst` may be this scene, `parent` even lie in what is copied. Any depth.
    // Cost: linear in what is copied and in the nodes of `dst`.

    /// A new scene with what is below `start`, the parameters, the materials and the time, and for a whole scene the root's name,
    /// keys and data; null when no node came through. The caller's.
    C3DScene* Copy(C3DSceneNode* start, int flags, C3DObjectCreator* creator) const;
    /// Copies what is below `start` under a node of `dst`. A node that is left out takes what is below it along, except one that is
    /// not selected: what is selected below that goes under the root of `dst`.
    void CopyChilds(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* start, int flags, C3DObjectCreator* creator) const;
    /// Copies a branch, its top selected or not; its new top, or null, with nothing copied, when that was left out.
    C3DSceneNode* CopyNode(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* source, int flags, C3DObjectCreator* creator) const;
    /// Copies a node without what is below it.
    C3DSceneNode* CopySingleNode(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* source, int flags, C3DObjectCreator* creator) const;
    /// Takes the materials of another scene; `flags` and `listed` as in CMaterials::CopyMaterials.
    void CopyMaterials(const C3DScene& from, unsigned int flags, const C3DFaceList::MaterialsMap* listed);
    /// Takes parameters (unless SCENE_COPY_NO_SCENE_DATA) and shares the parser info.
    void Inherit(const C3DScene* from, unsigned int flags);
    /// Gives `dst` the materials that it lacks, unless SCENE_COPY_NO_MATERIALS.
    void InheritNode(C3DScene* dst, C3DSceneNode* node, unsigned int flags) const;
    /// Replaces each object below `start` by what the creator makes of it, for all nodes below `start` that hold it; how many nodes
    /// changed. Linear.
    int ConvertToType(C3DSceneNode* start, C3DObjectCreator* creator);

    // Selection (SceneSelection.cpp)

    enum _SELECT_FLAGS : unsigned int {
        SELECT_ADD = 1,          ///< keeps what is selected
        SELECT_INSTANCES = 2,    ///< with every node that shares the object of a selected one
        SELECT_BRANCH = 4,       ///< with the nodes below
    };
    /// Nothing for null. Linear in the scene at most.
    void Select(C3DSceneNode* node, unsigned int flags);
    void SelectAll();    // not the root
    void SelectNone();
    void Unselect(C3DSceneNode* node);
    bool IsNodeSelected() const;
    /// In walking order; their number.
    unsigned int GetSelectedNodes(CXArray<C3DSceneNode*>& nodes) const;

    // Space and time (SceneTransforms.cpp)

    int GetTickCount() const { return m_currentTime; }
    /// Clamped to the time range; true when the time changed.
    bool SetCurrentTime(int time);
    /// Of the root and of all nodes with object.
    void DeleteAllKeys();
    /// Turns what lies directly under the root, by the matrix keys at time 0, so that a scene of another up axis stands in
    /// the z-up world (`import`), or back. False for UP_AXIS_Z.
    bool OrientScene(_UP_AXIS_MODE mode, bool import);
    void Scale(const C3DTVector<float>& factors);
    /// Exchanges and mirrors axes (geometry/Swap.h) of points, channels, keys (the root's too) and projected maps. Faces keep their
    /// order of corners. False, with nothing changed, for 0 and for codes with two pairs or two mirrors.
    bool SwapCoordinates(int mode);
    /// Bakes the transforms of all nodes below `start` into their objects, which are made unique, and deletes their keys
    /// (below the root: all keys). Always 0.
    int ConvertToGlobalCoordinates(C3DSceneNode* start);

    // Mesh operations on all objects, each in the file of its name in meshops/

    bool DisconnectBorderFaces(unsigned int options, unsigned int pointFlag, unsigned int faceFlag);
    /// Makes coordinates where maps are projections; these maps then use them. True when a channel was made.
    bool GenerateUVW();
    /// Joins the geometric objects of a branch, transforms baked in (Concatenate.cpp). Hidden nodes and empty objects stay out.
    ///
    /// @param destination  where to; null makes a polygon object. Released when nothing came in
    /// @param replace      the branch goes, and the new node stands under the root; otherwise the node is handed over, outside the tree
    /// @param filter       asked for nodes and faces; may be null
    /// @return             the node that holds the destination; null when there is nothing to join
    C3DSceneNode* Concatenate(C3DSceneNode* start, const CXTString<wchar_t>& name, C3DGeomObject* destination, bool replace,
                              C3DFilter* filter, bool includeStart);
    /// One object for each material of a branch; their number.
    int ConcatenateByMaterials(C3DSceneNode* start, bool replace, C3DFilterByMaterial* filter);

    // Parameters (SceneParameters.cpp)

    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }
    CMaterials& GetMaterialList() { return m_materials; }
    const CMaterials& GetMaterialList() const { return m_materials; }

    _UNIT_MODE GetUnit() const;
    void SetUnit(_UNIT_MODE unit);
    /// A scale factor has been set.
    bool IsUnitDefined() const;
    /// Centimetres in a unit; 1 for every other value.
    static double GetUnitFactor(_UNIT_MODE unit);
    /// Centimetres in a scene length of 1; 1 unless set.
    double GetScaleFactor() const;
    void SetScaleFactor(double factor);    // 0 is ignored
    /// A scene length in the scene's unit.
    double ConvertToUnit(double value) const;
    CXTString<wchar_t> GetUnitText(bool abbreviated) const;

    /// Effective angle in radians, the preferences' unless set; also for a null `this`.
    float GetSmoothAngle() const;
    /// Radians; -1 stands for the preferences' angle. Any other value below 0 or above 180.01 is ignored. A change makes the
    /// normals of every object that inherits its angle stale.
    void SetSmoothAngle(float angle, bool alsoPreferences);
    _NormalSmoothMode GetSmoothMode() const;
    /// 0 stands for the preferences' mode.
    void SetSmoothMode(_NormalSmoothMode mode, bool alsoPreferences);
    /// Of every patch, and of those to come; held to C3DPatch::MOST_LEVEL.
    void SetPatchLevel(unsigned int level);

    CFileNameSpec GetFilename() const;
    /// Folder of the file, with its last separator.
    CXTString<wchar_t> GetFilepath() const;
    /// An empty name removes it.
    void SetFilename(const CFileNameSpec& spec);

    // Materials (SceneMaterials.cpp)

    C3DMaterial* CreateNewMaterial(unsigned int id) { return m_materials.CreateNewMaterial(id); }
    /// Null for none; id 0 makes the default material.
    C3DMaterial* GetMaterialByID(unsigned int id) { return m_materials.FindByID(id); }
    C3DMaterial* GetMaterialByID(unsigned int id) const { return m_materials.FindByID(id); }
    C3DMaterial* GetMaterialByName(const CXTString<wchar_t>& name) const { return m_materials.FindByName(name); }
    C3DMaterial* FindMaterial(const C3DMaterial& material, bool byName) const { return m_materials.Find(material, byName); }
    /// Id of what FindMaterial gives; 0xFFFFFFFF for none.
    unsigned int FindMaterialID(const C3DMaterial& material, bool byName) const;
    unsigned int GetMaterialID(const CXTString<wchar_t>& name) const;
    bool RemoveMaterial(unsigned int id) { return m_materials.RemoveMaterial(id); }
    void SetDefaultMaterial(const C3DMaterial& material) { m_materials.SetDefaultMaterial(material); }
    unsigned int GetMaterialNumber() const { return m_materials.GetCount(); }
    /// Walk over the materials by slot: 0xFFFFFFFF is the end.
    unsigned int GetFirstMaterial() const { return m_materials.GetFirst(); }
    C3DMaterial* GetNextMaterial(unsigned int& pos) const;
    /// Counts, under the id of each material, the geometric nodes below `start` that use it; the number of ids. `reset` empties first.
    unsigned int GetMaterials(C3DSceneNode* start, C3DFaceList::MaterialsMap& uses, bool reset) const;
    /// Appends the geometric nodes below `start` that use the material; the size of the array.
    unsigned int GetNodesByMaterial(C3DSceneNode* start, unsigned int materialID, CXArray<C3DSceneNode*>& nodes, bool reset) const;

    // Texture files (SceneTextures.cpp)

    /// Adds a folder in which textures are looked for. False when it is no folder, or is in the list under whatever spelling.
    bool AddTexturePath(const CXTString<wchar_t>& path);
    /// False, with an empty text, behind the end of the list.
    bool GetTexturePath(int index, CXTString<wchar_t>& path) const;
    /// The size of the array, which is emptied first unless `append`.
    int GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const;
    /// Of these the ones that AddTexturePath brought. Those that a file names are none: the file chose them.
    const CXArray<CXTString<wchar_t>>& GetHostTexturePaths() const { return m_hostTexturePaths; }
    /// File names of the diffuse maps of all materials, as they stand in the maps; empties the array first.
    void GetLinkedFiles(CXArray<CXTString<wchar_t>>& files, bool) const;

    // On the way in and out (io/: Checkout.cpp, ExportPreparation.cpp, MoveTextures.cpp)

    /// Brings what a parser delivered into the state that the rest of the system counts on, then does what the import flags ask for.
    /// Repairs and steps that changed something become lines of the log. Nothing with IMPORT_NO_CHECKOUT.
    ///
    /// Cost without flags: a pass over points and corners of each object.
    void CheckoutImport(CSceneImportOptions& options);
    /// The scene to write: a copy, in CSceneExportOptions::exportScene until ReleaseExport, or with EXPORT_IN_PLACE this scene itself,
    /// turned into what the export flags and limits allow. Null when nothing is left to save (with EXPORT_IN_PLACE this scene all the same).
    C3DScene* InitExport(CSceneExportOptions& options);
    /// The preparation alone, on `working`. False for null, and when no object is left.
    static bool InitExport(CSceneExportOptions& options, C3DScene* working);
    static void ReleaseExport(CSceneExportOptions& options);
    /// Copies the files of diffuse maps to a folder and lets the maps name the copies.
    ///
    /// @param scenePath      file for which the scene is prepared; its maps then are named relative to its folder
    /// @param textureFolder  where to; relative to that folder, or absolute. Made when missing
    /// @param options        flags, limits and log; may be null
    /// @return               false when the folder cannot be made
    ///
    /// A file outside the folder that the scene came from and outside the texture paths stays where it is, unless the options say
    /// otherwise: what a file names is not to be trusted.
    bool MoveTextures(const CXTString<wchar_t>& scenePath, const CXTString<wchar_t>& textureFolder, CSceneExportOptions* options);

    // Joining scenes (io/Merge.cpp)

    /// Moves all nodes of another scene under `parent` (null: the root) and joins materials of equal parameters. Objects whose ids this
    /// scene has already get new ones. `other` is given up, one reference of it. False, with nothing changed, for null, for this
    /// scene, and for a parent that is not in this scene.
    bool Merge(C3DScene* other, C3DSceneNode* parent);
    /// Copies another scene into this one, with its parameters (unless SCENE_COPY_NO_SCENE_DATA) and parser info. False for null.
    bool AddScene(const C3DScene* other, int flags, C3DObjectCreator* creator);

    // What a parser keeps with the scene

    /// Nothing for null data; releases what was there.
    void SetParserData(bool owner, unsigned int size, void* data);
    /// The data and its size, or null and 0. With `detach` the caller owns it and the scene forgets it.
    void* GetParserData(unsigned int& size, bool detach);
    void ReleaseParserInfo();

protected:
    ~C3DScene() override;

    /// Names, points, faces and channels of all objects, then the order of siblings (io/Checkout.cpp).
    void CheckoutNode(CSceneImportOptions& options);
    /// Copies one texture into `folder` (io/MoveTextures.cpp). True when it was copied; its new name goes to `newPath`.
    bool MoveTextureFile(const CXTString<wchar_t>& source, const CXTString<wchar_t>& folder, CXTString<wchar_t>& newPath,
                         CSceneExportOptions* options);

private:
    friend class C3DNodePos;
    void SortSiblings();
    bool PassesWalk(const C3DSceneNode* node, C3DNodePos& pos) const;
    void Advance(C3DNodePos& pos) const;
    static void SetBranchScene(C3DSceneNode* node, C3DScene* scene);

    CParserSceneInfo* m_parserInfo = nullptr;
    CCustomData m_customData;
    CXArray<CXTString<wchar_t>> m_hostTexturePaths;
    CMaterials m_materials;
    int m_currentTime = 0;
};
