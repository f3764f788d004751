#pragma once

#include "scene/BaseObject.h"

/// Object of a node that only carries children.
class ZEL_API C3DGroup : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DGroup)
public:
    C3DGroup();

protected:
    ~C3DGroup() override;
};
