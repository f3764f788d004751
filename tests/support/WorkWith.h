#pragma once

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "support/Owned.h"

/// What programs do with a scene that they got from a file. Nothing here counts on the scene being a sound one.
inline void WorkWith(C3DScene& scene)
{
    C4x4TMatrix<float> matrix;
    C3DTPoint<float> min, max;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        C3DSceneNode& node = *scene.GetNextNode(pos);
        node.GetNodeTM(3, matrix, true);
        node.GetDisplayName();
        C3DGeomObject* const object = node.GetGeomObject();
        if (!object)
            continue;
        object->GetBoundingBox(min, max, BOX_FACES);
        object->GetMaterialsHashMap(true);
        object->GetFaceNormalChannel();
        object->GetPointNormalChannel();
        object->GetChecksum(0xFFFFFFFF);
        object->Update(&scene, 0xFFF0000);
        for (CChannel* const channel : *object->GetChannels())
            channel->GetTypeString();
    }
    scene.GetRoot()->GetBoundingBox(0, min, max, BOX_FACES | BOX_POINTS);
    scene.GetTimeRange(KEY_ANY);
    scene.SetCurrentTime(5);
    C3DFaceList::MaterialsMap uses;
    scene.GetMaterials(nullptr, uses, true);
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial& material = *scene.GetNextMaterial(pos);
        material.GetDiffuseColor(2, true);
        scene.FindMaterial(material, false);
        if (CMaterialMap* const map = material.GetDiffuseMaps())
            map->GetMatrix(1, matrix);
    }
    const Owned<C3DScene> copy(scene.Copy(nullptr, 0, nullptr));
    scene.SwapCoordinates(0x1);
    scene.GenerateUVW();
    scene.Clean();
    if (!copy)
        return;
    copy->DeleteInstanciation(nullptr);
    for (C3DNodePos pos = copy->GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        C3DGeomObject& object = *copy->GetNextNode(pos)->GetGeomObject();
        object.Weld3DPoints(0.01, false, CHANNEL_ALL, 0);
        object.Triangulate(CHANNEL_ALL, static_cast<_FACE_PROPERTIES>(0), true);
        object.UnifyNormals();
        object.CleanChannels(0xFFFFFFFF, false);
    }
    copy->Clean();
    copy->CleanGroups(false);
}
