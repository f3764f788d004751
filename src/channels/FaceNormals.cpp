// Face normals: one unit normal a geometry face.

#include "channels/FaceNormals.h"

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/GeomInfo.h"

void CFaceNormalChannel::InitNormals(const CGeomInfo* info)
{
    const C3DFaceList* faces = info ? info->GetSrc3DFaceList() : nullptr;
    if (!IsOneFlagSet(CHANNEL_INVALID | CHANNEL_STALE) || !faces || faces->GetSize() == 0 || !GetPointList())
        return;
    SetFlag(CHANNEL_STALE, false);
    faces->GetNormals(info, *GetNormalVectorList(), true);
}

static CFaceNormalChannel* ChannelOf(const CGeomInfo* info)
{
    CFaceNormalChannel* channel = info->GetSrcChannels()->GetFaceNormalChannel();
    if (!channel)
        return new CFaceNormalChannel;
    channel->AddRef();
    return channel;
}

CFaceNormals::CFaceNormals(const CGeomInfo* info) : m_channel(ChannelOf(info))
{
    // A channel that was not told of new faces must not be read beyond its end.
    if (m_channel->GetNormalVectorList()->GetSize() != info->GetSrcFaceList()->GetSize())
        m_channel->SetFlag(CHANNEL_STALE, true);
    m_channel->InitNormals(info);
    m_first = m_channel->GetNormalVectorList()->GetFirst();
}

CFaceNormals::~CFaceNormals()
{
    DeleteMe(m_channel);
}
