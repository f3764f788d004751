#include "geometry/GeomInfo.h"

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "tools/Object.h"

CGeomInfo::CGeomInfo(const CGeomInfo& other)
    : m_scene(other.m_scene), m_node(other.m_node), m_object(other.m_object), m_srcPoints(other.m_srcPoints),
      m_dstPoints(other.m_dstPoints), m_srcFaces(other.m_srcFaces), m_dstFaces(other.m_dstFaces), m_srcChannels(other.m_srcChannels),
      m_dstChannels(other.m_dstChannels), m_srcChannelsOwner(other.m_srcChannelsOwner), m_dstChannelsOwner(other.m_dstChannelsOwner),
      m_smoothMode(other.m_smoothMode), m_smoothAngle(other.m_smoothAngle)
{
}

CGeomInfo::~CGeomInfo()
{
    const auto release = [this](Owned bit, const CInstanciatedObject* list) {
        if (m_owned & bit)
            DeleteMe(list);
    };
    release(OWNS_SRC_POINTS, m_srcPoints);
    release(OWNS_DST_POINTS, m_dstPoints);
    release(OWNS_SRC_FACES, m_srcFaces);
    release(OWNS_DST_FACES, m_dstFaces);
    release(OWNS_SRC_CHANNELS, m_srcChannelsOwner);
    release(OWNS_DST_CHANNELS, m_dstChannelsOwner);
}

void CGeomInfo::SetPointList(CPointList* source, CPointList* destination, unsigned int own)
{
    m_srcPoints = source;
    m_dstPoints = destination;
    if (own & 1)
        m_owned |= OWNS_SRC_POINTS;
    if (own & 2)
        m_owned |= OWNS_DST_POINTS;
}

void CGeomInfo::SetFaceList(CFaceList* source, CFaceList* destination, unsigned int own)
{
    m_srcFaces = source;
    m_dstFaces = destination;
    if (own & 1)
        m_owned |= OWNS_SRC_FACES;
    if (own & 2)
        m_owned |= OWNS_DST_FACES;
}

C3DPointList* CGeomInfo::GetSrc3DPointList(bool take) const { return static_cast<C3DPointList*>(GetSrcPointList(take)); }
C3DFaceList* CGeomInfo::GetSrc3DFaceList(bool take) const { return static_cast<C3DFaceList*>(GetSrcFaceList(take)); }
C3DPointList* CGeomInfo::GetDst3DPointList(bool take) const { return static_cast<C3DPointList*>(GetDstPointList(take)); }
C3DFaceList* CGeomInfo::GetDst3DFaceList(bool take) const { return static_cast<C3DFaceList*>(GetDstFaceList(take)); }
