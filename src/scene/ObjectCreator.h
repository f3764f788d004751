#pragma once

#include "scene/Forward.h"
#include "tools/CustomData.h"
#include "tools/Hash.h"

class C3DFaceList;
class C3DPointList;

/// Factory of copies: decides what a copied object becomes.
///
/// The default makes the same kind. A derived creator may make other kinds (GetNewPolygonalObject for every source turns all
/// geometry into polygon objects), lists of its own, or take over a copy altogether.
class ZEL_API C3DObjectCreator {
public:
    C3DObjectCreator() = default;
    C3DObjectCreator(const C3DObjectCreator&) = delete;
    C3DObjectCreator& operator=(const C3DObjectCreator&) = delete;
    virtual ~C3DObjectCreator();

    /// What takes the place of `object` in C3DScene::ConvertToType; `object` itself, here always, leaves it.
    virtual C3DBaseObject* ConvertToType(const C3DSceneNode* node, const C3DBaseObject* object);
    /// An empty object for a copy of `object`, owned by the caller; null for an unknown kind. `local` false says that the
    /// creator has filled in the geometry too.
    virtual C3DBaseObject* GetNewObjectFrom(const C3DBaseObject* object, bool& local);
    /// False leaves a node out of a scene copy or conversion.
    virtual bool CanProcess(const C3DSceneNode* node, const C3DBaseObject* object);
    virtual C3DFaceList* GetNewFaceList();
    virtual C3DPointList* GetNewPointList();
    virtual C3DObject* GetNewPolygonalObject();    // with both lists
    virtual C3DCurve* GetNewCurveObject();         // with a point list
    virtual C3DPatch* GetNewPatchObject();         // with both lists
    virtual C3DGroup* GetNewGroupObject();
    virtual C3DDummy* GetNewDummy();
    virtual C3DCamera* GetNewCamera();
    virtual C3DLight* GetNewLight();

    /// Free for derived creators.
    CCustomData& GetCustomData() { return m_customData; }
    /// From the id of a source object to the id of its first copy in the destination of a scene copy.
    CHashMap<unsigned int, unsigned int, unsigned int>& GetObjectMap() { return m_objects; }

private:
    CCustomData m_customData;
    CHashMap<unsigned int, unsigned int, unsigned int> m_objects;
};
