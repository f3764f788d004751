#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "scene/ObjectCreator.h"
#include "tools/Hash.h"

void C3DSceneNode::Inherit(const C3DSceneNode* from, int value)
{
    if (!from || from == this)
        return;
    m_flags = from->m_flags;
    m_named = from->m_named;
    m_name = from->m_name;
    m_customData = from->m_customData;
    C3DKeyframable::operator=(*from);
    if (value & COPY_FOREIGN_SCENE)
        m_nodeID = from->m_nodeID;
}

C3DSceneNode* C3DSceneNode::Copy(int copyFlags, C3DObjectCreator* creator) const
{
    C3DSceneNode* node = new C3DSceneNode;
    if (m_object && !(copyFlags & COPY_NO_OBJECT)) {
        node->Hold(m_object->Copy(copyFlags, creator));
        if (!node->m_object) {
            node->Delete();
            return nullptr;
        }
    }
    node->Inherit(this, 0);
    return node;
}

/// Copies nodes one by one; an object that several of them share is copied once and shared again.
class CSharingCopier {
public:
    CSharingCopier(int copyFlags, C3DObjectCreator* creator) : m_flags(copyFlags), m_creator(creator) {}

    C3DSceneNode* Copy(const C3DSceneNode* node)
    {
        const C3DBaseObject* object = node->GetBaseObject();
        if (!object || !object->IsInstanciated() || m_flags & (COPY_INSTANCE | COPY_NO_OBJECT))
            return node->Copy(m_flags, m_creator);
        C3DBaseObject** known = m_copies.Find(object);
        C3DSceneNode* copy = node->Copy(known ? m_flags | COPY_NO_OBJECT : m_flags, m_creator);
        if (copy && known)
            copy->SetObject((*known)->Copy(COPY_INSTANCE, nullptr), true);
        else if (copy)
            m_copies.Insert(object, copy->GetBaseObject());
        return copy;
    }

private:
    int m_flags;
    C3DObjectCreator* m_creator;
    CHashMap<const C3DBaseObject*, C3DBaseObject*> m_copies;
};

C3DSceneNode* C3DSceneNode::CopyBranch(C3DSceneNode* parent, int copyFlags, C3DObjectCreator* creator) const
{
    if (!this)
        return nullptr;
    CSharingCopier copier(copyFlags, creator);
    C3DSceneNode* const top = copier.Copy(this);
    if (!top)
        return nullptr;

    // The copy stays detached until it is whole: a parent inside the source would never come to an end.
    CTree links;
    const C3DSceneNode* source = this;
    C3DSceneNode* copy = top;
    while (const C3DSceneNode* next = NextInBranch(source, this)) {
        for (; source != next->GetParent(); source = source->GetParent())
            copy = copy->GetParent();
        C3DSceneNode* child = copier.Copy(next);
        if (!child) {
            CTree::DeleteBranch(top);
            return nullptr;
        }
        links.AddChild(copy, child, true);
        source = next;
        copy = child;
    }
    if (parent) {
        // The parent's: whoever copies into another scene wants the nodes to know it.
        if (C3DScene* scene = parent->GetScene())
            scene->AddNode(parent, top);
        else
            links.AddChild(parent, top, true);
    }
    return top;
}

bool C3DSceneNode::DeleteObjectInstanciation()
{
    if (!m_object || !m_object->IsInstanciated())
        return false;
    C3DBaseObject* copy = m_object->Copy(0, nullptr);
    if (!copy)
        return false;
    SetObject(copy, true);
    return true;
}

bool C3DSceneNode::IsObjectIntanciated(bool wholeBranch) const
{
    if (!wholeBranch)
        return m_object && m_object->IsInstanciated();
    for (const C3DSceneNode* node = NextInBranch(this, this); node; node = NextInBranch(node, this)) {
        if (node->IsGeomObject() && !node->m_object->IsInstanciated())
            return false;
    }
    return true;
}
