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

void C3DGeomObject::Serialize(CXArchive& ar)
{
    C3DBaseObject::Serialize(ar);
    if (ar.IsLoading()) {
        DeleteMe(m_faces);
        m_faces = nullptr;
        DeleteMe(m_points);
        m_points = nullptr;
        m_channels->RemoveAll();
    }
    MoveList(ar, m_faces);
    MoveList(ar, m_points);
    // Nothing after this looks at a corner before it is used: broken ones end here.
    if (ar.IsLoading() && m_faces && !m_faces->AreIndexesBelow(GetPointNbr(), true))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    m_channels->Serialize(ar);
    Move(ar, m_smoothAngle);
    Move(ar, m_faceMode);
    Move(ar, m_smoothMode);
    Move(ar, m_globalUVW);
    Move(ar, m_globalVC);
    Move(ar, m_vcStrength);
}
