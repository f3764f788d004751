#include <utility>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
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

// Nothing after the reading looks at a corner before it is used: broken ones end here. A channel may stop short of the geometry's
// faces, as it does between AddChannel and its filling.
static bool FitTogether(const C3DGeomObject& object)
{
    const C3DFaceList* const faces = object.GetFaceList();
    if (faces && !faces->AreIndexesBelow(object.GetPointNbr(), true))
        return false;
    const CDependentChannels& channels = *object.GetChannels();
    for (int i = 0; i < channels.GetSize(); i++) {
        const CFaceList* const corners = channels[i]->GetFaceList();
        if (corners && corners->GetSize() > object.GetFaceNbr())
            return false;
    }
    return true;
}

void C3DGeomObject::Serialize(CXArchive& ar)
{
    C3DBaseObject::Serialize(ar);
    if (ar.IsLoading()) {
        DeleteMe(std::exchange(m_faces, nullptr));
        DeleteMe(std::exchange(m_points, nullptr));
        DeleteMe(std::exchange(m_channels, CDependentChannels::Create()));
    }
    MoveList(ar, m_faces);
    MoveList(ar, m_points);
    m_channels->Serialize(ar);
    if (ar.IsLoading() && !FitTogether(*this))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    Move(ar, m_smoothAngle);
    Move(ar, m_faceMode);
    Move(ar, m_smoothMode);
    Move(ar, m_globalUVW);
    Move(ar, m_globalVC);
    Move(ar, m_vcStrength);
}
