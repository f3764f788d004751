#include <memory>

#include "channels/Channel.h"
#include "channels/DependentChannels.h"
#include "geometry/3DFaceList.h"
#include "geometry/GeomInfo.h"

// Operations of one face list that the channels follow.

namespace {

// `follow` for the face list of each source channel.
template <class FOLLOW> void ForChannelFaces(const CGeomInfo* info, FOLLOW follow)
{
    const CDependentChannels* channels = info ? info->GetSrcChannels() : nullptr;
    for (int i = 0; i < channels->GetSize(); i++)
        if (CFaceList* faces = channels->GetAt(i)->GetFaceList())
            follow(*channels->GetAt(i), *faces);
}

}

bool C3DFaceList::Sort(const CGeomInfo* info, _FACE_SORT_MODE mode)
{
    bool changed;
    const std::unique_ptr<unsigned int[]> order(Sort(mode, changed));
    if (!changed)
        return false;
    const unsigned int count = static_cast<unsigned int>(GetSize());
    ReorderFaces(order.get(), count, false);
    ForChannelFaces(info, [&](const CChannel& channel, CFaceList& faces) {
        if (!channel.IsFlagSet(CHANNEL_INVALID))
            faces.ReorderFaces(order.get(), count, false);
    });
    return true;
}

void C3DFaceList::Flip(const CGeomInfo* info, int face)
{
    C3DFace view;
    if (face < 0 || !GetFace(face, view) || view.IsDead())
        return;
    view.Flip();
    ForChannelFaces(info, [&](const CChannel&, CFaceList& faces) {
        CFace channelFace;
        if (faces.GetFace(face, channelFace) && !channelFace.IsDead())
            channelFace.Flip();
    });
}
