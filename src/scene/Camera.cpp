#include "scene/Camera.h"

ZEL_IMPLEMENT_CREATABLE(C3DCamera, C3DBaseObject)

C3DCamera::C3DCamera() : C3DBaseObject(OBJECT_CAMERA) { SetFlag(OBJECT_WIREFRAME_ONLY, true); }

C3DCamera::~C3DCamera() = default;

unsigned int C3DCamera::GetChecksum(unsigned int mode) const { return C3DBaseObject::GetChecksum(mode); }

C3DBaseObject* C3DCamera::GetFinalObject(bool) { return m_display ? nullptr : this; }
