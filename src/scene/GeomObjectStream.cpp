#include <utility>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/LoadedCorners.h"
#include "scene/GeomObject.h"
#include "tools/Archive.h"

/// A list behind a presence word, by its class. Loading gives the caller a new list or null.
template <class LIST> static void MoveList(CXArchive& ar, LIST*& list)
{
    const CXRuntimeClass* const type = LIST::GetThisRuntimeClassDescriptor();
    int present = list != nullptr;
    Move(ar, present);
    if (!present)
        return;
    if (ar.IsStoring())
        ar.WriteClass(type);
    else {
        const CXRuntimeClass* stored = ar.ReadClass(type);
        list = XDynamicCast<LIST>(stored ? stored->CreateObject() : nullptr);
        if (!list)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    }
    list->Serialize(ar);
}

// Nothing after the reading looks at a corner before it is used: broken ones end here. A channel with more faces than the geometry is out
// of step with it, as one is after its object got another face list.
static void FitTogether(const C3DGeomObject& object)
{
    if (object.GetFaceList() && !CheckLoadedCorners(*object.GetFaceList(), object.GetPointNbr()))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    for (CChannel* const channel : *object.GetChannels())
        if (channel->GetFaceList() && channel->GetFaceList()->GetSize() > object.GetFaceNbr())
            channel->SetFlag(CHANNEL_INVALID, true);
}

bool C3DGeomObject::DropBadFaces(std::vector<unsigned int>* told)
{
    bool facesChanged = false, changed = false;
    const auto find = [&](CFaceList* faces, int pointCount) {
        const std::vector<unsigned int> bad = faces ? FindBadFaces(*faces, pointCount) : std::vector<unsigned int>();
        if (told)
            told->insert(told->end(), bad.begin(), bad.end());
        changed |= !bad.empty();
        return bad;
    };
    for (const unsigned int face : find(m_faces, GetPointNbr()))
        m_faces->SetFaceFlag(face, FACE_INVALID, true);
    facesChanged = changed;
    for (CChannel* const channel : *m_channels) {
        if (channel->CanBeRecomputed())
            continue;    // it is not stored, and may be out of date
        CFaceList* const faces = channel->GetFaceList();
        for (const unsigned int face : find(faces, channel->GetPointList() ? channel->GetPointList()->GetSize() : 0)) {
            DropFaceData(*faces, face);
            faces->SetFlag(FACELIST_CHANGED, true);
        }
    }
    if (changed)
        Invalidate(facesChanged ? CHANGE_FACES : static_cast<unsigned int>(OBJECT_UPDATE_DISPLAY), true);
    return changed;
}

void C3DGeomObject::Serialize(CXArchive& ar)
{
    if (ar.IsStoring())
        DropBadFaces();
    C3DBaseObject::Serialize(ar);
    if (ar.IsLoading()) {
        DeleteMe(std::exchange(m_faces, nullptr));
        DeleteMe(std::exchange(m_points, nullptr));
        DeleteMe(std::exchange(m_channels, CDependentChannels::Create()));
    }
    MoveList(ar, m_faces);
    MoveList(ar, m_points);
    m_channels->Serialize(ar);
    if (ar.IsLoading())
        FitTogether(*this);
    Move(ar, m_smoothAngle);
    Move(ar, m_faceMode);
    Move(ar, m_smoothMode);
    Move(ar, m_globalUVW);
    Move(ar, m_globalVC);
    Move(ar, m_vcStrength);
}
