#include "scene/MaterialMap.h"

#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(CMaterialMap, CXObject)

CMaterialMap::CMaterialMap() = default;

CMaterialMap::~CMaterialMap() = default;

void CMaterialMap::Serialize(CXArchive& ar) { C3DKeyframable::Serialize(ar); }
