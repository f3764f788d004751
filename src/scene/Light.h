#pragma once

#include "scene/BaseObject.h"

/// Light. Its parameters live in the custom data.
class ZEL_API C3DLight : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DLight)
public:
    C3DLight();

protected:
    ~C3DLight() override;
};
