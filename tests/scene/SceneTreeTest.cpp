#include <gtest/gtest.h>

#include <algorithm>

#include "scene/Patch.h"
#include "scene/SceneBuilders.h"
#include "tools/FourCC.h"

TEST(Scene, TreeQueries)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_DUMMY);
    C3DSceneNode* c = AddNode(*scene, a, L"c", 0);
    C3DSceneNode* d = AddNode(*scene, c, L"d", OBJECT_DUMMY);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 3);
    EXPECT_EQ(scene->GetChildCount(a, OBJECT_DUMMY), 2);
    EXPECT_EQ(scene->GetParent(nullptr), nullptr);
    EXPECT_EQ(scene->GetRightNode(nullptr), nullptr);
    EXPECT_EQ(scene->GetRightNode(b), c);
    EXPECT_TRUE(scene->IsChildNode(nullptr, d));
    EXPECT_TRUE(scene->IsChildNode(a, d));
    EXPECT_FALSE(scene->IsChildNode(b, d));
    EXPECT_FALSE(scene->IsChildNode(d, d));
    EXPECT_FALSE(scene->AddNode(nullptr, a));    // has a parent
    EXPECT_FALSE(scene->AddNode(nullptr, nullptr));
    EXPECT_FALSE(scene->AddNode(b, scene->GetRoot()));

    C3DSceneNode* branch = c;
    scene->RemoveNode(branch, false);
    EXPECT_FALSE(scene->IsNodeInScene(d));
    EXPECT_EQ(d->GetScene(), nullptr);
    EXPECT_FALSE(scene->AddNode(d, branch));    // below itself
    EXPECT_TRUE(scene->ReplaceNode(branch, b, false));
    EXPECT_EQ(d->GetScene(), static_cast<C3DScene*>(scene));
    EXPECT_EQ(Outline(*scene), L"a(c(d))");
    EXPECT_FALSE(scene->ReplaceNode(nullptr, a, false));
    const CRef<C3DScene> other(C3DScene::Create());
    C3DSceneNode* elsewhere = AddNode(*other, nullptr, L"x", OBJECT_DUMMY);
    C3DSceneNode loose;
    EXPECT_FALSE(scene->ReplaceNode(&loose, elsewhere, false));
    EXPECT_EQ(loose.GetScene(), nullptr);
    scene->RemoveNode(nullptr, true);
    EXPECT_EQ(Outline(*scene), L"");
}

TEST(Scene, DepthDoesNotMatter)
{
    // 100,000 levels: nothing may recurse, and nothing may climb to the root at each step.
    constexpr int DEPTH = 100000;
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = nullptr;
    for (int i = 0; i < DEPTH; i++)
        node = AddNode(*scene, node, L"n", OBJECT_GROUP);
    node->SetObject(CreateSquare(), true);
    C3DSceneNode* top = scene->GetChildNode(nullptr);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_GROUP), DEPTH - 1);
    EXPECT_EQ(scene->GetChildDepth(node), static_cast<unsigned int>(DEPTH - 1));
    C3DTPoint<float> min, max;
    EXPECT_TRUE(top->GetBoundingBox(0, min, max, BOX_FACES));
    scene->ConvertToGlobalCoordinates(nullptr);
    C3DSceneNode* copy = top->CopyBranch(nullptr, 0, nullptr);
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(scene->AddNode(nullptr, copy));
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 2 * DEPTH);
    scene->RemoveNode(copy, true);
    scene->CleanGroups(false);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 1);
}

TEST(Scene, GroupsWithoutPurposeGo)
{
    struct {
        const char* name;
        bool onlyEmpty;
        const wchar_t* left;
    } const rows[] = {
        {"empty ones, and parents that become empty", true, L"a(bc)f(g)j(kl)p"},
        {"those with one child too", false, L"a(bc)gj(kl)dp"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        AddNode(*scene, a, L"b", OBJECT_DUMMY);
        AddNode(*scene, a, L"c", OBJECT_DUMMY);
        C3DSceneNode* f = AddNode(*scene, nullptr, L"f", OBJECT_GROUP);
        f->AddKey(0, C3DMatrixKey(Translation(3, 0, 0)));
        C3DSceneNode* g = AddNode(*scene, f, L"g", OBJECT_DUMMY);
        C3DSceneNode* j = AddNode(*scene, nullptr, L"j", OBJECT_GROUP);
        AddNode(*scene, j, L"k", OBJECT_DUMMY);
        AddNode(*scene, j, L"l", OBJECT_DUMMY);
        C3DSceneNode* d = AddNode(*scene, nullptr, L"d", OBJECT_GROUP);
        AddNode(*scene, AddNode(*scene, d, L"m", OBJECT_GROUP), L"n", OBJECT_GROUP);
        if (!row.onlyEmpty)
            AddNode(*scene, d, L"o", OBJECT_GROUP);
        C3DSceneNode* p = AddNode(*scene, nullptr, L"p", OBJECT_POLYGONAL);
        AddNode(*scene, p, L"q", OBJECT_GROUP);
        scene->CleanGroups(row.onlyEmpty);
        EXPECT_EQ(Outline(*scene), row.left);
        C4x4TMatrix<float> matrix;
        g->GetNodeTM(0, matrix, true);
        EXPECT_EQ(matrix.m[0][3], 3);    // where it was
    }
}

TEST(Scene, PatchLevelReachesEveryPatch)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_PATCH);
    C3DSceneNode* b = AddNode(*scene, AddSharer(*scene, nullptr, L"s", a), L"b", OBJECT_PATCH);
    AddNode(*scene, nullptr, L"c", OBJECT_POLYGONAL);
    for (const unsigned int level : {2u, 0u, 9u, 0xFFFFFFFF}) {
        scene->SetPatchLevel(level);
        for (const C3DSceneNode* node : {a, b})
            EXPECT_EQ(static_cast<C3DPatch*>(*node->GetBaseObject())->GetLevel(), std::min(level, 8u));
    }
    unsigned int stored;
    EXPECT_TRUE(scene->GetCustomData().GetUnsigned(FourCC("PALV"), stored) && stored == 8);
}
