#pragma once

#include "scene/BaseObject.h"

/// Marker without geometry.
class ZEL_API C3DDummy : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DDummy)
public:
    C3DDummy();

    unsigned int GetChecksum(unsigned int mode) const override;    // 0

protected:
    ~C3DDummy() override;
};
