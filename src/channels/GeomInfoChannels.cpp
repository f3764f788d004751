// What CGeomInfo tells about channels.

#include "channels/DependentChannels.h"
#include "channels/NormalFaceList.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "channels/WeightFaceList.h"
#include "channels/WeightPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

void CGeomInfo::SetChannels(CDependentChannels* source, CDependentChannels* destination, unsigned int own)
{
    m_srcChannels = source;
    m_dstChannels = destination;
    m_srcChannelsOwner = source;
    m_dstChannelsOwner = destination;
    if (own & 1)
        m_owned |= OWNS_SRC_CHANNELS;
    if (own & 2)
        m_owned |= OWNS_DST_CHANNELS;
}

int CGeomInfo::GetChannelSize() const { return m_srcChannels->GetSize(); }

void CGeomInfo::GetChannelFaceList(int i, CFaceList*& source, CFaceList*& destination) const
{
    CChannel* from = m_srcChannels->GetChannelByIndex(i, 0, false);
    CChannel* to = m_dstChannels->GetChannelByIndex(i, 0, false);
    source = from ? from->GetFaceList() : nullptr;
    destination = to ? to->GetFaceList() : nullptr;
}

void CGeomInfo::GetChannelPointList(int i, CPointList*& source, CPointList*& destination) const
{
    CChannel* from = m_srcChannels->GetChannelByIndex(i, 0, false);
    CChannel* to = m_dstChannels->GetChannelByIndex(i, 0, false);
    source = from ? from->GetPointList() : nullptr;
    destination = to ? to->GetPointList() : nullptr;
}

// The source lists under the types of a channel's lists. The caller knows what the record was built on.

CNormalFaceList* CGeomInfo::GetSrcNormalFaceList() const { return static_cast<CNormalFaceList*>(m_srcFaces); }

C3DVectorList* CGeomInfo::GetSrcNormalPointList() const { return static_cast<C3DVectorList*>(m_srcPoints); }

CUVWFaceList* CGeomInfo::GetSrcUVWFaceList() const { return static_cast<CUVWFaceList*>(m_srcFaces); }

CUVWPointList* CGeomInfo::GetSrcUVWPointList() const { return static_cast<CUVWPointList*>(m_srcPoints); }

CVCFaceList* CGeomInfo::GetSrcVCFaceList() const { return static_cast<CVCFaceList*>(m_srcFaces); }

CVCPointList* CGeomInfo::GetSrcVCPointList() const { return static_cast<CVCPointList*>(m_srcPoints); }

CWeightFaceList* CGeomInfo::GetSrcWeightFaceList() const { return static_cast<CWeightFaceList*>(m_srcFaces); }

CWeightPointList* CGeomInfo::GetSrcWeightPointList() const { return static_cast<CWeightPointList*>(m_srcPoints); }
