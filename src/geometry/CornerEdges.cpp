#include "geometry/CornerEdges.h"

CCornerEdges::CCornerEdges(CFaceList& faces, const CGeomInfo* info)
{
    faces.InitEdgeToFaceGraph(info, &m_entries);
    m_graph = &faces.GetEdgeGraph();
    if (m_entries.empty())
        return;
    m_first.assign(static_cast<std::size_t>(faces.GetSize()) + 1, 0);
    faces.ForEachLiveFace([&](int face, const int*, int count) { m_first[face + 1] = static_cast<unsigned int>(count); });
    for (int face = 0; face < faces.GetSize(); face++)
        m_first[face + 1] += m_first[face];
}
