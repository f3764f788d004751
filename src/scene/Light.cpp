#include "scene/Light.h"

ZEL_IMPLEMENT_CREATABLE(C3DLight, C3DBaseObject)

C3DLight::C3DLight() : C3DBaseObject(OBJECT_LIGHT) { SetFlag(OBJECT_WIREFRAME_ONLY, true); }

C3DLight::~C3DLight() = default;

C3DBaseObject* C3DLight::GetFinalObject(bool) { return m_display ? nullptr : this; }
