#pragma once

#include "tools/Api.h"

class C3DGeomObject;

/// C3DGeomObject::MergeCoplanarFaces that opens no seam in the surface: where the border of a region runs straight on, a corner stays when
/// a face beyond the border goes on having the point. A corner that all regions around it can do without goes, so that a cube of many small
/// squares becomes one of 6.
///
/// @param angle         largest angle between the normals of joined faces, in radians
/// @param channelTypes  channels that follow
/// @return              true when there are fewer faces; false when there was nothing to join or the user cancelled: nothing has changed
ZEL_API bool MergeCoplanarFacesClosed(C3DGeomObject& object, double angle, unsigned int channelTypes);
