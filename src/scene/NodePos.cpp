#include "scene/NodePos.h"

#include "scene/3DScene.h"
#include "scene/Filter.h"
#include "scene/GeomObject.h"

C3DInstanceID::~C3DInstanceID() = default;

C3DNodePos::C3DNodePos(const C3DNodePos& other)
    : m_scene(other.m_scene), m_filter(other.m_filter), m_kindMask(other.m_kindMask), m_mode(other.m_mode), m_node(other.m_node),
      m_stop(other.m_stop), m_visited(other.m_visited)
{
    m_visited->AddRef();
}

C3DNodePos& C3DNodePos::operator=(const C3DNodePos& other)
{
    other.m_visited->AddRef();
    DeleteMe(m_visited);
    m_scene = other.m_scene;
    m_filter = other.m_filter;
    m_kindMask = other.m_kindMask;
    m_mode = other.m_mode;
    m_node = other.m_node;
    m_stop = other.m_stop;
    m_visited = other.m_visited;
    return *this;
}

C3DNodePos::~C3DNodePos() { DeleteMe(m_visited); }

bool C3DNodePos::TakesKind(const C3DSceneNode* node) const
{
    const unsigned int kind = node->GetObjectKindOf();
    return kind == 0 ? (m_mode & EMPTY_NODES) != 0 : (m_kindMask & kind) != 0;
}

void C3DNodePos::SetFilter(const C3DFilter* filter)
{
    m_filter = filter;
    if (m_filter && m_node && !m_filter->ProcessNode(m_node))
        m_scene->GetNextNode(*this);
}

void C3DNodePos::AddObjectID(unsigned int id)
{
    if (m_visited)
        m_visited->Insert(id);
    if (m_node && m_node->GetBaseObject() && m_node->GetObjectID() == id)
        m_scene->GetNextNode(*this);
}

bool C3DNodePos::CheckObjectID(unsigned int id) const { return m_visited && m_visited->Find(id); }

C3DNodePos C3DScene::GetFirstNode(const C3DSceneNode* start, unsigned int iterFlags, const C3DSceneNode* stop) const
{
    return GetFirstNode(OBJECT_ANY, iterFlags, start, stop);
}

C3DNodePos C3DScene::GetFirstNode(unsigned int kindMask, unsigned int iterFlags, const C3DSceneNode* start, const C3DSceneNode* stop) const
{
    C3DNodePos pos;
    pos.m_scene = this;
    pos.m_kindMask = kindMask;
    if (iterFlags & ITER_EMPTY_NODES)
        pos.m_mode |= C3DNodePos::EMPTY_NODES;
    pos.m_stop = iterFlags & ITER_SUBTREE ? start : stop;
    if (iterFlags & ITER_UNIQUE_OBJECTS)
        pos.m_visited = new C3DInstanceID;

    if (iterFlags & ITER_INCLUDE_START && start && !IsSceneRoot(start)) {
        pos.m_node = const_cast<C3DSceneNode*>(start);
        // The walk would look for what follows a leaf outside its own bounds.
        if (pos.m_stop == start && !start->GetFirstChild())
            pos.m_mode |= C3DNodePos::ONE_NODE;
    } else
        pos.m_node = static_cast<C3DSceneNode*>(CTree::GetFirstNode(start));

    if (pos.m_node && !pos.TakesKind(pos.m_node))
        GetNextNode(pos);
    if (pos.m_visited && pos.m_node && pos.m_node->GetBaseObject())
        pos.m_visited->Insert(pos.m_node->GetObjectID());
    return pos;
}

/// Tests a node of a walk, in this order; a shared object that passes counts as visited from here on.
bool C3DScene::PassesWalk(const C3DSceneNode* node, C3DNodePos& pos) const
{
    if (!pos.TakesKind(node) || (pos.m_filter && !pos.m_filter->ProcessNode(node)))
        return false;
    const C3DBaseObject* object = node->GetBaseObject();
    return !pos.m_visited || !object || !object->IsInstanciated() || pos.m_visited->Insert(object->GetObjectID());
}

void C3DScene::Advance(C3DNodePos& pos) const
{
    if (pos.m_mode & C3DNodePos::ONE_NODE) {
        pos.m_node = nullptr;
        return;
    }
    do
        pos.m_node = static_cast<C3DSceneNode*>(CTree::GetNextNode(pos.m_node, pos.m_stop));
    while (pos.m_node && !PassesWalk(pos.m_node, pos));
}

C3DSceneNode* C3DScene::GetNextNode(C3DBaseObject*& object, C3DNodePos& pos) const
{
    if (IsSceneRoot(pos.m_node))
        pos.m_node = static_cast<C3DSceneNode*>(CTree::GetFirstNode(pos.m_node));
    C3DSceneNode* node = pos.m_node;
    object = node ? node->GetBaseObject() : nullptr;
    if (node)
        Advance(pos);
    return node;
}

C3DSceneNode* C3DScene::GetNextNode(C3DGeomObject*& object, C3DNodePos& pos) const
{
    C3DBaseObject* base;
    C3DSceneNode* node = GetNextNode(base, pos);
    object = static_cast<C3DGeomObject*>(base);
    return node;
}

C3DSceneNode* C3DScene::GetNextNode(C3DNodePos& pos) const
{
    C3DBaseObject* object;
    return GetNextNode(object, pos);
}
