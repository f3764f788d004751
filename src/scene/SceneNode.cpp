#include "scene/SceneNode.h"

#include "scene/GeomObject.h"
#include "scene/ProcessState.h"
#include "tools/StringTable.h"

ZEL_IMPLEMENT_CREATABLE(C3DSceneNode, CTreeNode)

static constexpr unsigned int UNNAMED_OBJECT = 9423;

C3DSceneNode::C3DSceneNode() : m_nodeID(CreateSceneID(ID_NODE)) {}

C3DSceneNode::~C3DSceneNode()
{
    if (!m_object)
        return;
    m_object->LeaveScene(m_scene);
    m_object->DeleteFromNode();
}

C3DSceneNode* C3DSceneNode::Create() { return new C3DSceneNode; }

CXTString<wchar_t> C3DSceneNode::GetDisplayName() const { return GetName(); }

bool C3DSceneNode::Delete()
{
    if (!this)
        return false;
    delete this;
    return true;
}

void C3DSceneNode::PreSerialize(CXArchive& ar, bool first)
{
    if (m_object)
        m_object->PreSerialize(ar, first);
}

C3DSceneNode& C3DSceneNode::operator=(const C3DSceneNode&) { return *this; }

const CXTString<wchar_t>& C3DSceneNode::GetName() const
{
    if (m_named)
        return m_name;
    static const CXTString<wchar_t> fallback(L"Unnamed object");
    const CXTString<wchar_t>* text = FindString(UNNAMED_OBJECT, GetLanguage());
    return text ? *text : fallback;
}

void C3DSceneNode::SetName(const CXTString<wchar_t>& name)
{
    m_name = name;
    m_named = true;
}

void C3DSceneNode::SetScene(C3DScene* scene)
{
    if (m_object) {
        m_object->LeaveScene(m_scene);
        m_object->EnterScene(scene);
    }
    m_scene = scene;
}

void C3DSceneNode::Invalidate(unsigned int flags, bool set) { SetInvalidateFlag(flags & (NODE_UPDATE_DISPLAY | 0xFFFF), set); }

void C3DSceneNode::SetInvalidateFlag(unsigned int flags, bool set)
{
    if (flags == CHANGE_OTHER)
        m_updateFlags = set ? m_updateFlags | NODE_UPDATE_DISPLAY : m_updateFlags & ~NODE_UPDATE_DISPLAY;
}

void C3DSceneNode::SetObject(C3DBaseObject* object, bool deleteOld)
{
    C3DBaseObject* const old = m_object;
    // The node's own object, handed over without a further reference, stays.
    if (old == object && (!object || object->GetRefCount() == 1))
        return;
    if (old)
        old->LeaveScene(m_scene);
    Hold(object);
    if (object)
        object->EnterScene(m_scene);
    if (old && deleteOld)
        old->DeleteFromNode();
}

void C3DSceneNode::Hold(C3DBaseObject* object)
{
    m_object = object;
    m_objectKind = object ? object->GetKindOf() : _OBJECT_KINDOF{};
}

C3DBaseObject* C3DSceneNode::GetBaseObject(int) const { return m_object; }

C3DBaseObject* C3DSceneNode::GetFinalObject(int) const { return m_object ? m_object->GetFinalObject(false) : nullptr; }

C3DGeomObject* C3DSceneNode::GetGeomObject(int) const { return m_object ? static_cast<C3DGeomObject*>(*m_object) : nullptr; }
