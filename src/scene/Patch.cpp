#include "scene/Patch.h"

ZEL_IMPLEMENT_CREATABLE(C3DPatch, C3DGeomObject)

C3DPatch::C3DPatch() : C3DGeomObject(OBJECT_PATCH) {}

C3DPatch::C3DPatch(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels)
    : C3DGeomObject(OBJECT_PATCH, points, faces, channels)
{
}

C3DPatch::~C3DPatch() = default;

void C3DPatch::SetLevel(unsigned int level)
{
    if (level > MOST_LEVEL)
        level = MOST_LEVEL;
    if (level == m_level)
        return;
    m_level = level;
    Invalidate(OBJECT_UPDATE_DISPLAY, true);
}
