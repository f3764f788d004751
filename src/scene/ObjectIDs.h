#pragma once

#include "scene/3DScene.h"
#include "tools/Hash.h"

/// The object ids of a scene that objects come into: an id names one object there.
class CObjectIDs {
public:
    /// Enters an object, once or for each of its nodes. It gets a new id when another object has the one it came with. Nothing for null.
    void Enter(C3DBaseObject* object)
    {
        while (object && !m_objects.Insert(object->GetObjectID(), object)) {
            if (*m_objects.Find(object->GetObjectID()) == object)
                return;
            object->RenewObjectID();    // that one may be taken as well: behind the last id the counter starts anew
        }
    }
    /// The objects of all nodes of a scene in walking order.
    void EnterNodes(const C3DScene& scene)
    {
        C3DBaseObject* object;
        for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
            scene.GetNextNode(object, pos);
            Enter(object);
        }
    }

private:
    CHashMap<unsigned int, const C3DBaseObject*> m_objects;
};
