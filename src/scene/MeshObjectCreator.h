#pragma once

#include "scene/ObjectCreator.h"

/// Makes polygon objects of whatever geometry is copied.
class ZEL_API C3DMeshObjectCreator : public C3DObjectCreator {
public:
    C3DMeshObjectCreator();
    ~C3DMeshObjectCreator() override;
    C3DBaseObject* GetNewObjectFrom(const C3DBaseObject* object, bool& local) override;
};
