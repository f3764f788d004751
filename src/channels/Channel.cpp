#include "channels/Channel.h"

#include <mutex>

#include "channels/ChannelGraph.h"
#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "channels/WeightChannel.h"
#include "channels/WeightFaceList.h"
#include "geometry/FaceList.h"
#include "geometry/LoadedCorners.h"
#include "geometry/PointList.h"

ZEL_IMPLEMENT_DYNAMIC(CChannel, CXObject)

// Ids of the process. Several threads may each build channels of their own; two of them must not get one id, nor a thread the same twice.

constexpr unsigned int FIRST_CHANNEL_ID = 10000;

static std::mutex s_lock;
static unsigned int s_nextID = FIRST_CHANNEL_ID;
static unsigned int s_liveChannels = 0;

static unsigned int NextID()
{
    if (s_nextID == NO_CHANNEL_ID)
        s_nextID = FIRST_CHANNEL_ID;
    return s_nextID++;
}

unsigned int CChannel::CreateID()
{
    const std::lock_guard<std::mutex> guard(s_lock);
    return NextID();
}

static void MoveCounterPast(unsigned int id)
{
    const std::lock_guard<std::mutex> guard(s_lock);
    if (id >= s_nextID)
        s_nextID = id + 1;
}

static unsigned int CountChannel(unsigned int id)
{
    const std::lock_guard<std::mutex> guard(s_lock);
    s_liveChannels++;
    return id != NO_CHANNEL_ID ? id : NextID();
}

CChannel::CChannel(_Channel3DType type, unsigned int id, unsigned int flags, CPointList* points, CFaceList* faces)
    : m_id(CountChannel(id)), m_type(type), m_flags(flags), m_pointList(points), m_faceList(faces)
{
}

CChannel::~CChannel()
{
    DeleteMe(m_pointList);
    DeleteMe(m_faceList);
    const std::lock_guard<std::mutex> guard(s_lock);
    if (--s_liveChannels == 0)
        s_nextID = FIRST_CHANNEL_ID;
}

CChannel* CChannel::Create(_Channel3DType type, unsigned int id)
{
    switch (type) {
    case CHANNEL_UVW: return new CUVWChannel(id);
    case CHANNEL_VC: return new CVCChannel(id);
    case CHANNEL_WEIGHT: return new CWeightChannel(id, true);
    case CHANNEL_POINT_NORMAL: return new CPointNormalChannel(id);
    case CHANNEL_FACE_NORMAL: return new CFaceNormalChannel(id);
    case CHANNEL_SPEC_NORMAL: return new CSpecNormalChannel(id);
    default: return nullptr;
    }
}

void CChannel::SetChannelID(unsigned int id) { m_id = id != NO_CHANNEL_ID ? id : CreateID(); }

CXTString<wchar_t> CChannel::GetTypeString() const
{
    static constexpr struct {
        _Channel3DType type;
        unsigned int text;
    } names[] = {
        {CHANNEL_UVW, 9354},          {CHANNEL_VC, 9355},          {CHANNEL_WEIGHT, 9356},
        {CHANNEL_POINT_NORMAL, 9352}, {CHANNEL_FACE_NORMAL, 9351}, {CHANNEL_SPEC_NORMAL, 9353},
    };
    CXTString<wchar_t> text;
    for (const auto& name : names)
        if (name.type == m_type)
            text.LoadStringW(name.text);
    return text;
}

bool CChannel::SwapCoordinates(unsigned int) { return false; }

bool CChannel::MatrixTransform(const C4x4TMatrix<float>&) { return false; }

bool CChannel::Compare(const CPt*, const CPt*, double) const { return false; }

bool CChannel::CanBeRecomputed() { return false; }

void CChannel::SetPointList(_Channel3DType, CPointList* list, bool deleteOld)
{
    if (list == m_pointList)
        return;
    if (deleteOld)
        DeleteMe(m_pointList);
    m_pointList = list;
}

void CChannel::SetFaceList(_Channel3DType, CFaceList* list, bool deleteOld)
{
    if (list == m_faceList)
        return;
    if (deleteOld)
        DeleteMe(m_faceList);
    m_faceList = list;
    m_graph.reset();    // the stamps of two lists say nothing about each other
}

void CChannel::FreeExtra()
{
    if (m_faceList)
        m_faceList->FreeExtra();
    if (m_pointList)
        m_pointList->FreeExtra();
}

void CChannel::Inherit(const CChannel& source)
{
    m_flags = source.m_flags;
    if (IsFlagSet(CHANNEL_DERIVED))
        SetFlag(CHANNEL_STALE, true);
    if (m_faceList && source.m_faceList)
        m_faceList->Inherit(*source.m_faceList);
    if (m_pointList && source.m_pointList)
        m_pointList->Inherit(*source.m_pointList);
}

CChannel* CChannel::Copy(unsigned int options) const
{
    CChannel* copy = Duplicate(true);
    copy->m_customData = m_customData;
    if (options & CHANNEL_COPY_KEEP_ID)
        copy->m_id = m_id;
    if (options & CHANNEL_COPY_NO_DATA)
        return copy;
    if (copy->m_faceList && m_faceList)
        *copy->m_faceList = *m_faceList;
    if (copy->m_pointList && m_pointList)
        *copy->m_pointList = *m_pointList;
    return copy;
}

void CChannel::Serialize(CXArchive& ar)
{
    if (ar.IsStoring())
        Store(ar);
    else
        Load(ar);
}

void CChannel::Store(CXArchive& ar)
{
    ar << static_cast<int>(m_type) << m_flags << m_id;
    ar << (m_faceList ? 1 : 0);
    if (m_faceList)
        m_faceList->Serialize(ar);
    ar << (m_pointList ? 1 : 0);
    if (m_pointList)
        m_pointList->Serialize(ar);
    m_customData.Serialize(ar);
}

static bool ReadPresence(CXArchive& ar)
{
    int word;
    ar >> word;
    if (word != 0 && word != 1)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"presence of a channel's list");
    return word == 1;
}

void CChannel::Load(CXArchive& ar)
{
    int type;
    unsigned int flags, id;
    ar >> type >> flags >> id;
    if (type != m_type || id == NO_CHANNEL_ID)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"type or id of a channel");
    m_graph.reset();
    LoadFaces(ar);
    LoadPoints(ar);
    if (m_faceList && !CheckLoadedCorners(*m_faceList, m_pointList ? m_pointList->GetSize() : 0))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"corner of a channel");
    m_customData.Serialize(ar);

    m_flags = flags;
    if (IsFlagSet(CHANNEL_DERIVED))
        SetFlag(CHANNEL_STALE, true);
    m_id = id;
    MoveCounterPast(id);
}

void CChannel::LoadFaces(CXArchive& ar)
{
    if (!ReadPresence(ar)) {
        if (m_type == CHANNEL_WEIGHT)    // the points-only form
            SetFaceList(m_type, nullptr, true);
        else if (m_faceList)
            m_faceList->RemoveAll();
        return;
    }
    if (!m_faceList && m_type == CHANNEL_WEIGHT)    // built points only, stored per corner
        m_faceList = CWeightFaceList::Create();
    if (!m_faceList)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"face list of a channel that has none");
    m_faceList->Serialize(ar);
}

void CChannel::LoadPoints(CXArchive& ar)
{
    if (!ReadPresence(ar)) {
        if (m_pointList)
            m_pointList->RemoveAll();
        return;
    }
    if (!m_pointList)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"point list of a channel that has none");
    m_pointList->Serialize(ar);
}
