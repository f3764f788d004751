#include "channels/FaceNormalChannel.h"

#include "geometry/3DVectorList.h"

ZEL_IMPLEMENT_CREATABLE(CFaceNormalChannel, CChannel)

CFaceNormalChannel::CFaceNormalChannel(unsigned int id)
    : CChannel(CHANNEL_FACE_NORMAL, id, CHANNEL_DERIVED | CHANNEL_STALE | CHANNEL_UNFOLLOWED, C3DVectorList::Create(nullptr), nullptr)
{
}

CFaceNormalChannel::~CFaceNormalChannel() = default;

C3DVectorList* CFaceNormalChannel::GetNormalVectorList() const { return static_cast<C3DVectorList*>(GetPointList()); }

bool CFaceNormalChannel::SwapCoordinates(unsigned int code) { return GetPointList() && GetNormalVectorList()->SwapCoordinates(code); }

bool CFaceNormalChannel::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    return GetPointList() && GetNormalVectorList()->MatrixTransform(matrix);
}

bool CFaceNormalChannel::Clean(const CGeomInfo*, CXArray<unsigned int, unsigned int>*, CXArray<unsigned int, unsigned int>*)
{
    SetFlag(CHANNEL_STALE, true);
    return false;
}

bool CFaceNormalChannel::CanBeRecomputed() { return true; }

CFaceNormalChannel* CFaceNormalChannel::Duplicate(bool inherit) const
{
    CFaceNormalChannel* channel = new CFaceNormalChannel;
    if (inherit)
        channel->Inherit(*this);
    return channel;
}
