#include "scene/Group.h"

ZEL_IMPLEMENT_CREATABLE(C3DGroup, C3DBaseObject)

C3DGroup::C3DGroup() : C3DBaseObject(OBJECT_GROUP) {}

C3DGroup::~C3DGroup() = default;
