#pragma once

#include "scene/Forward.h"
#include "tools/CustomData.h"
#include "tools/Hash.h"

/// What the data pointer of an archive holds while nodes of a scene go through it. Without one (a null data pointer) a node
/// stores a shared object in full and gets no scene.
struct CSceneStreamContext {
    explicit CSceneStreamContext(C3DScene* scene_) : scene(scene_) {}

    C3DScene* scene;
    CCustomData scratch;    ///< free for whoever streams

    // Shared objects: those whose full record is in the stream, and how to find one of them again.
    CHashMap<unsigned int, const C3DBaseObject*> storedObjects;
    CHashMap<unsigned int, C3DBaseObject*> loadedObjects;
    bool indexed = false;    ///< loadedObjects follows the tree

    /// True when the full record of the object is in the stream already; it counts as there from now on. An object whose id another
    /// one took first is never a reference: it would be read as that one.
    bool IsStored(const C3DBaseObject* object);
    /// Every object that was read. Costs nothing until somebody asks.
    void ObjectLoaded(C3DBaseObject* object);
    /// The first object of that id in the scene, or null.
    C3DBaseObject* FindLoaded(unsigned int id);
};
