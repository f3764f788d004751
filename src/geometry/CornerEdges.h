#pragma once

#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "tools/AssociationMap.h"

/// The edge graph of a list, asked from corners: what the build of the graph found out about each corner is kept, so that nothing is
/// searched while faces keep their corners. A flipped face costs a look at its other corners.
class CCornerEdges {
public:
    /// Takes the graph into use, as CFaceList::InitEdgeToFaceGraph does; the caller gives it back with DeleteEdgeToFaceGraph.
    CCornerEdges(CFaceList& faces, const CGeomInfo* info);

    /// The faces at an edge, which leads from corner k of a live face to the next one: see CFaceList::GetFacesConnectedToEdge.
    const int* GetFaces(int face, int k, const C3DEdge& edge, int& count) const
    {
        return m_graph->GetValues(FindEntry(face, k, edge), count);
    }

private:
    unsigned int FindEntry(int face, int k, const C3DEdge& edge) const
    {
        if (!m_entries.empty() && k < GetCornerCount(face)) {
            const unsigned int* const entries = m_entries.data() + m_first[face];
            if (m_graph->GetKey(entries[k]) == edge)
                return entries[k];
            for (int i = 0, count = GetCornerCount(face); i < count && count <= MOST_LOOKS; i++)
                if (m_graph->GetKey(entries[i]) == edge)
                    return entries[i];
        }
        return m_graph->Find(edge);
    }
    int GetCornerCount(int face) const { return static_cast<int>(m_first[face + 1] - m_first[face]); }

    static constexpr int MOST_LOOKS = 8;

    const CFaceList::EdgeGraph* m_graph;
    CBlockVector<unsigned int> m_entries;    // by corner of the live faces; empty when the graph stood before
    CBlockVector<unsigned int> m_first;      // of a face's corners
};
