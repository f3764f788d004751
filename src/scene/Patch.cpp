#include "scene/Patch.h"

ZEL_IMPLEMENT_CREATABLE(C3DPatch, C3DGeomObject)

C3DPatch::C3DPatch() : C3DGeomObject(OBJECT_PATCH) {}

C3DPatch::C3DPatch(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(OBJECT_PATCH, points, faces, channels)
{
}

C3DPatch::~C3DPatch() = default;
