#pragma once

#include "geometry/4x4Matrix.h"
#include "scene/BaseObject.h"
#include "scene/Forward.h"
#include "scene/Keyframable.h"
#include "tools/CustomData.h"
#include "tools/Tree.h"

enum _SCENE_NODE_FLAGS : unsigned int {
    NODE_HIDDEN = 1,
    NODE_SELECTED = 2,
};

/// Node of the scene tree: name, keys of its transform, and one reference on an object, which several nodes may share.
///
/// A node outside a tree belongs to whoever made it and ends through Delete (CTree::DeleteBranch with what is below it).
/// `time` arguments are frames. Matrices take columns: the translation is the last column, `a * b` applies b first.
class ZEL_API C3DSceneNode : public CTreeNode, public C3DKeyframable {
    ZEL_DECLARE_CREATABLE(C3DSceneNode)
public:
    C3DSceneNode();
    C3DSceneNode(const C3DSceneNode&) = delete;
    ~C3DSceneNode() override;
    static C3DSceneNode* Create();

    // Virtual operations, in the order of their slots

    /// Keys, flags, name, custom data and the object, which is a reference where an earlier node of the stream holds it
    /// (SceneNodeStream.cpp).
    void Serialize(CXArchive& ar) override;
    CXTString<wchar_t> GetDisplayName() const override;
    /// Destroys the node; false for a null `this`.
    virtual bool Delete();
    /// Those of the object.
    virtual void PreSerialize(CXArchive& ar, bool first);
    virtual void PostSerialize(CXArchive& ar, bool last);
    /// Copies nothing: nodes have an identity. Copy and Inherit are the ways.
    virtual C3DSceneNode& operator=(const C3DSceneNode& other);

    // The node itself (SceneNode.cpp)

    const CXTString<wchar_t>& GetName() const;
    /// False as long as GetName gives the name of those that have none.
    bool HasName() const { return m_named && !m_name.IsEmpty(); }
    void SetName(const CXTString<wchar_t>& name);
    unsigned int GetNodeID() const { return m_nodeID; }
    C3DScene* GetScene() const { return m_scene; }
    /// The object follows: it names a scene as long as a node of that scene holds it.
    void SetScene(C3DScene* scene);
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }
    CTreeNode* GetTreeNode() { return this; }
    const CTreeNode* GetTreeNode() const { return this; }

    /// All given bits set.
    bool IsFlagSet(unsigned int flags) const { return (m_flags & flags) == flags; }
    bool IsOneFlagSet(unsigned int flags) const { return (m_flags & flags) != 0; }
    void SetFlag(_SCENE_NODE_FLAGS flags, bool set) { m_flags = set ? m_flags | flags : m_flags & ~flags; }
    unsigned int GetFlags() const { return m_flags; }
    /// All given bits set in the node's own update word.
    bool IsInvalidate(unsigned int flags) const { return (m_updateFlags & flags) == flags; }
    /// Takes change reports; exactly 1 (with nothing else of 0x1000FFFF) touches NODE_UPDATE_DISPLAY.
    void Invalidate(unsigned int flags, bool set);
    void SetInvalidateFlag(unsigned int flags, bool set);
    void Update(unsigned int) {}

    /// Takes over one reference on the object (null: none). The old one is given up when `deleteOld`.
    void SetObject(C3DBaseObject* object, bool deleteOld);
    C3DBaseObject* GetBaseObject(int time = 0) const;
    /// What is measured and drawn for the object; null without one.
    C3DBaseObject* GetFinalObject(int time = 0) const;
    /// The object when it is geometric, else null.
    C3DGeomObject* GetGeomObject(int time = 0) const;
    _OBJECT_KINDOF GetObjectKindOf() const { return m_objectKind; }
    bool IsGeomObject() const { return (m_objectKind & OBJECT_GEOMETRIC) != 0; }
    /// Id of the object, which must be there.
    unsigned int GetObjectID() const { return m_object->GetObjectID(); }

    C3DSceneNode* GetParent() const { return static_cast<C3DSceneNode*>(GetParentNode()); }

    // Transforms (NodeTransforms.cpp)

    /// Matrix, translation, rotation and scale keys, as far as there are any, multiplied in that order.
    void GetObjectLocalTM(int time, C4x4TMatrix<float>& matrix) const;
    /// From the node's space to the scene's: the local transforms of the parents on the left (the root's `withRoot`), and the
    /// pivot of the node itself. Cost: linear in the depth; CNodeWalkTM gives the matrices of a whole walk.
    void GetNodeTM(int time, C4x4TMatrix<float>& matrix, bool withRoot) const;
    /// To the parent's space, the pivots of both included.
    void GetNodeLocalTM(int time, C4x4TMatrix<float>& matrix) const;
    /// Moves the pivot by (max - min) * relative + min + offset of the object's box; the points move the other way, so that the object
    /// stays in place. The object is made unique.
    void CenterPivotOnCG(const C3DTVector<float>& relative, const C3DTVector<float>& offset);
    /// Bakes the local transform and the pivot into the object, which is made unique, and deletes the keys. False, with nothing
    /// changed, for an identity (tolerance 0.005).
    bool ConvertToGlobalCoordinates(int time);
    /// The same with a given matrix and without tolerance.
    bool ConvertToGlobalCoordinates(const C4x4TMatrix<float>& matrix);
    /// Exchanges and mirrors axes (geometry/Swap.h): of the object's points and channels, and of the keys.
    void SwapPoints(unsigned int mode);
    void SwapTransformations(unsigned int mode);
    /// Mean of the box centres, in scene coordinates, of this node's object and those below; false, with zeros, for none.
    bool GetCG(int time, C3DTPoint<float>& center) const;

    // Boxes (NodeBox.cpp)

    /// Box of the node and all below it in scene coordinates (_BOX_FLAGS in scene/GeomObject.h).
    ///
    /// @param value1  point filter, or with BOX_NODE_FLAGS node flags that nodes below must all have
    /// @param value2  kind mask for BOX_KINDS and BOX_NOT_KINDS
    /// @return        false with zeros when nothing was measured; false with the outputs untouched for a null `this` or
    ///                without BOX_FACES and BOX_POINTS
    ///
    /// Every object's box is transformed corner by corner: a box of boxes, not of points. The node's own flags and kind do
    /// not count. Cost: linear in the nodes below, plus the object boxes that are stale.
    bool GetBoundingBox(int time, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags, unsigned int value1 = 0,
                        unsigned int value2 = 0) const;

    // Copies and instances (NodeCopy.cpp)

    /// A detached node with the object copied by the same flags (_COPY_FLAGS); null when the object cannot be.
    C3DSceneNode* Copy(int copyFlags, C3DObjectCreator* creator) const;
    using CTreeNode::Copy;
    /// The same of the whole branch. Nodes that share an object share its copy. With a parent the branch goes below it,
    /// into its scene; without one it belongs to the caller. Null for a null `this`. Any depth.
    C3DSceneNode* CopyBranch(C3DSceneNode* parent, int copyFlags, C3DObjectCreator* creator) const;
    /// Flags, name, custom data and keys; with COPY_FOREIGN_SCENE in `value` also the node id.
    void Inherit(const C3DSceneNode* from, int value);
    /// Gives the node an object of its own in place of a shared one; false when it is not shared.
    bool DeleteObjectInstanciation();
    /// Whether the object is shared; with `wholeBranch`, whether all geometric objects below the node are.
    bool IsObjectIntanciated(bool wholeBranch) const;

    using CTreeNode::operator==;

private:
    bool GetInternalBox(const C4x4TMatrix<float>& matrix, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags,
                        unsigned int pointFilter) const;
    void ApplyPivot(int time, C4x4TMatrix<float>& matrix) const;
    /// Without giving up what was held.
    void Hold(C3DBaseObject* object);
    friend class CNodeWalkTM;

    // What walks look at comes first, next to the links and the keys.
    _OBJECT_KINDOF m_objectKind = {};    ///< of the object, for walks that do not go there
    unsigned int m_nodeID;
    C3DBaseObject* m_object = nullptr;
    C3DScene* m_scene = nullptr;
    CCustomData m_customData;
    unsigned int m_flags = 0;
    unsigned int m_updateFlags = 0;
    bool m_named = false;    ///< false: still has the default name, which costs nothing
    CXTString<wchar_t> m_name;
};
