#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "scene/GeomObject.h"
#include "tools/Hash.h"

void C3DGeomObject::Clean()
{
    if (!m_points || IsFlagSet(OBJECT_EMPTY))
        return;
    if (m_faces) {
        const CGeomInfo info(this);
        bool changed;
        try {
            changed = m_faces->Clean(&info);
        } catch (...) {    // what was done is whole, and boxes and graphs are out of date
            Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
            throw;
        }
        if (changed) {
            if (m_faces->GetSize() == 0 && m_points->GetSize() == 0)
                SetFlag(OBJECT_EMPTY, true);
            Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
        }
    } else if (m_points->Clean(nullptr, nullptr))
        Invalidate(CHANGE_POINTS, true);
    FreeExtra();
}

/// The channel has nothing to say about the faces: it is out of step with them, or every face lacks data.
static bool IsWithoutFaces(CFaceList& faces, const C3DFaceList* geometry)
{
    return !geometry || faces.GetSize() != geometry->GetSize() ||
           faces.GetNumberOfFaces(static_cast<unsigned int>(FACE_DEAD), true) == faces.GetSize();
}

void C3DGeomObject::CleanChannels(unsigned int typeMask, bool keepTypes)
{
    CHashTable<CChannel*> dead;
    for (CChannel* channel : *m_channels) {
        const bool inMask = (channel->GetType() & typeMask) != 0;
        CFaceList* faces = channel->GetFaceList();
        if (channel->IsFlagSet(CHANNEL_INVALID) || (typeMask != 0xFFFFFFFF && inMask != keepTypes) ||
            (faces && IsWithoutFaces(*faces, m_faces)) || (!faces && !channel->GetPointList()))
            dead.Insert(channel);
    }
    for (CChannel* channel : dead)
        m_channels->RemoveChannel(channel);
    SetUpdateFlags(OBJECT_UPDATE_DISPLAY, true);
}
