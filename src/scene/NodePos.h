#pragma once

#include "scene/Forward.h"
#include "tools/Hash.h"
#include "tools/Object.h"

/// Flags of C3DScene::GetFirstNode.
enum _ITER_FLAGS : unsigned int {
    ITER_UNIQUE_OBJECTS = 1,    ///< of the nodes that share an object only the first
    ITER_INCLUDE_START = 2,     ///< the start node comes first (never the root)
    ITER_SUBTREE = 4,           ///< only below the start node
    ITER_EMPTY_NODES = 8,       ///< nodes without object too, whatever the mask
};

/// Set of object ids that a walk has visited, shared by the copies of a position.
class ZEL_API C3DInstanceID : public CHashTable<unsigned int>, public CInstanciatedObject {
public:
    C3DInstanceID() = default;

protected:
    ~C3DInstanceID() override;
};

/// Place in a walk over a scene. The usual loop:
///
///     for (C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL, 0, nullptr, nullptr); pos;)
///         if (C3DSceneNode* node = scene->GetNextNode(pos)) ...
///
/// The node that GetNextNode is about to return is settled in advance: it may be changed during the walk, but only be
/// removed through C3DScene::RemoveNode with the position.
class ZEL_API C3DNodePos {
public:
    C3DNodePos() = default;
    C3DNodePos(const C3DNodePos& other);
    C3DNodePos& operator=(const C3DNodePos& other);
    virtual ~C3DNodePos();

    explicit operator bool() const { return m_node != nullptr; }
    /// The node that GetNextNode returns next.
    C3DSceneNode* GetNode() const { return m_node; }
    /// From here on nodes must pass the filter (null: none), which stays the caller's. Moves on when the current one does not.
    void SetFilter(const C3DFilter* filter);
    /// Counts an object as visited in a walk over unique objects. Moves on when the current node holds it.
    void AddObjectID(unsigned int id);
    bool CheckObjectID(unsigned int id) const;

private:
    friend class C3DScene;

    enum Mode : unsigned int { ONE_NODE = 1, EMPTY_NODES = 2 };
    bool TakesKind(const C3DSceneNode* node) const;

    const C3DScene* m_scene = nullptr;
    const C3DFilter* m_filter = nullptr;
    unsigned int m_kindMask = 0xFFFFFFFF;
    unsigned int m_mode = 0;
    C3DSceneNode* m_node = nullptr;
    const C3DSceneNode* m_stop = nullptr;
    C3DInstanceID* m_visited = nullptr;
};
