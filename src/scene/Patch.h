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

    static constexpr unsigned int MOST_LEVEL = 8;    ///< each level has four times the faces

    /// Level of subdivision; 0xFFFFFFFF when none has been set.
    unsigned int GetLevel() const { return m_level; }
    /// Held to MOST_LEVEL. Marks the display stale when it changes.
    void SetLevel(unsigned int level);

protected:
    ~C3DPatch() override;

private:
    unsigned int m_level = 0xFFFFFFFF;
};
