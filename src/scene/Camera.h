#pragma once

#include "scene/BaseObject.h"

/// Camera. Its parameters live in the custom data.
class ZEL_API C3DCamera : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DCamera)
public:
    C3DCamera();

protected:
    ~C3DCamera() override;
};
