#include "channels/PointNormalChannel.h"

#include "channels/NormalFaceList.h"
#include "geometry/3DVectorList.h"

ZEL_IMPLEMENT_CREATABLE(CPointNormalChannel, CChannel)

CPointNormalChannel::CPointNormalChannel(unsigned int id)
    : CChannel(CHANNEL_POINT_NORMAL, id, CHANNEL_DERIVED | CHANNEL_STALE | CHANNEL_UNFOLLOWED, C3DVectorList::Create(nullptr),
               CNormalFaceList::Create())
{
}

CPointNormalChannel::~CPointNormalChannel() = default;

C3DVectorList* CPointNormalChannel::GetNormalVectorList() const { return static_cast<C3DVectorList*>(GetPointList()); }

CNormalFaceList* CPointNormalChannel::GetNormalFaceList() const { return static_cast<CNormalFaceList*>(GetFaceList()); }

bool CPointNormalChannel::SwapCoordinates(unsigned int code) { return GetPointList() && GetNormalVectorList()->SwapCoordinates(code); }

bool CPointNormalChannel::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    return GetPointList() && GetNormalVectorList()->MatrixTransform(matrix);
}

bool CPointNormalChannel::Clean(const CGeomInfo*, CXArray<unsigned int, unsigned int>*, CXArray<unsigned int, unsigned int>*)
{
    SetFlag(CHANNEL_STALE, true);
    return false;
}

bool CPointNormalChannel::CanBeRecomputed() { return true; }

CPointNormalChannel* CPointNormalChannel::Duplicate(bool inherit) const
{
    CPointNormalChannel* channel = new CPointNormalChannel;
    if (inherit)
        channel->Inherit(*this);
    return channel;
}
