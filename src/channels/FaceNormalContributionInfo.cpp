#include "channels/FaceNormalContributionInfo.h"

#include <cmath>

#include "channels/Cosine.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

static _NormalSmoothMode ModeOf(const CGeomInfo* info)
{
    const int mode = info ? info->GetSmoothMode() : NORMAL_AREA;
    return mode >= NORMAL_UNWEIGHTED && mode <= NORMAL_ANGLE ? static_cast<_NormalSmoothMode>(mode) : NORMAL_AREA;
}

CFaceNormalContributionInfo::CFaceNormalContributionInfo(const CGeomInfo* info)
    : m_info(info), m_faces(info ? info->GetSrc3DFaceList() : nullptr), m_points(info ? info->GetSrc3DPointList() : nullptr),
      m_mode(ModeOf(info))
{
    InitNormalCallback(m_mode);
    InitUnormalizedNormal(m_mode);
}

CFaceNormalContributionInfo::~CFaceNormalContributionInfo() { DeleteMe(m_rawNormals); }

void CFaceNormalContributionInfo::InitNormalCallback(_NormalSmoothMode mode)
{
    switch (mode) {
    case NORMAL_UNWEIGHTED: m_callback = NormalUnweight; break;
    case NORMAL_EDGE_LENGTH: m_callback = NormalEdgeWeight; break;
    case NORMAL_ANGLE: m_callback = NormalAngleWeight; break;
    default: m_callback = NormalAreaWeight;
    }
}

void CFaceNormalContributionInfo::InitUnormalizedNormal(_NormalSmoothMode mode)
{
    DeleteMe(m_rawNormals);
    m_rawNormals = nullptr;
    m_raw = nullptr;
    if (!m_faces || mode == NORMAL_UNWEIGHTED || mode == NORMAL_ANGLE)
        return;
    m_rawNormals = C3DVectorList::Create();
    m_faces->GetNormals(m_info, *m_rawNormals, false);
    m_raw = m_rawNormals->GetFirst();
}

bool CFaceNormalContributionInfo::FindEdges()
{
    if (!m_faces || !m_points || !m_faces->GetFace(m_face, m_view))
        return false;
    if (m_corner == NO_CORNER)
        m_corner = m_view.IsFacePoint(m_point);
    if (m_corner == NO_CORNER)
        return false;
    const C3DTPoint<float>* point = m_points->ElementAt(m_point);
    const C3DTPoint<float>* before = m_points->ElementAt(m_view.GetPrevIndex(m_corner));
    const C3DTPoint<float>* behind = m_points->ElementAt(m_view.GetNextIndex(m_corner));
    if (!point || !before || !behind)
        return false;
    m_edge1 = *before - *point;
    m_edge2 = *behind - *point;
    return true;
}

void CFaceNormalContributionInfo::NormalEdgeWeight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum)
{
    if (!context.FindEdges())
        return;
    context.m_part = context.m_raw[context.m_face] / (context.m_edge1.LengthSquared() * context.m_edge2.LengthSquared());
    if (std::isfinite(context.m_part.x + context.m_part.y + context.m_part.z))
        sum += context.m_part;
}

void CFaceNormalContributionInfo::NormalAngleWeight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum)
{
    if (!context.FindEdges())
        return;
    context.m_part = *context.m_unitNormal * std::acos(CosineBetween(context.m_edge1, context.m_edge2));
    sum += context.m_part;
}
