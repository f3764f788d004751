#include "scene/GeomObject.h"

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/ObjectCreator.h"

ZEL_IMPLEMENT_CREATABLE(C3DGeomObject, C3DBaseObject)

C3DGeomObject::C3DGeomObject() : m_channels(CDependentChannels::Create()) {}

C3DGeomObject::C3DGeomObject(_OBJECT_KINDOF kind) : C3DBaseObject(kind), m_channels(CDependentChannels::Create()) {}

C3DGeomObject::C3DGeomObject(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(_OBJECT_KINDOF{}, points, faces, channels)
{
}

C3DGeomObject::C3DGeomObject(_OBJECT_KINDOF kind, C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DBaseObject(kind), m_faces(faces), m_points(points), m_channels(channels ? channels : CDependentChannels::Create())
{
}

C3DGeomObject::C3DGeomObject(const C3DGeomObject& other)
    : C3DBaseObject(other), m_hasFaceBox(other.m_hasFaceBox), m_pointBox(other.m_pointBox), m_faceBox(other.m_faceBox),
      m_smoothAngle(other.m_smoothAngle), m_smoothMode(other.m_smoothMode), m_faceMode(other.m_faceMode),
      m_channels(CDependentChannels::Create()), m_globalUVW(other.m_globalUVW), m_globalVC(other.m_globalVC),
      m_vcStrength(other.m_vcStrength)
{
    C3DObjectCreator creator;
    other.CopyGeometry(*this, creator);
}

C3DGeomObject::~C3DGeomObject()
{
    DeleteMe(m_faces);
    DeleteMe(m_points);
    DeleteMe(m_channels);
}

unsigned int C3DGeomObject::GetChecksum(unsigned int mode) const
{
    // Channels that are invalid or do not follow the geometry are derived or about to go.
    constexpr unsigned int LEFT_OUT = CHANNEL_INVALID | CHANNEL_UNFOLLOWED;
    unsigned int sum = (m_points ? m_points->GetChecksum(mode) : 0) + (m_faces ? m_faces->GetChecksum(mode) : 0);
    if (!(mode & 16))
        return sum;
    for (CChannel* channel : *m_channels) {
        if (channel->IsOneFlagSet(LEFT_OUT))
            continue;
        sum += channel->GetFaceList() ? channel->GetFaceList()->GetChecksum(mode) : 0;
        sum += channel->GetPointList() ? channel->GetPointList()->GetChecksum(mode) : 0;
    }
    return sum;
}

// Update protocol

void C3DGeomObject::Invalidate(unsigned int flags, bool set)
{
    if (flags & CHANGE_POINTS && m_points)
        m_points->SetFlag(POINTLIST_CHANGED, true);
    if (flags & CHANGE_FACES && m_faces)
        m_faces->SetFlag(FACELIST_CHANGED, true);
    if (flags & (CHANGE_POINTS | CHANGE_FACES | CHANGE_NORMALS))
        m_channels->RemoveChannels(CHANNEL_ALL, CHANNEL_UNFOLLOWED, true);
    C3DBaseObject::Invalidate(flags, set);
}

bool C3DGeomObject::Update(C3DScene* scene, unsigned int flags)
{
    const unsigned int former = GetUpdateFlags();
    C3DBaseObject::Update(scene, flags);
    bool generated = false;
    if (former & OBJECT_UPDATE_UVW) {
        generated = GenerateUVW(scene);
        SetUpdateFlags(OBJECT_UPDATE_UVW, false);
    }
    SetUpdateFlags(former & OBJECT_UPDATE_BOXES, true);
    return generated;
}

// Copies

void C3DGeomObject::InheritFlags(const C3DBaseObject& from, int copyFlags)
{
    if (from.IsGeomObject() || from.IsKindOf(GetThisRuntimeClassDescriptor())) {
        const auto& other = static_cast<const C3DGeomObject&>(from);
        SetUpdateWord(other.GetUpdateFlags());
        m_hasFaceBox = other.m_hasFaceBox;
        m_pointBox = other.m_pointBox;
        m_faceBox = other.m_faceBox;
        m_smoothAngle = other.m_smoothAngle;
        m_smoothMode = other.m_smoothMode;
        m_faceMode = other.m_faceMode;
        m_globalUVW = other.m_globalUVW;
        m_globalVC = other.m_globalVC;
        m_vcStrength = other.m_vcStrength;
    }
    C3DBaseObject::InheritFlags(from, copyFlags);
}

/// Gives `target` copies of the lists, made by the creator where it has none, and of the channels with their ids.
void C3DGeomObject::CopyGeometry(C3DGeomObject& target, C3DObjectCreator& creator) const
{
    if (!m_points)
        target.SetPointList(nullptr, true);
    else {
        if (!target.m_points)
            target.SetPointList(creator.GetNewPointList(), true);
        *target.m_points = *m_points;
    }
    if (!m_faces)
        target.SetFaceList(nullptr, true);
    else {
        if (!target.m_faces)
            target.SetFaceList(creator.GetNewFaceList(), true);
        *target.m_faces = *m_faces;
    }
    target.m_channels->CopyChannels(*m_channels, CHANNEL_ALL, CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_SKIP_UNFOLLOWED);
}

/// Polygon objects and patches hold the same geometry; a curve is only copied to a curve.
static bool AreCompatible(_OBJECT_KINDOF from, _OBJECT_KINDOF to)
{
    constexpr unsigned int MESHES = OBJECT_POLYGONAL | OBJECT_PATCH;
    return from == to || (from & MESHES && to & MESHES);
}

bool C3DGeomObject::InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const
{
    C3DObjectCreator standard;
    if (!creator)
        creator = &standard;
    if (copyFlags & COPY_INSTANCE)
        return C3DBaseObject::InternalCopy(target, copyFlags, creator);

    bool local = true;
    if (!target)
        target = creator->GetNewObjectFrom(this, local);
    if (!target || target == this || (local && !AreCompatible(GetKindOf(), target->GetKindOf())))
        return false;
    auto* mesh = target->IsGeomObject() ? static_cast<C3DGeomObject*>(target) : nullptr;
    if (mesh && local) {
        CopyGeometry(*mesh, *creator);
        mesh->Invalidate(CHANGE_NORMALS, true);
    }
    if (!C3DBaseObject::InternalCopy(target, copyFlags, creator))
        return false;
    if (mesh && !local)
        mesh->Invalidate(CHANGE_POINTS | CHANGE_FACES, true);    // the caches that came along are not of this geometry
    return true;
}

// Lists

/// Puts a list in the place of another; false when it is the one that is there.
template <class LIST> static bool Exchange(LIST*& held, LIST* list, bool deleteOld)
{
    if (held == list)
        return false;
    if (deleteOld)
        DeleteMe(held);
    held = list;
    return true;
}

void C3DGeomObject::SetFaceList(C3DFaceList* faces, bool deleteOld)
{
    if (Exchange(m_faces, faces, deleteOld))
        Invalidate(CHANGE_FACES, true);
}

void C3DGeomObject::SetPointList(C3DPointList* points, bool deleteOld)
{
    if (Exchange(m_points, points, deleteOld))
        Invalidate(CHANGE_POINTS, true);
}

void C3DGeomObject::SetChannels(CDependentChannels* channels, bool deleteOld)
{
    if (m_channels == channels)
        return;
    Exchange(m_channels, channels ? channels : CDependentChannels::Create(), deleteOld);
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}

int C3DGeomObject::GetPointNbr() const { return m_points ? m_points->GetSize() : 0; }

int C3DGeomObject::GetFaceNbr() const { return m_faces ? m_faces->GetSize() : 0; }

void C3DGeomObject::FreeExtra()
{
    if (m_faces)
        m_faces->FreeExtra();
    if (m_points)
        m_points->FreeExtra();
    for (CChannel* channel : *m_channels)
        channel->FreeExtra();
}

void C3DGeomObject::Inherit(const C3DGeomObject& from, unsigned int channelTypes, unsigned int options)
{
    if (m_points && from.m_points)
        m_points->Inherit(*from.m_points);
    if (m_faces && from.m_faces)
        m_faces->Inherit(*from.m_faces);
    m_channels->CopyChannels(*from.m_channels, channelTypes, options);
}

bool C3DGeomObject::SortFaces(_FACE_SORT_MODE mode)
{
    const CGeomInfo info(this);
    if (!m_faces || !m_faces->Sort(&info, mode))
        return false;
    Invalidate(CHANGE_FACES, true);
    return true;
}

bool C3DGeomObject::IsTriangular(_FACE_PROPERTIES properties, bool wanted)
{
    if (!m_faces)
        return true;
    const CFaceFlags flags(*m_faces);
    const unsigned int mask = properties;
    for (int i = 0; i < m_faces->GetSize(); i++) {
        int corners;
        m_faces->GetIndexes(i, corners);
        if (corners > 3 && ((flags[i] & mask) == mask) == wanted)
            return false;
    }
    return true;
}
