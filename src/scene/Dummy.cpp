#include "scene/Dummy.h"

ZEL_IMPLEMENT_CREATABLE(C3DDummy, C3DBaseObject)

C3DDummy::C3DDummy() : C3DBaseObject(OBJECT_DUMMY) {}

C3DDummy::~C3DDummy() = default;

unsigned int C3DDummy::GetChecksum(unsigned int) const { return 0; }
