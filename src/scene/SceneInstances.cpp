#include "scene/3DScene.h"

C3DBaseObject* C3DScene::CreateObjectInstance(const C3DBaseObject* object) const
{
    return object ? object->Copy(COPY_INSTANCE, nullptr) : nullptr;
}

C3DSceneNode* C3DScene::CreateInstance(const C3DSceneNode* node)
{
    C3DSceneNode* instance = node->CopyBranch(nullptr, COPY_INSTANCE, nullptr);
    if (instance)
        instance->DeleteAllKeys();
    return instance;
}

int C3DScene::DeleteInstanciation(C3DSceneNode* start)
{
    int count = 0;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_SUBTREE, start); pos;)
        count += GetNextNode(pos)->DeleteObjectInstanciation();
    return count;
}

int C3DScene::GetInstancesByID(C3DSceneNode* start, unsigned int objectID, CXArray<C3DSceneNode*>& nodes, bool reset) const
{
    if (reset)
        nodes.RemoveAll();
    if (objectID == 0xFFFFFFFF)
        return nodes.GetSize();
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_SUBTREE, start); pos;) {
        C3DSceneNode* node = GetNextNode(pos);
        if (node->GetObjectID() == objectID)
            nodes.Add(node);
    }
    return nodes.GetSize();
}

int C3DScene::GetInstancesByID(C3DSceneNode* start, C3DSceneNode* reference, CXArray<C3DSceneNode*>& nodes, bool reset) const
{
    if (reset)
        nodes.RemoveAll();
    if (!reference || !reference->GetBaseObject())
        return 0;
    if (!reference->GetBaseObject()->IsInstanciated()) {
        nodes.Add(reference);
        return 1;
    }
    return GetInstancesByID(start, reference->GetObjectID(), nodes, false);
}
