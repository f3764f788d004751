#pragma once

#include "geometry/Point.h"

class C3DEdge;
class CChannel;
class CFaceList;
class CGeomInfo;
class CPointList;

/// Where an edge between two faces lies in a channel.
///
/// Some edges are decided at once. Both faces without data: no frontier. One of them without data, or an end of the edge
/// that is no corner of a face: frontier. For the others the channel points at the edge tell.
class CEdgeCorners {
public:
    CEdgeCorners(const CGeomInfo* info, const CChannel& channel, const C3DEdge& edge, int face1, int face2);

    bool IsDecided() const { return m_decided; }
    /// Of a decided edge.
    bool IsFrontier() const { return m_frontier; }
    /// The channel point at an end (0, 1) of the edge in a face (0, 1), or `offset` corners further on around that face.
    /// Null where there is none.
    const CPt* GetPoint(int face, int end, int offset = 0) const;

private:
    void Decide(bool frontier)
    {
        m_decided = true;
        m_frontier = frontier;
    }
    bool FindEnds(const CFaceList& geometry, const C3DEdge& edge);

    const CFaceList* m_faces;
    const CPointList* m_points;
    const int m_face[2];
    int m_corner[2][2] = {};    ///< by face and end
    bool m_decided = false;
    bool m_frontier = false;
};
