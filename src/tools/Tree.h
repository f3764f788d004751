#pragma once

#include "tools/Object.h"
#include "tools/String.h"

class CTree;

/// Node of a CTree: parent, first and last child, siblings on both sides, so that every step and edit is constant time.
class ZEL_API CTreeNode : public CXObject {
    ZEL_DECLARE_DYNAMIC(CTreeNode)
public:
    /// Leaves its tree and lets its children go; destroys no other node: trees do.
    ~CTreeNode() override;
    void Serialize(CXArchive& ar) override;
    /// Destroys the node. Called by the tree for each node that it drops.
    virtual void DeleteNode();
    virtual CXTString<wchar_t> GetDisplayName() const;
    /// A new detached node; null here.
    virtual CTreeNode* Copy(unsigned int flags) const;
    /// Whether both stand for the same thing; here, whether they are the same node.
    virtual bool operator==(const CTreeNode& other) const;

    CTreeNode* GetParentNode() const { return m_parent; }
    CTreeNode* GetFirstChild() const { return m_firstChild; }
    CTreeNode* GetLastChild() const { return m_lastChild; }
    CTreeNode* GetNextSibling() const { return m_next; }
    CTreeNode* GetPrevSibling() const { return m_prev; }

protected:
    CTreeNode() = default;

private:
    friend class CTree;
    void Unlink();

    CTreeNode* m_parent = nullptr;
    CTreeNode* m_firstChild = nullptr;
    CTreeNode* m_lastChild = nullptr;
    CTreeNode* m_prev = nullptr;
    CTreeNode* m_next = nullptr;
};

/// Ordered tree under one root that always exists. Walks are depth-first, parent first, and need neither recursion nor
/// memory, so that depth does not matter. The tree owns its nodes.
class ZEL_API CTree : public CXObject {
    ZEL_DECLARE_DYNAMIC(CTree)
public:
    CTree() = default;
    ~CTree() override;
    CTree(const CTree&) = delete;
    CTree& operator=(const CTree&) = delete;

    /// The root and all nodes, each by its class, parent first; a node is linked before the next one is read. Loading
    /// destroys all nodes; a root that is of the stored class stays and reads its fields, another one is replaced.
    void Serialize(CXArchive& ar) override;

    CTreeNode* GetRoot() const { return m_root; }
    /// Makes detached `root` the root. Ignored when there is one.
    void SetRoot(CTreeNode* root);

    /// Adds a detached node, with what is below it, under `parent` (null: the root), as the last child or the first. False
    /// for null, for a node that has a parent or is the root, and for circles.
    bool AddChild(CTreeNode* parent, CTreeNode* node, bool last);
    /// Adds a detached node right after `left` among its siblings. False when `left` is the root.
    bool AddRight(CTreeNode* left, CTreeNode* node);
    /// Destroys the node and all below it. Returns the node from which a walk goes on: the one before the branch, perhaps the
    /// root, so that GetNextNode of it is what followed the branch. Null for null. The root itself stays; for it DeleteAll
    /// runs, and the result is null.
    CTreeNode* DeleteNode(CTreeNode* node);
    /// Takes the node with its branch out of the tree; the caller owns it. Returns as DeleteNode. The root cannot be taken:
    /// null.
    CTreeNode* RemoveNode(CTreeNode* node);
    /// Destroys all nodes but the root.
    void DeleteAll();
    /// Moves `node` with its branch under `parent` as the last child. False when that would close a circle.
    bool MoveNode(CTreeNode* node, CTreeNode* parent);
    /// Moves `child` right after `node` among the children of `node`'s parent. False for the root and for circles.
    bool MoveRight(CTreeNode* node, CTreeNode* child);
    /// Puts detached `newNode` in the place of `oldNode`, which is destroyed; the root can be replaced too. False for null,
    /// for nodes that are not what they should be, and for circles. With `keepChildren` the children of the old
    /// node go to the new one, behind its own; else they are destroyed too.
    bool ReplaceNode(CTreeNode* newNode, CTreeNode* oldNode, bool keepChildren);

    /// First node of a walk below `start` (null: the root): its first child, or null.
    CTreeNode* GetFirstNode(const CTreeNode* start) const;
    /// The node after `node`; after the root, its first child. The walk stays below `stop` and ends with null; a null `stop`
    /// bounds it by the tree.
    CTreeNode* GetNextNode(const CTreeNode* node, const CTreeNode* stop) const;
    /// Number of steps up to the root, 0 for the root.
    unsigned int GetDepth(const CTreeNode* node) const;
    /// True when `node` is `ancestor` or lies below it.
    static bool IsBelow(const CTreeNode* node, const CTreeNode* ancestor);

    /// Destroys the node with all below it, detached or not, the root excepted.
    static void DeleteBranch(CTreeNode* node);

protected:
    /// MoveNode for a caller who knows that no circle closes. Constant time at any depth.
    static void Relink(CTreeNode* node, CTreeNode* parent);

private:
    static CTreeNode* NodeBefore(const CTreeNode* node);
    static void Link(CTreeNode* parent, CTreeNode* left, CTreeNode* node);
    bool IsFree(const CTreeNode* node) const;
    void Store(CXArchive& ar) const;
    void Load(CXArchive& ar);

    CTreeNode* m_root = nullptr;
};
