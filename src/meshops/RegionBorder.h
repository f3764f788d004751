#pragma once

#include "geometry/Edge.h"
#include "meshops/SlotTable.h"
#include "tools/BlockVector.h"

class CFaceList;

/// The line around a set of faces. Where it starts, which way it runs and in which order the faces come is that of hash tables: tables of
/// faces, edges and points are filled one from the other, each walked by slot (tools/Hash.h). Keep one for many sets.
class CRegionBorder {
public:
    /// @param region  the faces in the order in which they joined, each once
    /// @return        false unless the edges that one face of the set has alone form one closed line of at least 3 points that touches
    ///                itself nowhere
    bool Trace(const CFaceList& faces, const CBlockVector<int>& region);

    /// The faces by slot; after any Trace.
    const CBlockVector<int>& GetFaces() const { return m_faces; }

    struct Corner {
        int point;
        int face;    ///< of the set, with an edge of the line at the point
    };
    /// The line, after a Trace that found one.
    const CBlockVector<Corner>& GetLine() const { return m_line; }

private:
    struct Owner {
        int face;
        bool shared;
    };
    struct Node {
        unsigned int neighbours[2];
        unsigned int count = 0;
        int face = -1;
    };

    void SortFaces(const CBlockVector<int>& region);
    void FindEdges(const CFaceList& faces);
    bool LinkPoints();
    bool Connect(unsigned int node, unsigned int other, int face);
    unsigned int GetFirstNeighbour(const Node& node) const;

    CSlotTable<int> m_region;
    CBlockVector<int> m_faces;
    CSlotTable<C3DEdge> m_edges;
    CBlockVector<Owner> m_owners;      // by entry of m_edges
    CSlotTable<C3DEdge> m_border;      // edges that are not shared
    CBlockVector<int> m_borderFace;    // by entry of m_border
    CSlotTable<int> m_points;
    CBlockVector<Node> m_nodes;    // by entry of m_points
    CBlockVector<Corner> m_line;
};
