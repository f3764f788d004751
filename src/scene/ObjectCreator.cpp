#include "scene/ObjectCreator.h"

#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/Camera.h"
#include "scene/Curve.h"
#include "scene/Dummy.h"
#include "scene/Group.h"
#include "scene/Light.h"
#include "scene/Patch.h"

C3DObjectCreator::~C3DObjectCreator() = default;

C3DBaseObject* C3DObjectCreator::ConvertToType(const C3DSceneNode*, const C3DBaseObject* object)
{
    return const_cast<C3DBaseObject*>(object);
}

C3DBaseObject* C3DObjectCreator::GetNewObjectFrom(const C3DBaseObject* object, bool& local)
{
    local = true;
    switch (object->GetKindOf()) {
    case OBJECT_POLYGONAL: return GetNewPolygonalObject();
    case OBJECT_CURVE: return GetNewCurveObject();
    case OBJECT_PATCH: return GetNewPatchObject();
    case OBJECT_GROUP: return GetNewGroupObject();
    case OBJECT_DUMMY: return GetNewDummy();
    case OBJECT_CAMERA: return GetNewCamera();
    case OBJECT_LIGHT: return GetNewLight();
    }
    return nullptr;
}

bool C3DObjectCreator::CanProcess(const C3DSceneNode*, const C3DBaseObject*) { return true; }

C3DFaceList* C3DObjectCreator::GetNewFaceList() { return C3DFaceList::Create(nullptr); }

C3DPointList* C3DObjectCreator::GetNewPointList() { return C3DPointList::Create(nullptr); }

C3DObject* C3DObjectCreator::GetNewPolygonalObject()
{
    C3DFaceList* faces = GetNewFaceList();
    return new C3DObject(GetNewPointList(), faces, nullptr);
}

C3DCurve* C3DObjectCreator::GetNewCurveObject() { return new C3DCurve(GetNewPointList(), nullptr, nullptr); }

C3DPatch* C3DObjectCreator::GetNewPatchObject()
{
    C3DFaceList* faces = GetNewFaceList();
    return new C3DPatch(GetNewPointList(), faces, nullptr);
}

C3DGroup* C3DObjectCreator::GetNewGroupObject() { return new C3DGroup; }

C3DDummy* C3DObjectCreator::GetNewDummy() { return new C3DDummy; }

C3DCamera* C3DObjectCreator::GetNewCamera() { return new C3DCamera; }

C3DLight* C3DObjectCreator::GetNewLight() { return new C3DLight; }
