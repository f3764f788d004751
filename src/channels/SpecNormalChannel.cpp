#include "channels/SpecNormalChannel.h"

#include <cmath>
#include <numbers>

#include "channels/NormalFaceList.h"
#include "geometry/3DVectorList.h"

ZEL_IMPLEMENT_CREATABLE(CSpecNormalChannel, CChannel)

CSpecNormalChannel::CSpecNormalChannel(unsigned int id)
    : CChannel(CHANNEL_SPEC_NORMAL, id, CHANNEL_DERIVED | CHANNEL_STALE | CHANNEL_SKIP_UNSET, C3DVectorList::Create(nullptr),
               CNormalFaceList::Create())
{
}

CSpecNormalChannel::~CSpecNormalChannel() = default;

C3DVectorList* CSpecNormalChannel::GetNormalVectorList() const { return static_cast<C3DVectorList*>(GetPointList()); }

CNormalFaceList* CSpecNormalChannel::GetNormalFaceList() const { return static_cast<CNormalFaceList*>(GetFaceList()); }

bool CSpecNormalChannel::SwapCoordinates(unsigned int code) { return GetPointList() && GetNormalVectorList()->SwapCoordinates(code); }

bool CSpecNormalChannel::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    return GetPointList() && GetNormalVectorList()->MatrixTransform(matrix);
}

bool CSpecNormalChannel::Compare(const CPt* a, const CPt* b, double tolerance) const
{
    const C3DTVector<float>& first = *static_cast<const C3DTVector<float>*>(a);
    const C3DTVector<float>& second = *static_cast<const C3DTVector<float>*>(b);
    if (tolerance == 0)
        return first == second;
    if (a == b)
        return true;
    const bool unset = a->IsFlagSet(POINT_UNSET);
    if (unset || b->IsFlagSet(POINT_UNSET))
        return unset && b->IsFlagSet(POINT_UNSET);
    return !(std::cos(tolerance * std::numbers::pi) > Dot(first, second));
}

CSpecNormalChannel* CSpecNormalChannel::Duplicate(bool inherit) const
{
    CSpecNormalChannel* channel = new CSpecNormalChannel;
    if (inherit)
        channel->Inherit(*this);
    return channel;
}
