// Sub-objects: some faces of an object as an object of their own.

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "meshops/SubObjectCutter.h"
#include "scene/3DObject.h"
#include "tools/BlockVector.h"

CSubObjectCutter::Renumbering::Renumbering(const CPointList* points) : m_numbers(points ? points->GetSize() : 0, -1) {}

void CSubObjectCutter::Renumbering::Reset()
{
    for (const int point : m_used)
        m_numbers[point] = -1;
    m_used.clear();
}

int CSubObjectCutter::Renumbering::operator()(int point)
{
    if (static_cast<std::size_t>(point) >= m_numbers.size())
        return -1;
    int& number = m_numbers[point];
    if (number < 0) {
        number = static_cast<int>(m_used.size());
        m_used.push_back(point);
    }
    return number;
}

CSubObjectCutter::CSubObjectCutter(C3DGeomObject& object) : m_object(object), m_points(object.GetPointList())
{
    for (const CChannel* channel : *object.GetChannels())
        m_channelPoints.emplace_back(channel->GetPointList());
}

C3DObject* CSubObjectCutter::Cut(const int* faces, unsigned int count)
{
    if (!m_object.GetFaceList() || !m_object.GetPointList())
        return nullptr;
    ListLiveFaces(faces, count);
    if (m_live.empty())
        return nullptr;

    C3DFaceList* partFaces = C3DFaceList::Create(m_object.GetFaceList());
    partFaces->AppendCopies(*m_object.GetFaceList(), m_live.data(), static_cast<int>(m_live.size()), m_points);
    C3DPointList* partPoints = C3DPointList::Create(m_object.GetPointList());
    const CBlockVector<int>& used = m_points.GetUsed();
    partPoints->SetSize(static_cast<int>(used.size()), false, 0);
    partPoints->GatherPoints(0, *m_object.GetPointList(), used.data(), static_cast<int>(used.size()));

    C3DObject* part = new C3DObject;
    part->InheritFlags(m_object, 0);
    part->SetPointList(partPoints, true);
    part->SetFaceList(partFaces, true);
    for (std::size_t i = 0; i < m_channelPoints.size(); i++)
        if (CChannel* channel = CutChannel(*(*m_object.GetChannels())[static_cast<int>(i)], m_channelPoints[i]))
            part->AddChannel(channel);
    m_points.Reset();
    part->Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
    return part;
}

void CSubObjectCutter::ListLiveFaces(const int* faces, unsigned int count)
{
    const CFaceFlags flags(*m_object.GetFaceList());
    const unsigned int size = static_cast<unsigned int>(m_object.GetFaceNbr());
    m_live.clear();
    for (unsigned int i = 0; i < count; i++)
        if (const unsigned int face = static_cast<unsigned int>(faces[i]); face < size && !flags.IsDead(face))
            m_live.push_back(faces[i]);
}

// Null for a channel that has nothing on the faces.
CChannel* CSubObjectCutter::CutChannel(const CChannel& channel, Renumbering& numbers)
{
    if (channel.IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED) || channel.GetType() & (CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL))
        return nullptr;
    CChannel* part = channel.Copy(CHANNEL_COPY_KEEP_ID | CHANNEL_COPY_NO_DATA);
    const bool byFace = channel.GetFaceList() && part->GetFaceList();
    if (byFace)
        part->GetFaceList()->AppendCopies(*channel.GetFaceList(), m_live.data(), static_cast<int>(m_live.size()), numbers);
    const CBlockVector<int>& used = byFace ? numbers.GetUsed() : m_points.GetUsed();
    const int count = static_cast<int>(used.size());
    const bool filled = count > 0 && channel.GetPointList() && part->GetPointList()->SetSize(count, false, 0) &&
                        part->GetPointList()->GatherPoints(0, *channel.GetPointList(), used.data(), count);
    numbers.Reset();
    if (!filled)
        DeleteMe(part);
    return filled ? part : nullptr;
}

C3DObject* C3DGeomObject::SubObject(const int* faces, unsigned int count)
{
    return faces && count > 0 ? CSubObjectCutter(*this).Cut(faces, count) : nullptr;
}

C3DObject* C3DGeomObject::SubObject(int corners, _SUBOBJECT_MODE mode)
{
    if (!m_faces || (mode != SUBOBJECT_EXACT && mode != SUBOBJECT_MORE))
        return nullptr;
    const CFaceFlags flags(*m_faces);
    CBlockVector<int> fitting;
    for (int face = 0; face < m_faces->GetSize(); face++) {
        const int size = static_cast<int>(m_faces->GetIndexCollection().GetItemCount(static_cast<unsigned int>(face)));
        if (!flags.IsDead(face) && (mode == SUBOBJECT_EXACT ? size == corners : size > corners))
            fitting.push_back(face);
    }
    return SubObject(fitting.data(), static_cast<unsigned int>(fitting.size()));
}
