#include "scene/MeshObjectCreator.h"

#include "scene/3DObject.h"

C3DMeshObjectCreator::C3DMeshObjectCreator() = default;

C3DMeshObjectCreator::~C3DMeshObjectCreator() = default;

C3DBaseObject* C3DMeshObjectCreator::GetNewObjectFrom(const C3DBaseObject*, bool& local)
{
    local = true;
    return GetNewPolygonalObject();
}
