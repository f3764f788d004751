#include "channels/WeightChannel.h"

#include <algorithm>
#include <cmath>

#include "channels/WeightFaceList.h"
#include "channels/WeightPointList.h"
#include "geometry/GeomInfo.h"

ZEL_IMPLEMENT_CREATABLE(CWeightChannel, CChannel)

CWeightChannel::CWeightChannel(unsigned int id, bool pointsOnly)
    : CChannel(CHANNEL_WEIGHT, id, 0, CWeightPointList::Create(), pointsOnly ? nullptr : CWeightFaceList::Create())
{
}

CWeightChannel::~CWeightChannel() = default;

CWeightFaceList* CWeightChannel::GetWeightFaceList() const { return static_cast<CWeightFaceList*>(GetFaceList()); }

CWeightPointList* CWeightChannel::GetWeightPointList() const { return static_cast<CWeightPointList*>(GetPointList()); }

CWeightChannel* CWeightChannel::Duplicate(bool inherit) const
{
    CWeightChannel* channel = new CWeightChannel(NO_CHANNEL_ID, !GetFaceList());
    if (inherit)
        channel->Inherit(*this);
    return channel;
}

bool CWeightChannel::Compare(const CPt* a, const CPt* b, double tolerance) const
{
    const float first = static_cast<const CWeightPoint*>(a)->GetWeight();
    const float second = static_cast<const CWeightPoint*>(b)->GetWeight();
    return tolerance >= std::fabs(first - second);
}

void CWeightChannel::GetLimits(float& minimum, float& maximum)
{
    minimum = maximum = 0;
    CWeightPointList* points = GetWeightPointList();
    const int count = points ? points->GetSize() : 0;
    if (count == 0)
        return;
    const CWeightPoint* point = points->GetFirst();
    minimum = maximum = point->GetWeight();
    for (int i = 1; i < count; i++) {
        point = points->GetNext(point);
        minimum = std::min(minimum, point->GetWeight());
        maximum = std::max(maximum, point->GetWeight());
    }
}

void CWeightChannel::Normalize(bool invert)
{
    CWeightPointList* points = GetWeightPointList();
    const int count = points ? points->GetSize() : 0;
    if (count == 0)
        return;
    float minimum, maximum;
    GetLimits(minimum, maximum);
    float range = maximum - minimum;
    if (range < 1e-15)
        range = 1;
    CWeightPoint* point = points->GetFirst();
    for (int i = 0; i < count; i++, point = points->GetNext(point)) {
        const float weight = (point->GetWeight() - minimum) / range;
        point->SetWeight(invert ? 1 - weight : weight);
    }
}

CWeightPointList* CWeightChannel::GetWeightPointOnlyList(CGeomInfo* info)
{
    CWeightPointList* own = GetWeightPointList();
    if (!GetFaceList()) {
        own->AddRef();
        return own;
    }
    const CPointList* source = info ? info->GetSrcPointList() : nullptr;
    const int count = source ? source->GetSize() : 0;
    CWeightPointList* means = CWeightPointList::Create();
    means->SetSize(count, false, 0);
    InitGraph(info);
    CWeightPoint* mean = means->GetFirst();
    for (int p = 0; p < count; p++, mean = means->GetNext(mean)) {
        int itemCount;
        const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(p, itemCount);
        double sum = 0;
        for (int i = 0; i < itemCount; i++)
            if (const CWeightPoint* point = own->ElementAt(items[i].channelPoint))
                sum += point->GetWeight();
        mean->SetWeight(itemCount ? static_cast<float>(sum / itemCount) : 0);
    }
    DeleteGraph();
    return means;
}
