// Borders: edges of one face, and the points on them.

#include "geometry/Edge.h"
#include "geometry/FaceList.h"
#include "geometry/PointList.h"
#include "tools/AssociationMap.h"

void CFaceList::GetEdgesOnBorder(EdgeGraph& out, CHashTable<int>& faces)
{
    constexpr int SHARED = -1;
    out.RemoveAll();
    CHashMap<C3DEdge, int> owners(6 * faces.GetCount());
    for (const int face : faces) {
        int count;
        const int* corners = GetIndexes(static_cast<unsigned int>(face), count);
        for (int k = 0; k < count; k++) {
            const C3DEdge edge(corners[k], corners[(k + 1) % count]);
            if (!owners.Insert(edge, face))
                *owners.Find(edge) = SHARED;
        }
    }
    out.Reserve(owners.GetCount(), 1);
    for (const auto& [edge, owner] : owners)
        if (owner != SHARED)
            out.Add(edge, owner);
}

void CFaceList::SetBorderFacesStatus()
{
    const EdgeGraph& graph = GetEdgeGraph();
    for (unsigned int entry = 0; entry < graph.GetCount(); entry++) {
        int count;
        const int* faces = graph.GetValues(entry, count);
        if (count == 1)
            SetFaceFlag(static_cast<unsigned int>(faces[0]), FACE_BORDER, true);
    }
}

void CPointList::SetBorderPointsStatus(CAssociationMap<C3DEdge, int, unsigned short>& edges, bool links)
{
    SetPointsFlags(POINT_BORDER | POINT_INNER_EDGE | POINT_BORDER_LINK, false);
    const auto forEachEdge = [&](auto body) {
        for (unsigned int entry = 0; entry < edges.GetCount(); entry++) {
            const C3DEdge& edge = edges.GetKey(entry);
            CPt* first = ElementAt(edge.GetFirst());
            CPt* second = ElementAt(edge.GetSecond());
            if (first && second)
                body(*first, *second, edges.GetValueCount(entry));
        }
    };
    forEachEdge([](CPt& first, CPt& second, int faceCount) {
        const _POINT_PROPERTIES status = faceCount == 1 ? POINT_BORDER : POINT_INNER_EDGE;
        first.SetFlag(status, true);
        second.SetFlag(status, true);
    });
    if (!links)
        return;
    forEachEdge([](CPt& first, CPt& second, int) {
        if (first.IsFlagSet(POINT_BORDER) != second.IsFlagSet(POINT_BORDER))
            (first.IsFlagSet(POINT_BORDER) ? second : first).SetFlag(POINT_BORDER_LINK, true);
    });
}
