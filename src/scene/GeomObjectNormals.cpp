#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "geometry/GeomInfo.h"
#include "scene/GeomObject.h"

CFaceNormalChannel* C3DGeomObject::GetFaceNormalChannel()
{
    if (GetKindOf() & (OBJECT_CURVE | OBJECT_GROUP))
        return nullptr;
    CFaceNormalChannel* channel = m_channels->GetFaceNormalChannel();
    const CGeomInfo info(this);
    channel->InitNormals(&info);
    return channel;
}

CPointNormalChannel* C3DGeomObject::GetPointNormalChannel()
{
    if (GetKindOf() & (OBJECT_CURVE | OBJECT_GROUP))
        return nullptr;
    CPointNormalChannel* channel = m_channels->GetPointNormalChannel();
    const CGeomInfo info(this);
    channel->InitNormals(&info, GetSmoothAngle());
    return channel;
}
