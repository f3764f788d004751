// Explosion: the parts of an object that hang together through edges, each as an object.

#include "geometry/GeomInfo.h"
#include "meshops/IsolateFaceTagger.h"
#include "scene/3DObject.h"
#include "tools/Progress.h"

CIsolateFaceTagger::CIsolateFaceTagger(CXArray<C3DGeomObject*, C3DGeomObject*>& parts, C3DGeomObject& object)
    : m_parts(parts), m_cutter(object), m_liveFaces(static_cast<unsigned int>(object.GetFaceList()->GetNumberOfFaces(FACE_DEAD, false))),
      m_progress(new CProgress(L"Exploding", m_liveFaces))
{
}

CIsolateFaceTagger::~CIsolateFaceTagger() = default;

void CIsolateFaceTagger::BeginNewGroup(unsigned int, unsigned int) {}

void CIsolateFaceTagger::ProcessGroup(unsigned int* faces, unsigned int count)
{
    if (count == m_liveFaces || !m_progress->Step(count))
        return;
    if (C3DObject* part = m_cutter.Cut(reinterpret_cast<const int*>(faces), count))
        m_parts.Add(part);
}

int C3DGeomObject::ExplodeIntoIsolatedParts(CXArray<C3DGeomObject*, C3DGeomObject*>& parts)
{
    parts.RemoveAll();
    if (!m_faces)
        return 0;
    CGeomInfo info(this);
    CIsolateFaceTagger tagger(parts, *this);
    m_faces->TagFaces(&info, tagger, true);
    m_faces->DeleteEdgeToFaceGraph();
    if (CProgressScope::IsCancelled()) {
        for (C3DGeomObject* part : parts)
            DeleteMe(part);
        parts.RemoveAll();
    }
    return static_cast<int>(parts.GetSize());
}
