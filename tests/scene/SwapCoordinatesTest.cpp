#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "geometry/Swap.h"
#include "scene/Material.h"
#include "scene/MaterialMap.h"
#include "scene/SceneBuilders.h"

namespace {

using Coordinates = std::vector<float>;

/// By the definition of the code: exchange, then mirror.
Coordinates Swapped(Coordinates p, unsigned int code)
{
    switch (code & 7) {
    case 1: std::swap(p[0], p[1]); break;
    case 2: std::swap(p[0], p[2]); break;
    case 4: std::swap(p[1], p[2]); break;
    }
    for (int axis = 0; axis < 3; axis++) {
        if (code & 0x10u << axis)
            p[axis] = -p[axis];
    }
    return p;
}

/// Where the points of all geometric nodes lie in space, at a time.
std::vector<Coordinates> WorldPoints(const C3DScene& scene, int time)
{
    std::vector<Coordinates> points;
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        const C3DSceneNode* node = scene.GetNextNode(object, pos);
        C4x4TMatrix<float> matrix;
        node->GetNodeTM(time, matrix, true);
        for (int i = 0; i < object->GetPointNbr(); i++)
            points.push_back(Values(matrix * PointOf(object, i)));
    }
    return points;
}

/// A chain of nodes with every key that makes a transform, at two times; squares at all levels, two of them shared.
C3DScene* CreateMovingScene()
{
    std::mt19937 random(3);
    const auto number = [&] { return static_cast<float>(random() % 2000) / 500 - 2; };
    C3DScene* scene = C3DScene::Create();
    scene->GetRoot()->AddKey(0, C3DMatrixKey(Translation(1, 2, 3)));
    C3DSceneNode* node = nullptr;
    for (int i = 0; i < 4; i++) {
        C3DSceneNode* parent = node;
        if (i == 2)
            node = AddSharer(*scene, parent, L"sharer", parent);
        else {
            node = AddNode(*scene, parent, L"n", 0);
            node->SetObject(CreateSquare(), true);
        }
        for (const int time : {0, 10}) {
            node->AddKey(time, C3DMatrixKey(C3DRotateKey(number(), {number(), number(), 1}).ToMatrix() * Translation(1, number(), 2)));
            node->AddKey(time, C3DRotateKey(number(), {1, number(), number()}));
            for (const std::uint64_t id : {KEY_TRANSLATE, KEY_SCALE, KEY_PIVOT}) {
                const C3DTVector<float> vector(number() + 3, number() + 3, number() + 3);
                static_cast<C3DVectorKey*>(node->CreateKey(time, id, 0))->SetVector(vector);
            }
        }
    }
    return scene;
}

}

TEST(SwapCoordinates, EverythingMovesToItsSwappedPlace)
{
    // All codes that mean something. At the keys; between them the turns of the matrices go the same way round too.
    for (const unsigned int pair : {0u, 1u, 2u, 4u}) {
        for (const unsigned int mirror : {0u, 0x10u, 0x20u, 0x40u}) {
            const unsigned int code = pair | mirror;
            if (code == 0)
                continue;
            SCOPED_TRACE(code);
            const CRef<C3DScene> scene(CreateMovingScene());
            C3DGeomObject* shared = scene->GetChildNode(scene->GetChildNode(nullptr))->GetGeomObject();
            C3DTPoint<float> min, max;
            shared->GetBoundingBox(min, max, BOX_POINTS);
            std::vector<std::vector<Coordinates>> before;
            for (int time = 0; time <= 10; time += 5)
                before.push_back(WorldPoints(*scene, time));
            EXPECT_TRUE(scene->SwapCoordinates(static_cast<int>(code)));
            for (int time = 0; time <= 10; time += 5) {
                const std::vector<Coordinates> after = WorldPoints(*scene, time);
                for (std::size_t i = 0; i < after.size(); i++) {
                    const Coordinates expected = Swapped(before[time / 5][i], code);
                    for (int axis = 0; axis < 3; axis++)
                        EXPECT_NEAR(after[i][axis], expected[axis], 1e-4 * (1 + std::fabs(expected[axis]))) << time << ' ' << i;
                }
            }
            // The square has its far point at (9, 9, 9) and lies in z = 0 otherwise.
            const Coordinates far = Swapped({9, 9, 9}, code);
            shared->GetBoundingBox(min, max, BOX_POINTS);
            for (int axis = 0; axis < 3; axis++)
                EXPECT_EQ(far[axis] > 0 ? max[axis] : min[axis], far[axis]);
        }
    }
}

TEST(SwapCoordinates, RefusesCodesThatMeanNothing)
{
    for (const unsigned int code : {0u, 0x3u, 0x7u, 0x30u, 0x31u, 0x13u}) {
        SCOPED_TRACE(code);
        const CRef<C3DScene> scene(CreateMovingScene());
        const std::vector<Coordinates> before = WorldPoints(*scene, 0);
        EXPECT_FALSE(scene->SwapCoordinates(static_cast<int>(code)));
        EXPECT_EQ(WorldPoints(*scene, 0), before);
    }
}

TEST(SwapCoordinates, ReachesProjectedMaps)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DMaterial* material = scene->CreateNewMaterial(0xFFFFFFFF);
    for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++)
        material->AddMaterialMap(L"a.png", 0, static_cast<MapType>(type), PROJECTION_PLANAR);
    EXPECT_TRUE(scene->SwapCoordinates(SWAP_YZ));
    for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++)
        EXPECT_EQ(material->GetMaterialMap(static_cast<MapType>(type))->GetKeyNbr(KEY_MAP_SWAP), 1) << type;
}
