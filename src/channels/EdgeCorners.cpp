#include "channels/EdgeCorners.h"

#include <algorithm>

#include "channels/Channel.h"
#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"

CEdgeCorners::CEdgeCorners(const CGeomInfo* info, const CChannel& channel, const C3DEdge& edge, int face1, int face2)
    : m_faces(channel.GetFaceList()), m_points(channel.GetPointList()), m_face{face1, face2}
{
    const CFaceList* geometry = info ? info->GetSrcFaceList() : nullptr;
    const bool dead1 = m_faces && m_faces->IsFaceOneFlagSet(face1, FACE_DEAD);
    const bool dead2 = m_faces && m_faces->IsFaceOneFlagSet(face2, FACE_DEAD);
    if (!m_faces || !m_points || !geometry)
        Decide(true);
    else if (dead1 || dead2)
        Decide(dead1 != dead2);
    else if (!FindEnds(*geometry, edge))
        Decide(true);
}

bool CEdgeCorners::FindEnds(const CFaceList& geometry, const C3DEdge& edge)
{
    const int ends[2] = {edge.GetFirst(), edge.GetSecond()};
    for (int face = 0; face < 2; face++) {
        int count;
        const int* corners = geometry.GetIndexes(m_face[face], count);
        for (int end = 0; end < 2; end++) {
            m_corner[face][end] = static_cast<int>(std::find(corners, corners + count, ends[end]) - corners);
            if (m_corner[face][end] == count)
                return false;
        }
    }
    return true;
}

const CPt* CEdgeCorners::GetPoint(int face, int end, int offset) const
{
    int count;
    const int* corners = m_faces->GetIndexes(m_face[face], count);
    const int corner = m_corner[face][end];
    if (corner >= count)
        return nullptr;
    return m_points->ElementAt(corners[(corner + offset + count) % count]);
}
