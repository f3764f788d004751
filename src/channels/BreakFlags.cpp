// Break flags: which geometry points are break points of some channel.

#include "channels/DependentChannels.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"

bool CDependentChannels::InitBreakFlags(const CGeomInfo* info, unsigned int, float uvTolerance, int colourTolerance, float normalAngle)
{
    CPointList* source = info ? info->GetSrcPointList() : nullptr;
    if (!source)
        return false;
    source->SetPointsFlags(POINT_SHARE_UV | POINT_VC_FRONTIER | POINT_NORMAL_BREAK, false);

    bool visited = false;
    const auto visit = [&](_Channel3DType type, auto mark) {
        for (int i = 0; i < GetSize(); i++) {
            CChannel* channel = GetAt(i);
            if (channel->GetType() != type || channel->IsFlagSet(CHANNEL_INVALID))
                continue;
            mark(channel);
            visited = true;
        }
    };
    visit(CHANNEL_UVW, [&](CChannel* channel) { static_cast<CUVWChannel*>(channel)->InitShareUVFlag(info, uvTolerance, false); });
    visit(CHANNEL_VC, [&](CChannel* channel) { static_cast<CVCChannel*>(channel)->InitVCFrontierFlag(info, colourTolerance, false); });
    visit(CHANNEL_SPEC_NORMAL, [&](CChannel* channel) {
        static_cast<CSpecNormalChannel*>(channel)->InitNormalBreakFlag(info, normalAngle, false, NORMAL_AREA);
    });
    return visited;
}
