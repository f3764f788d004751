#include <utility>
#include <vector>

#include "scene/3DScene.h"
#include "scene/ObjectCreator.h"
#include "scene/ParserSceneInfo.h"
#include "tools/FourCC.h"

static constexpr unsigned int SOURCE_NODE = FourCC("RFNO");

// Copies of nodes

namespace {

/// One run of a copy, into another scene or into the same one.
///
///   share    an object that several nodes hold is copied for the first of them and shared again by the others
///   ids      a copy for another scene keeps its id, unless an object that is there already has it
///   attach   in the same scene nothing enters the tree before the run ends: a parent that lies inside the source would make
///            the source grow for ever
class CSceneCopier {
public:
    /// `parent`: where the run puts what it copies, never null.
    CSceneCopier(C3DScene& to, C3DSceneNode* parent, bool foreign, C3DObjectCreator* creator)
        : m_to(to), m_parent(parent), m_foreign(foreign), m_givenCreator(creator), m_creator(creator ? creator : &m_standard)
    {
    }
    CSceneCopier(const CSceneCopier&) = delete;
    ~CSceneCopier()
    {
        for (const auto& [parent, node] : m_pending)
            m_to.AddNode(parent, node);
    }

    /// The copy of one node, below `parent`; null when it is left out or cannot be copied.
    C3DSceneNode* Copy(C3DSceneNode* parent, const C3DSceneNode* source, int flags);
    void CopyBelow(C3DSceneNode* parent, const C3DSceneNode* start, int flags, bool onlySelected);

private:
    C3DSceneNode* CopyWithObject(const C3DSceneNode* source);
    bool FindSharedCopy(const C3DBaseObject* object, C3DBaseObject*& copy);
    void RememberCopy(const C3DBaseObject* object, C3DBaseObject* copy);
    C3DBaseObject* FindInDestination(unsigned int id);
    void Attach(C3DSceneNode* parent, C3DSceneNode* node);

    C3DScene& m_to;
    C3DSceneNode* const m_parent;
    const bool m_foreign;
    C3DObjectCreator m_standard;
    C3DObjectCreator* const m_givenCreator;
    C3DObjectCreator* const m_creator;
    CHashMap<const C3DBaseObject*, C3DBaseObject*> m_sharedCopies;
    std::vector<std::pair<C3DSceneNode*, C3DSceneNode*>> m_pending;
    CHashMap<unsigned int, C3DBaseObject*> m_destination;    ///< objects of the destination by id
    enum { NOT_ASKED, ASKED_ONCE, INDEXED } m_destinationState = NOT_ASKED;
};

bool IsLeftOut(const C3DSceneNode* node, int flags)
{
    static constexpr struct {
        _SCENE_COPY_FLAGS flag;
        _OBJECT_KINDOF kind;
    } KINDS[] = {
        {SCENE_COPY_NO_CURVES, OBJECT_CURVE},
        {SCENE_COPY_NO_PATCHES, OBJECT_PATCH},
        {SCENE_COPY_NO_POLYGONS, OBJECT_POLYGONAL},
        {SCENE_COPY_NO_GROUPS, OBJECT_GROUP},
    };
    if (flags & SCENE_COPY_NO_HIDDEN && node->IsFlagSet(NODE_HIDDEN))
        return true;
    for (const auto& row : KINDS) {
        if (flags & row.flag && node->GetObjectKindOf() == row.kind)
            return true;
    }
    return false;
}

void CSceneCopier::CopyBelow(C3DSceneNode* parent, const C3DSceneNode* start, int flags, bool onlySelected)
{
    struct Level {
        const CTreeNode* next;    // of the children that are left to copy
        C3DSceneNode* parent;
    };
    std::vector<Level> levels{{start->GetFirstChild(), parent}};
    while (!levels.empty()) {
        Level& level = levels.back();
        const auto* source = static_cast<const C3DSceneNode*>(level.next);
        if (!source) {
            levels.pop_back();
            continue;
        }
        level.next = source->GetNextSibling();
        C3DSceneNode* const below = level.parent;
        const bool flatten = flags & SCENE_COPY_FLATTEN;
        const int levelFlags = flatten && levels.size() > 1 ? flags | SCENE_COPY_NO_GROUPS : flags;
        C3DSceneNode* copy = nullptr;
        if (!onlySelected || source->IsFlagSet(NODE_SELECTED))
            copy = Copy(below, source, levelFlags);

        if (!source->GetFirstChild() || flags & SCENE_COPY_ONE_LEVEL)
            continue;
        if (flatten)
            levels.push_back({source->GetFirstChild(), below});
        else if (copy || onlySelected)    // a node that was refused, not passed over, takes its branch along
            levels.push_back({source->GetFirstChild(), copy ? copy : m_to.GetRoot()});
    }
}

C3DSceneNode* CSceneCopier::Copy(C3DSceneNode* parent, const C3DSceneNode* source, int flags)
{
    if (!m_creator->CanProcess(source, source->GetBaseObject()) || IsLeftOut(source, flags))
        return nullptr;
    C3DSceneNode* copy = CopyWithObject(source);
    if (!copy)
        return nullptr;
    Attach(parent, copy);
    if (flags & SCENE_COPY_REMEMBER_SOURCE) {
        const std::uint64_t address = reinterpret_cast<std::uintptr_t>(source);
        copy->GetCustomData().SetData(SOURCE_NODE, &address, sizeof(address));
    }
    return copy;
}

C3DSceneNode* CSceneCopier::CopyWithObject(const C3DSceneNode* source)
{
    int copyFlags = m_foreign ? COPY_FOREIGN_SCENE : 0;
    const C3DBaseObject* object = source->GetBaseObject();
    if (!object)
        return source->Copy(copyFlags, m_creator);

    C3DBaseObject* shared;
    if (object->IsInstanciated() && FindSharedCopy(object, shared)) {
        if (!shared)
            return nullptr;
        C3DSceneNode* copy = source->Copy(copyFlags | COPY_NO_OBJECT, m_creator);
        copy->SetObject(shared->Copy(COPY_INSTANCE, m_creator), true);
        return copy;
    }
    if (m_foreign && FindInDestination(object->GetObjectID()))
        copyFlags = 0;    // the id is taken: two scenes may come from one file
    C3DSceneNode* copy = source->Copy(copyFlags, m_creator);
    if (copy)
        RememberCopy(object, copy->GetBaseObject());
    return copy;
}

/// The copy of a shared object from this run, or from an earlier one with the same creator; true with null for one that has
/// left the destination, or never was there.
bool CSceneCopier::FindSharedCopy(const C3DBaseObject* object, C3DBaseObject*& copy)
{
    if (m_sharedCopies.Find(object, copy))
        return true;
    unsigned int id;
    if (!m_givenCreator || !m_givenCreator->GetObjectMap().Find(object->GetObjectID(), id))
        return false;
    copy = FindInDestination(id);
    return true;
}

void CSceneCopier::RememberCopy(const C3DBaseObject* object, C3DBaseObject* copy)
{
    if (object->IsInstanciated())
        m_sharedCopies.Insert(object, copy);
    if (m_givenCreator)
        m_givenCreator->GetObjectMap().Insert(object->GetObjectID(), copy->GetObjectID());
    if (m_destinationState == INDEXED)
        m_destination.Insert(copy->GetObjectID(), copy);
}

/// As C3DScene::GetObjectByID, the root's object too. The first question is answered by a walk, so that the copy of one node needs no table.
C3DBaseObject* CSceneCopier::FindInDestination(unsigned int id)
{
    C3DBaseObject* const ofRoot = m_to.GetRoot()->GetBaseObject();
    if (ofRoot && ofRoot->GetObjectID() == id)
        return ofRoot;
    if (m_destinationState == NOT_ASKED) {
        m_destinationState = ASKED_ONCE;
        return m_to.GetObjectByID(id);
    }
    if (m_destinationState == ASKED_ONCE) {
        m_destinationState = INDEXED;
        C3DBaseObject* object;
        for (C3DNodePos pos = m_to.GetFirstNode(OBJECT_ANY); pos;) {
            m_to.GetNextNode(object, pos);
            m_destination.Insert(object->GetObjectID(), object);
        }
    }
    C3DBaseObject** found = m_destination.Find(id);
    return found ? *found : nullptr;
}

void CSceneCopier::Attach(C3DSceneNode* parent, C3DSceneNode* node)
{
    const bool insideTree = parent == m_parent || m_to.IsSceneRoot(parent);
    if (!m_foreign && insideTree)
        m_pending.emplace_back(parent, node);
    else
        m_to.AddNode(parent, node);
}

}

C3DSceneNode* C3DScene::CopySingleNode(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* source, int flags,
                                       C3DObjectCreator* creator) const
{
    if (!dst || !source)
        return nullptr;
    if (!parent)
        parent = dst->GetRoot();
    C3DSceneNode* copy = CSceneCopier(*dst, parent, dst != this, creator).Copy(parent, source, flags);
    if (copy)
        InheritNode(dst, source, flags);
    return copy;
}

C3DSceneNode* C3DScene::CopyNode(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* source, int flags, C3DObjectCreator* creator) const
{
    if (!dst || !source)
        return nullptr;
    if (!parent)
        parent = dst->GetRoot();
    const bool onlySelected = flags & SCENE_COPY_SELECTED && IsNodeSelected();
    C3DSceneNode* copy;
    {
        CSceneCopier copier(*dst, parent, dst != this, creator);
        copy = copier.Copy(parent, source, flags);
        if (!copy)
            return nullptr;
        copier.CopyBelow(copy, source, flags, onlySelected);
    }
    InheritNode(dst, source, flags);
    return copy;
}

void C3DScene::CopyChilds(C3DScene* dst, C3DSceneNode* parent, C3DSceneNode* start, int flags, C3DObjectCreator* creator) const
{
    if (!dst)
        return;
    if (!parent)
        parent = dst->GetRoot();
    if (!start)
        start = GetRoot();
    const bool onlySelected = flags & SCENE_COPY_SELECTED && IsNodeSelected();
    CSceneCopier(*dst, parent, dst != this, creator).CopyBelow(parent, start, flags, onlySelected);
    InheritNode(dst, start, flags);
}

// Copies of scenes

C3DScene* C3DScene::Copy(C3DSceneNode* start, int flags, C3DObjectCreator* creator) const
{
    C3DScene* copy = Create();
    CopyChilds(copy, nullptr, start, flags, creator);
    if (!copy->GetRoot()->GetFirstChild()) {
        DeleteMe(copy);
        return nullptr;
    }
    copy->Inherit(this, flags);
    // The whole scene stands where, and when, it stood.
    if (!start || IsSceneRoot(start)) {
        copy->GetRoot()->Inherit(GetRoot(), COPY_FOREIGN_SCENE);
        copy->GetRoot()->GetBaseObject()->InheritFlags(*GetRoot()->GetBaseObject(), COPY_FOREIGN_SCENE);
    }
    copy->m_currentTime = m_currentTime;
    return copy;
}

void C3DScene::CopyMaterials(const C3DScene& from, unsigned int flags, const C3DFaceList::MaterialsMap* listed)
{
    if (&from != this)
        m_materials.CopyMaterials(from.m_materials, flags, listed);
}

void C3DScene::Inherit(const C3DScene* from, unsigned int flags)
{
    if (!from || from == this)
        return;
    if (!(flags & SCENE_COPY_NO_SCENE_DATA)) {
        m_customData = from->m_customData;
        m_hostTexturePaths = from->m_hostTexturePaths;
    }
    if (from->m_parserInfo)
        from->m_parserInfo->AddRef();    // before ours goes: it may be the same
    ReleaseParserInfo();
    m_parserInfo = from->m_parserInfo;
}

void C3DScene::InheritNode(C3DScene* dst, C3DSceneNode*, unsigned int flags) const
{
    if (dst && dst != this && !(flags & SCENE_COPY_NO_MATERIALS))
        dst->m_materials.CopyMaterials(m_materials, CMaterials::COPY_ONLY_NEW, nullptr);
}

// Conversion in place

int C3DScene::ConvertToType(C3DSceneNode* start, C3DObjectCreator* creator)
{
    if (!creator)
        return 0;
    // Settled before anything is converted: the objects below `start` in walking order, each with the chain of its nodes.
    constexpr int LAST = -1;
    struct Entry {
        C3DSceneNode* node;
        int next, last;
        bool first;
    };
    std::vector<Entry> entries;
    CHashMap<const C3DBaseObject*, int> chains;
    C3DBaseObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_SUBTREE, start); pos;) {
        C3DSceneNode* node = GetNextNode(object, pos);
        const int index = static_cast<int>(entries.size());
        const bool first = !object->IsInstanciated() || chains.Insert(object, index);
        entries.push_back({node, LAST, index, first});
        if (!first) {
            Entry& head = entries[*chains.Find(object)];
            entries[head.last].next = index;
            head.last = index;
        }
    }

    int converted = 0;
    for (const Entry& entry : entries) {
        object = entry.node->GetBaseObject();
        if (!entry.first || !creator->CanProcess(entry.node, object))
            continue;
        C3DBaseObject* made = creator->ConvertToType(entry.node, object);
        if (!made || made == object)
            continue;
        entry.node->SetObject(made, true);
        converted++;
        for (int i = entry.next; i != LAST; i = entries[i].next, converted++)
            entries[i].node->SetObject(made->Copy(COPY_INSTANCE, creator), true);
    }
    return converted;
}
