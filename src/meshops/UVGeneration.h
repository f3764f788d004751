#pragma once

#include "scene/Forward.h"
#include "tools/Api.h"

/// For each point of an object the point of a texture channel that one of its corners has, the last one of several; -1 for none.
///
/// @param count  out: number of points of the object
/// @return       the caller's (delete[]); null, with count 0, without channel, points or faces with data
ZEL_API int* GetUVVertexFromUVFace(C3DGeomObject* object, unsigned int channelID, int& count);
