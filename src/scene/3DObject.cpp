#include "scene/3DObject.h"

#include "channels/UVWChannel.h"
#include "geometry/3DPointList.h"

ZEL_IMPLEMENT_CREATABLE(C3DObject, C3DGeomObject)

C3DObject::C3DObject() : C3DGeomObject(OBJECT_POLYGONAL) {}

C3DObject::C3DObject(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(OBJECT_POLYGONAL, points, faces, channels)
{
}

C3DObject::C3DObject(const C3DObject& other) : C3DGeomObject(other) {}

C3DObject::~C3DObject() = default;

bool C3DObject::Init(int pointNbr, int faceNbr, int cornersPerFace, int hasUVW, int uvwPointNbr, unsigned int uvwChannelID)
{
    C3DFaceList* faces = C3DFaceList::Create(nullptr);
    faces->SetSize(faceNbr, cornersPerFace, CFaceList::SIZE_EXACT);
    SetFaceList(faces, true);
    C3DPointList* points = C3DPointList::Create(nullptr);
    points->SetSize(pointNbr);
    SetPointList(points, true);
    if (hasUVW && uvwPointNbr) {
        CChannel* channel = CChannel::Create(CHANNEL_UVW, uvwChannelID);
        channel->GetPointList()->SetSize(uvwPointNbr);
        channel->GetFaceList()->SetSize(faceNbr, cornersPerFace, CFaceList::SIZE_EXACT);
        AddChannel(channel);
    }
    Invalidate(CHANGE_POINTS | CHANGE_FACES | CHANGE_NORMALS, true);
    return true;
}
