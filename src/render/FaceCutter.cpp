#include "render/FaceCutter.h"

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"

static CUVWFaceList* AddNumbers(CDependentChannels& channels)
{
    auto* const channel = new CUVWChannel(1);
    channels.AddChannel(channel);
    return channel->GetUVWFaceList();
}

CFaceCutter::CFaceCutter() : m_source(CDependentChannels::Create()), m_target(CDependentChannels::Create()), m_cutFaces(new C3DFaceList)
{
    m_numbers = AddNumbers(*m_source);
    m_cutNumbers = AddNumbers(*m_target);
}

CFaceCutter::~CFaceCutter()
{
    DeleteMe(m_source);
    DeleteMe(m_target);
    DeleteMe(m_cutFaces);
}

std::span<const int> CFaceCutter::Cut(const CGeomInfo& info, C3DFace& face)
{
    const int count = face.GetSize();
    m_numbers->SetSize(1, count, CFaceList::SIZE_GROW);
    CFace numbers;
    m_numbers->GetFace(0, numbers);
    numbers.SetSize(count);
    for (int k = 0; k < count; k++)
        numbers[k] = k;

    CGeomInfo cut;
    cut.SetPointList(info.GetSrcPointList(), info.GetSrcPointList(), 0);
    cut.SetFaceList(face.GetFaceList(), m_cutFaces, 0);
    cut.SetChannels(m_source, m_target, 0);
    const int triangles = face.Triangulate(&cut, 0, -1);
    m_corners.clear();
    for (int i = 0; i < triangles; i++) {
        int size;
        const int* const corners = m_cutNumbers->GetIndexes(i, size);
        if (size == 3)
            m_corners.insert(m_corners.end(), corners, corners + 3);
    }
    return m_corners;
}
