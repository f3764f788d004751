#include "SceneSummary.h"

#include <algorithm>

#include "NodeTree.h"

SceneSummary::SceneSummary(C3DScene& scene)
{
    CHashTable<unsigned int> seen;
    CNodeWalkTM walk(0, true);
    const CTree& tree = *scene.GetTree();
    for (CTreeNode* next = tree.GetFirstNode(nullptr); next; next = tree.GetNextNode(next, nullptr)) {
        auto& node = static_cast<C3DSceneNode&>(*next);
        CountNode(node, walk);
        C3DBaseObject* object = node.GetBaseObject();
        if (!object)
            continue;
        if (const C3DGeomObject* const drawn = GetDrawnGeometry(node)) {
            points += static_cast<std::uint64_t>(drawn->GetPointNbr());
            faces += static_cast<std::uint64_t>(drawn->GetFaceNbr());
        }
        if (!seen.Insert(object->GetObjectID()))
            instances++;
        else {
            objects++;
            if (C3DGeomObject* geometry = node.GetGeomObject())
                CountObject(*geometry);
        }
    }
    materials = scene.GetMaterialNumber();
    ListMaps(scene);
    const CTimeRange range = scene.GetTimeRange(KEY_ANY);
    firstFrame = range.start;
    lastFrame = range.end;
    scene.GetCustomData().GetDouble(SCENE_FRAME_RATE, frameRate, 0);
}

// By material id: the tables of a scene have no order that a user would know.
void SceneSummary::ListMaps(C3DScene& scene)
{
    static constexpr struct {
        MapType type;
        const char* name;
    } TYPES[] = {{MAP_DIFFUSE, "diffuse"},
                 {MAP_AMBIENT, "ambient"},
                 {MAP_SPECULAR, "specular"},
                 {MAP_TRANSPARENCY, "transparency"},
                 {MAP_BUMP, "bump"}};
    std::map<unsigned int, const C3DMaterial*> byID;
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        const C3DMaterial* material = scene.GetNextMaterial(pos);
        byID[material->GetMaterialID()] = material;
    }
    for (const auto& [id, material] : byID)
        for (const auto& [type, name] : TYPES)
            if (const CMaterialMap* map = material->GetMaterialMap(type))
                maps.push_back({WideToUtf8(material->GetName()), name, WideToUtf8(map->GetFileName()),
                                WideToUtf8(map->GetBitmapPath(&scene, false, true))});
}

void SceneSummary::CountNode(C3DSceneNode& node, CNodeWalkTM& walk)
{
    nodes++;
    if (const _OBJECT_KINDOF kind = node.GetObjectKindOf())
        nodesByKind[kind]++;
    C3DGeomObject* const object = node.GetGeomObject();
    if (!object || object->IsFlagSet(OBJECT_EMPTY) || object->GetPointNbr() == 0)
        return;
    C4x4TMatrix<float> matrix;
    walk.Get(&node, matrix);
    ExtendBounds(*object, matrix);
}

void SceneSummary::CountObject(C3DGeomObject& object)
{
    storedPoints += static_cast<std::uint64_t>(object.GetPointNbr());
    if (const C3DFaceList* list = object.GetFaceList()) {
        storedFaces += static_cast<std::uint64_t>(list->GetSize());
        for (unsigned int i = 0; i < static_cast<unsigned int>(list->GetSize()); i++) {
            int corners;
            list->GetIndexes(i, corners);
            storedCorners += static_cast<std::uint64_t>(corners);
            triangles += corners == 3;
            quads += corners == 4;
            largerFaces += corners > 4;
        }
    }
    CDependentChannels* channels = object.GetChannels();
    const auto count = [&](_Channel3DType type) { return static_cast<std::uint64_t>(channels->GetChannelsNumber(type, true)); };
    uvwChannels += count(CHANNEL_UVW);
    colourChannels += count(CHANNEL_VC);
    weightChannels += count(CHANNEL_WEIGHT);
    specifiedNormalChannels += count(CHANNEL_SPEC_NORMAL);
}

// Of the faces, and of the points where there are none.
void SceneSummary::ExtendBounds(C3DGeomObject& object, C4x4TMatrix<float>& matrix)
{
    C3DTPoint<float> nodeMin, nodeMax;
    const CGeomInfo info(&object);
    if (object.GetFaceNbr() == 0)
        object.GetPointList()->GetBoundingBox(nodeMin, nodeMax, 0, false, &matrix);
    else if (!object.GetFaceList()->GetBoundingBox(&info, nodeMin, nodeMax, 0, false, &matrix))
        return;
    for (int i = 0; i < 3; i++) {
        min[i] = hasBounds ? std::min(min[i], nodeMin[i]) : nodeMin[i];
        max[i] = hasBounds ? std::max(max[i], nodeMax[i]) : nodeMax[i];
    }
    hasBounds = true;
}

const char* GetKindName(_OBJECT_KINDOF kind)
{
    switch (kind) {
    case OBJECT_POLYGONAL: return "OBJECT_POLYGONAL";
    case OBJECT_CURVE: return "OBJECT_CURVE";
    case OBJECT_PATCH: return "OBJECT_PATCH";
    case OBJECT_GROUP: return "OBJECT_GROUP";
    case OBJECT_DUMMY: return "OBJECT_DUMMY";
    case OBJECT_CAMERA: return "OBJECT_CAMERA";
    case OBJECT_LIGHT: return "OBJECT_LIGHT";
    }
    return "";
}
