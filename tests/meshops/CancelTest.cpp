#include <functional>

#include "channels/WeightChannel.h"
#include "channels/WeightPointList.h"
#include "meshops/CoplanarMerge.h"
#include "meshops/ObjectCase.h"
#include "meshops/Slice.h"
#include "meshops/SymetryMap.h"
#include "scene/3DScene.h"
#include "scene/Patch.h"
#include "support/Streams.h"
#include "tools/Progress.h"

namespace {

/// Wants to stop at the n-th time that it is told something; 0 for never.
class Impatient : public IProgressSink {
public:
    explicit Impatient(int at) : m_at(at) {}
    bool OnProgress(const CXTString<wchar_t>&, double fraction) override
    {
        EXPECT_LE(fraction, 1.0);
        return ++told != m_at;
    }
    int told = 0;

private:
    int m_at;
};

constexpr _FACE_PROPERTIES ALL_FACES{};

/// Two sheets of squares, one of them turned round in places, with texture coordinates that differ from face to face.
Owned<C3DObject> Sheets(bool turned = true)
{
    std::vector<XYZ> points;
    std::vector<std::vector<int>> corners;
    constexpr int SIDE = 12;
    for (int sheet = 0; sheet < 2; sheet++)
        for (int i = 0; i < (SIDE + 1) * (SIDE + 1); i++)
            points.push_back({static_cast<float>(i % (SIDE + 1)), static_cast<float>(i / (SIDE + 1)), 100.0f * sheet});
    for (int sheet = 0; sheet < 2; sheet++)
        for (int i = 0; i < SIDE * SIDE; i++) {
            const int at = sheet * (SIDE + 1) * (SIDE + 1) + i / SIDE * (SIDE + 1) + i % SIDE;
            std::vector<int> quad{at, at + 1, at + SIDE + 2, at + SIDE + 1};
            corners.push_back(i % 5 || !turned ? quad : std::vector<int>(quad.rbegin(), quad.rend()));
        }
    Owned<C3DObject> object = ObjectOf(MakeMesh(points, corners));
    AddCornerUVW(*object, 1);
    return object;
}

StreamBytes BytesOf(C3DGeomObject& object)
{
    // Marks of a look at it, and what that worked out.
    object.GetPointList()->SetPointsFlags(0xFFFFFFFF, false);
    object.GetChannels()->RemoveChannels(CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL, 0, true);
    for (CChannel* channel : *object.GetChannels())
        channel->GetPointList()->SetPointsFlags(0xFFFFFFFF, false);
    return Stored(object);
}

}

// Faults in mind: an operation that tells nothing, one that goes on, one that leaves the object half done.
TEST(Cancel, AStoppedOperationLeavesTheObjectAsItWas)
{
    const struct {
        const char* name;
        bool turned;
        std::function<bool(C3DObject&)> run;
    } rows[] = {
        {"triangulate", true, [](C3DObject& o) { return o.Triangulate(CHANNEL_ALL, ALL_FACES, true); }},
        {"weld", true, [](C3DObject& o) { return o.Weld3DPoints(1.5, true, CHANNEL_ALL, 0); }},
        {"merge coplanar", false, [](C3DObject& o) { return o.MergeCoplanarFaces(0.1, 0); }},
        {"unify", true, [](C3DObject& o) { return o.UnifyNormals(); }},
        {"disconnect", true, [](C3DObject& o) { return o.DisconnectBorderFaces(CHANNEL_ALL, 0, 0, nullptr, false, nullptr); }},
        {"explode", true,
         [](C3DObject& o) {
             CXArray<C3DGeomObject*, C3DGeomObject*> parts;
             const bool made = o.ExplodeIntoIsolatedParts(parts) > 0;
             for (C3DGeomObject* part : parts)
                 DeleteMe(part);
             return made;
         }},
        {"symmetry", true,
         [](C3DObject& o) {
             C3DPointSymetryMap* map = o.GetPointList()->InitSymetryMap(AXIS_X, 0.5);
             DeleteMe(map);
             return map != nullptr;
         }},
        {"concatenate", true,
         [](C3DObject& o) {
             const Owned<C3DObject> source = Sheets();
             CXArray<C3DGeomObject*, C3DGeomObject*> sources;
             sources.Add(source.get());
             sources.Add(&o);
             const Owned<C3DObject> all = ObjectOf(Mesh());
             const bool joined = all->Concatenate(nullptr, sources, nullptr);
             EXPECT_EQ(joined, all->GetPointNbr() > 0);
             EXPECT_EQ(joined, all->GetChannels()->GetSize() > 0);
             return joined;
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        int told;
        {
            const Owned<C3DObject> object = Sheets(row.turned);
            Impatient sink(0);
            const CProgressScope scope(&sink);
            EXPECT_TRUE(row.run(*object));
            told = sink.told;
        }
        EXPECT_GT(told, 1);
        int stopped = 0;
        for (int at = 1; at <= told; at += 1 + at / 4) {
            const Owned<C3DObject> object = Sheets(row.turned);
            const StreamBytes before = BytesOf(*object);
            Impatient sink(at);
            const CProgressScope scope(&sink);
            if (row.run(*object))
                continue;    // it was too late
            stopped++;
            EXPECT_EQ(BytesOf(*object), before) << at;
        }
        EXPECT_GT(stopped, 0);
    }
}

TEST(Cancel, AStoppedOperationLeavesTheSceneAsItWas)
{
    const std::function<bool(C3DScene&)> runs[] = {
        [](C3DScene& scene) {
            CCustomData parameters;
            parameters.SetUnsigned(SLICE_POINTS, 20);
            return SliceScene(parameters, &scene);
        },
        [](C3DScene& scene) { return scene.Concatenate(nullptr, L"all", nullptr, true, nullptr, false) != nullptr; },
        [](C3DScene& scene) { return scene.ConcatenateByMaterials(nullptr, true, nullptr) > 0; },
        [](C3DScene& scene) { return scene.GenerateUVW(); },
    };
    for (const auto& run : runs)
        for (const int at : {1, 3}) {
            Owned<C3DScene> scene(C3DScene::Create());
            C3DMaterial* material = scene->CreateNewMaterial(7);
            material->AddMaterialMap(L"a.png", NO_CHANNEL_ID, MAP_DIFFUSE, PROJECTION_PLANAR);
            C3DSceneNode* node = C3DSceneNode::Create();
            node->SetObject(Sheets().release(), true);
            node->GetGeomObject()->GetFaceList()->SetFaceMaterial(0, 7);
            scene->AddNode(nullptr, node);
            const StreamBytes before = BytesOf(*node->GetGeomObject());
            Impatient sink(at);
            const CProgressScope scope(&sink);
            if (run(*scene))
                EXPECT_GT(at, 1);
            else {
                EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 1);
                EXPECT_EQ(BytesOf(*scene->GetFirstNode(OBJECT_ANY).GetNode()->GetGeomObject()), before);
            }
        }
}

// Cuts are bounded by the faces: one face of many corners far apart has nothing to be cut for.
TEST(Cancel, SlicingHasAnEnd)
{
    std::vector<XYZ> points;
    std::vector<int> corners;
    for (int i = 0; i < 20000; i++) {
        points.push_back({static_cast<float>(i % 141), static_cast<float>(i / 141), static_cast<float>(i * 7919 % 20000)});
        corners.push_back(i);
    }
    Owned<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(ObjectOf(MakeMesh(points, {corners, {0, 1, 2}})).release(), true);
    scene->AddNode(nullptr, node);
    Impatient sink(0);
    const CProgressScope scope(&sink);
    CCustomData parameters;
    parameters.SetUnsigned(SLICE_POINTS, 1);
    SliceScene(parameters, scene.get());
    EXPECT_LT(sink.told, 3000);
    EXPECT_EQ(scene->GetFaceNbr(), 2);
}
