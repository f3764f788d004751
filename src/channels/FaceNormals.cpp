// Face normals: one unit normal a geometry face.

#include "channels/FaceNormals.h"

#include "channels/Cosine.h"
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

// The same bits as InitNormals: a raw normal differs from a unit normal in its length alone.
static void Normalize(const C3DVectorList& raw, C3DVectorList& units)
{
    units.SetSize(raw.GetSize(), false, 0);
    const C3DTVector<float>* from = raw.GetFirst();
    C3DTVector<float>* to = units.GetFirst();
    for (int i = 0, count = raw.GetSize(); i < count; i++, from++, to++) {
        *to = *from;
        NormalizeSum(*to);
    }
}

CFaceNormals::CFaceNormals(const CGeomInfo* info, const C3DVectorList* rawNormals) : m_channel(ChannelOf(info))
{
    C3DVectorList& units = *m_channel->GetNormalVectorList();
    // A channel that was not told of new faces must not be read beyond its end.
    if (units.GetSize() != info->GetSrcFaceList()->GetSize())
        m_channel->SetFlag(CHANNEL_STALE, true);
    if (rawNormals && m_channel->IsFlagSet(CHANNEL_STALE)) {
        Normalize(*rawNormals, units);
        m_channel->SetFlag(CHANNEL_STALE, false);
    } else
        m_channel->InitNormals(info);
    m_first = units.GetFirst();
}

CFaceNormals::~CFaceNormals() { DeleteMe(m_channel); }
