#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/Swap.h"
#include "scene/GeomObject.h"
#include "scene/SceneNode.h"

void C3DSceneNode::SwapPoints(unsigned int mode)
{
    C3DGeomObject* object = GetGeomObject();
    if (!object || mode == 0)
        return;
    if (object->GetPointList())
        object->GetPointList()->SwapCoordinates(mode);
    object->GetChannels()->SwapCoordinates(mode, CHANNEL_ALL);
    object->Invalidate(CHANGE_POINTS, true);    // boxes and generated normals too
}

/// Of a key of a node's transform; other keys are not in space.
static void SwapKey(C3DKeyframe* key, unsigned int mode)
{
    if (auto* rotate = dynamic_cast<C3DRotateKey*>(key))
        rotate->SwapCoordinates(mode);
    else if (auto* scale = dynamic_cast<C3DScaleKey*>(key))
        scale->SwapCoordinates(mode & SWAP_PAIR_MASK);    // a factor has no sign to mirror; 0 swaps nothing
    else if (auto* vector = dynamic_cast<C3DVectorKey*>(key)) {
        if (key->GetTypeID() == KEY_TYPE_TRANSLATE || key->GetClassID() == KEY_PIVOT)
            vector->SwapCoordinates(mode);
    } else if (auto* matrix = dynamic_cast<C3DMatrixKey*>(key))
        matrix->SwapCoordinates(mode, true);
}

void C3DSceneNode::SwapTransformations(unsigned int mode)
{
    if (mode == 0)
        return;
    for (int i = 0; C3DKeyframe* key = GetKeyByIndex(i, nullptr, KEY_ANY); i++)
        SwapKey(key, mode);
    if (m_object)
        m_object->Invalidate(CHANGE_NORMALS, true);
}
