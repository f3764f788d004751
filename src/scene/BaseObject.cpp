#include "scene/BaseObject.h"

#include <cstdarg>

#include "scene/3DObject.h"
#include "scene/Camera.h"
#include "scene/Curve.h"
#include "scene/Dummy.h"
#include "scene/Group.h"
#include "scene/Light.h"
#include "scene/ObjectCreator.h"
#include "scene/Patch.h"
#include "scene/ProcessState.h"
#include "tools/Archive.h"
#include "tools/HashMix.h"
#include "tools/Time.h"

ZEL_IMPLEMENT_CREATABLE(C3DBaseObject, CXObject)

C3DBaseObject::C3DBaseObject() : C3DBaseObject(_OBJECT_KINDOF{}) {}

C3DBaseObject::C3DBaseObject(_OBJECT_KINDOF kind) : m_kind(kind), m_revision(CreateRevision()), m_objectID(CreateSceneID(ID_OBJECT)) {}

C3DBaseObject::C3DBaseObject(const C3DBaseObject& other)
    : CXObject(other), CInstanciatedObject(other), m_kind(other.m_kind), m_flags(other.m_flags), m_updateFlags(other.m_updateFlags),
      m_revision(CreateRevision()), m_customData(other.m_customData), m_objectID(CreateSceneID(ID_OBJECT))
{
}

C3DBaseObject::~C3DBaseObject() = default;

void C3DBaseObject::Serialize(CXArchive& ar)
{
    Move(ar, m_flags);
    Move(ar, m_objectID);
    m_customData.Serialize(ar);
    if (ar.IsLoading()) {
        if (m_objectID == 0xFFFFFFFF)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        AdvanceSceneID(ID_OBJECT, m_objectID);
    }
}

void C3DBaseObject::DeleteFromNode()
{
    if (m_instanceCount > 1)
        m_instanceCount--;
    CInstanciatedObject::Delete();
}

void C3DBaseObject::PreSerialize(CXArchive&, bool) {}

void C3DBaseObject::PostSerialize(CXArchive&, bool) { Invalidate(0xFFFF, true); }

bool C3DBaseObject::NeedUpdate() const { return (m_updateFlags & OBJECT_UPDATE_REGENERATED) != 0; }

unsigned int C3DBaseObject::GetChecksum(unsigned int) const { return m_kind << 4; }

bool C3DBaseObject::Update(C3DScene*, unsigned int flags)
{
    SetUpdateFlags(flags & ~OBJECT_UPDATE_BOXES, false);
    return false;
}

void C3DBaseObject::Invalidate(unsigned int flags, bool set) { SetUpdateFlags(flags & (OBJECT_UPDATE_DISPLAY | 0xFFFF), set); }

C3DBaseObject* C3DBaseObject::GetFinalObject(bool) { return this; }

void C3DBaseObject::InheritFlags(const C3DBaseObject& from, int copyFlags)
{
    m_flags = from.m_flags;
    NoteNews();
    m_customData = from.m_customData;
    if (copyFlags & COPY_FOREIGN_SCENE)
        m_objectID = from.m_objectID;
}

bool C3DBaseObject::MatrixTransform(const C4x4TMatrix<float>&) { return false; }

bool C3DBaseObject::InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const
{
    if (!target && copyFlags & COPY_INSTANCE) {
        AddRef();
        m_instanceCount++;
        target = const_cast<C3DBaseObject*>(this);
        return true;
    }
    if (!target) {
        C3DObjectCreator standard;
        bool local = true;
        target = (creator ? creator : &standard)->GetNewObjectFrom(this, local);
        if (!target)
            return false;
    }
    target->InheritFlags(*this, copyFlags);
    return true;
}

C3DBaseObject* C3DBaseObject::Copy(int copyFlags, C3DObjectCreator* creator) const
{
    C3DObjectCreator standard;
    C3DBaseObject* target = nullptr;
    if (InternalCopy(target, copyFlags, creator ? creator : &standard))
        return target;
    DeleteMe(target);
    return nullptr;
}

C3DBaseObject* C3DBaseObject::Create(_OBJECT_KINDOF kind)
{
    switch (kind) {
    case OBJECT_POLYGONAL: return new C3DObject;
    case OBJECT_CURVE: return new C3DCurve;
    case OBJECT_PATCH: return new C3DPatch;
    case OBJECT_GROUP: return new C3DGroup;
    case OBJECT_DUMMY: return new C3DDummy;
    case OBJECT_CAMERA: return new C3DCamera;
    case OBJECT_LIGHT: return new C3DLight;
    }
    return nullptr;
}

CXTString<wchar_t> C3DBaseObject::GetTypeString() const
{
    struct KindText {
        _OBJECT_KINDOF kind;
        unsigned int id;
        const wchar_t* fallback;
    };
    static constexpr KindText TEXTS[] = {
        {OBJECT_POLYGONAL, 9405, L"Polymesh"}, {OBJECT_CURVE, 9357, L"Curve"}, {OBJECT_PATCH, 9404, L"Patch"},
        {OBJECT_GROUP, 9362, L"Group"},        {OBJECT_DUMMY, 9360, L"Dummy"}, {OBJECT_CAMERA, 9349, L"Camera"},
        {OBJECT_LIGHT, 9363, L"Light"},
    };
    for (const KindText& entry : TEXTS) {
        if (entry.kind != m_kind)
            continue;
        CXTString<wchar_t> text;
        return text.LoadStringW(entry.id) ? text : CXTString<wchar_t>(entry.fallback);
    }
    return {};
}

// Identity and place

void C3DBaseObject::RenewObjectID() { m_objectID = CreateSceneID(ID_OBJECT); }

void C3DBaseObject::SetScene(C3DScene* scene)
{
    if (m_sceneNodes || m_scene == scene)
        return;
    m_scene = scene;
    SceneChanged();
}

void C3DBaseObject::SceneChanged() {}

void C3DBaseObject::EnterScene(C3DScene* scene)
{
    if (scene && m_scene != scene) {
        SceneUse next{scene, 0};
        for (std::size_t i = 0; i < m_otherScenes.size(); i++) {
            if (m_otherScenes[i].scene == scene) {
                next = m_otherScenes[i];
                m_otherScenes.erase(m_otherScenes.begin() + i);
            }
        }
        if (m_sceneNodes)
            m_otherScenes.push_back({m_scene, m_sceneNodes});
        m_scene = scene;
        m_sceneNodes = next.nodes;
        SceneChanged();
    }
    m_sceneNodes += scene != nullptr;
    NoteSceneChange();
}

void C3DBaseObject::LeaveScene(const C3DScene* scene)
{
    if (!scene)
        return;
    NoteSceneChange();
    if (m_scene != scene) {
        for (SceneUse& use : m_otherScenes)
            use.nodes -= use.scene == scene;
        std::erase_if(m_otherScenes, [](const SceneUse& use) { return use.nodes == 0; });
        return;
    }
    if (m_sceneNodes == 0 || --m_sceneNodes)
        return;
    SceneUse next{};
    if (!m_otherScenes.empty()) {
        next = m_otherScenes.back();
        m_otherScenes.pop_back();
    }
    m_scene = next.scene;
    m_sceneNodes = next.nodes;
    SceneChanged();
}

// Update protocol

/// What the change reports make stale.
static unsigned int ExpandChanges(unsigned int flags)
{
    constexpr unsigned int DISPLAY = OBJECT_UPDATE_DISPLAY;
    unsigned int expanded = 0;
    if (flags & CHANGE_OTHER)
        expanded |= DISPLAY | OBJECT_UPDATE_FACE_BOX;
    if (flags & CHANGE_POINTS)
        expanded |= DISPLAY | OBJECT_UPDATE_UVW | OBJECT_UPDATE_BOXES;
    if (flags & CHANGE_FACES)
        expanded |= DISPLAY | OBJECT_UPDATE_UVW;
    if (flags & CHANGE_UVW)
        expanded |= DISPLAY | OBJECT_UPDATE_FACE_BOX;
    if (flags & CHANGE_NORMALS)
        expanded |= DISPLAY | OBJECT_UPDATE_UVW;
    return expanded;
}

/// Place of an item in the stamps, -1 for what is never stamped.
static int StampIndex(unsigned int flag)
{
    switch (flag) {
    case OBJECT_UPDATE_POINT_BOX: return 0;
    case OBJECT_UPDATE_FACE_BOX: return 1;
    case OBJECT_UPDATE_NORMALS: return 2;
    case OBJECT_UPDATE_UVW: return 3;
    }
    return -1;
}

void C3DBaseObject::SetUpdateFlags(unsigned int flags, bool set)
{
    const unsigned int given = flags & 0xFFFF0000, affected = ExpandChanges(flags) | given;
    if (set) {
        m_updateFlags |= affected;
        if (affected & (OBJECT_UPDATE_DISPLAY | OBJECT_UPDATE_REGENERATED))
            NoteNews();
        return;
    }
    m_updateFlags &= ~affected;
    if (!(given & OBJECT_UPDATE_ALL))
        return;
    const std::int64_t tick = timeGetTick();
    for (unsigned int flag = OBJECT_UPDATE_POINT_BOX; flag <= OBJECT_UPDATE_UVW; flag <<= 1) {
        if (given & flag)
            m_stamps[StampIndex(flag)] = tick;
    }
}

void C3DBaseObject::NoteNews()
{
    m_revision = CreateRevision();
    if (m_scene)
        NoteSceneChange();
}

void C3DBaseObject::SetUpdateWord(unsigned int word)
{
    m_updateFlags = word;
    NoteNews();
}

void C3DBaseObject::SetFlag(_OBJECT_PROPERTIES flags, bool set)
{
    const unsigned int former = m_flags;
    m_flags = set ? m_flags | flags : m_flags & ~flags;
    if (m_flags != former)
        NoteNews();
}

std::int64_t C3DBaseObject::GetUpdateStamp(_OBJECT_UPDATE_PROPERTIES flag) const
{
    const int index = StampIndex(flag);
    return index < 0 ? 0 : m_stamps[index];
}

// Checksum of the custom data

unsigned int C3DBaseObject::GetCustomDataChecksum(unsigned int id, ...) const
{
    CHashTable<unsigned int> excluded;
    va_list ids;
    va_start(ids, id);
    for (; id; id = va_arg(ids, unsigned int))
        excluded.Insert(id);
    va_end(ids);

    unsigned int sum = GetChecksum(0xFFFFFFFF), property = 0, type = 0;
    for (unsigned int i = 0; m_customData.GetIDByIndex(i, property, type); i++) {
        if (!excluded.Find(property)) {
            const std::uint64_t key = static_cast<std::uint64_t>(property) << 32 | type;
            sum += static_cast<unsigned int>(HashMix64(key)) + m_customData.GetChecksum(property);
        }
    }
    return sum;
}

// The object as its own class. Out of line, so that the null test of `this` stands.

/// `object` as a T when its kind is in the mask.
template <class T, class O> static T* AsKind(O* object, unsigned int mask)
{
    return object && object->GetKindOf() & mask ? static_cast<T*>(object) : nullptr;
}

C3DBaseObject::operator C3DGeomObject*() { return AsKind<C3DGeomObject>(this, OBJECT_GEOMETRIC); }
C3DBaseObject::operator C3DObject*() { return AsKind<C3DObject>(this, OBJECT_POLYGONAL); }
C3DBaseObject::operator C3DCurve*() { return AsKind<C3DCurve>(this, OBJECT_CURVE); }
C3DBaseObject::operator C3DPatch*() { return AsKind<C3DPatch>(this, OBJECT_PATCH); }
C3DBaseObject::operator C3DGroup*() { return AsKind<C3DGroup>(this, OBJECT_GROUP); }
C3DBaseObject::operator C3DDummy*() { return AsKind<C3DDummy>(this, OBJECT_DUMMY); }
C3DBaseObject::operator C3DCamera*() { return AsKind<C3DCamera>(this, OBJECT_CAMERA); }
C3DBaseObject::operator C3DLight*() { return AsKind<C3DLight>(this, OBJECT_LIGHT); }
C3DBaseObject::operator const C3DGeomObject*() const { return AsKind<const C3DGeomObject>(this, OBJECT_GEOMETRIC); }
C3DBaseObject::operator const C3DObject*() const { return AsKind<const C3DObject>(this, OBJECT_POLYGONAL); }
C3DBaseObject::operator const C3DCurve*() const { return AsKind<const C3DCurve>(this, OBJECT_CURVE); }
C3DBaseObject::operator const C3DPatch*() const { return AsKind<const C3DPatch>(this, OBJECT_PATCH); }
C3DBaseObject::operator const C3DGroup*() const { return AsKind<const C3DGroup>(this, OBJECT_GROUP); }
C3DBaseObject::operator const C3DDummy*() const { return AsKind<const C3DDummy>(this, OBJECT_DUMMY); }
C3DBaseObject::operator const C3DCamera*() const { return AsKind<const C3DCamera>(this, OBJECT_CAMERA); }
C3DBaseObject::operator const C3DLight*() const { return AsKind<const C3DLight>(this, OBJECT_LIGHT); }
