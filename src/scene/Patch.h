#pragma once

#include "scene/GeomObject.h"

/// Subdivision surface over a control mesh. The mesh is this object's own points, faces and channels.
///
/// Measured and drawn as its control mesh until subdivision is there.
class ZEL_API C3DPatch : public C3DGeomObject {
    ZEL_DECLARE_CREATABLE(C3DPatch)
public:
    C3DPatch();
    C3DPatch(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);

protected:
    ~C3DPatch() override;
};
