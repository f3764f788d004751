#include <gtest/gtest.h>

#include "scene/Filter.h"
#include "scene/SceneBuilders.h"

namespace {

constexpr int DEPTH = 100000;

C3DSceneNode* AddAt(C3DScene& scene, C3DSceneNode* parent, const wchar_t* name, unsigned int kind, float x)
{
    C3DSceneNode* node = AddNode(scene, parent, name, kind);
    node->AddKey(0, C3DMatrixKey(Translation(x, 0, 0)));
    return node;
}

float WorldX(const C3DSceneNode* node)
{
    C4x4TMatrix<float> matrix;
    node->GetNodeTM(0, matrix, true);
    return matrix.m[0][3];
}

}

TEST(Groups, RemovedLevelByLevel)
{
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
    C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_POLYGONAL);
    AddNode(*scene, AddNode(*scene, b, L"c", OBJECT_GROUP), L"d", OBJECT_DUMMY);
    AddNode(*scene, b, L"e", OBJECT_GROUP);
    AddNode(*scene, a, L"f", OBJECT_DUMMY);
    AddNode(*scene, nullptr, L"g", OBJECT_GROUP);
    AddNode(*scene, AddNode(*scene, nullptr, L"h", 0), L"i", OBJECT_LIGHT);    // a carrier without object stays
    scene->RemoveGroups();
    EXPECT_EQ(Outline(*scene), L"hbfid");
    scene->RemoveGroups();
    EXPECT_EQ(Outline(*scene), L"hbfid");
    scene->RemoveAllNodes();
    scene->RemoveGroups();
    EXPECT_EQ(Outline(*scene), L"");
}

TEST(Groups, MadeForTheChildrenOfGeometry)
{
    // a(b(cd)e), f(g(h)): b, c and f, g are geometric. Small groups bear the names of the children they hold.
    struct {
        const char* name;
        const wchar_t* start;
        bool changed;
        const wchar_t* outline;
    } const rows[] = {
        {"whole scene", nullptr, true, L"a(bec(ci(i))d(d))fg(gh(h))"}, {"from a node with children", L"f", true, L"a(b(c(i)d)e)fg(gh(h))"},
        {"from inside", L"c", true, L"a(b(cdi(i))e)f(g(h))"},          {"from a leaf", L"d", false, L"a(b(c(i)d)e)f(g(h))"},
        {"from a group", L"a", true, L"a(bec(ci(i))d(d))f(g(h))"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddAt(*scene, nullptr, L"a", OBJECT_GROUP, 1);
        C3DSceneNode* b = AddAt(*scene, a, L"b", OBJECT_POLYGONAL, 10);
        b->SetFlag(NODE_HIDDEN, true);
        C3DSceneNode* c = AddAt(*scene, b, L"c", OBJECT_PATCH, 100);
        C3DSceneNode* d = AddNode(*scene, b, L"d", OBJECT_DUMMY);
        C3DSceneNode* e = AddNode(*scene, a, L"e", OBJECT_POLYGONAL);
        C3DSceneNode* i = AddNode(*scene, c, L"i", OBJECT_POLYGONAL);
        C3DSceneNode* f = AddAt(*scene, nullptr, L"f", OBJECT_CURVE, 2);
        C3DSceneNode* g = AddAt(*scene, f, L"g", OBJECT_POLYGONAL, 20);
        C3DSceneNode* h = AddNode(*scene, g, L"h", OBJECT_DUMMY);
        C3DSceneNode* start = nullptr;
        for (C3DSceneNode* node : {a, b, c, d, e, f, g, h, i}) {
            if (row.start && node->GetName() == row.start)
                start = node;
        }
        EXPECT_EQ(scene->MakeGroupForChilds(start), row.changed);
        EXPECT_EQ(Outline(*scene), row.outline);
        EXPECT_EQ(d->GetParent()->IsFlagSet(NODE_HIDDEN), true);    // b itself, or the group that took over from b
        EXPECT_EQ(WorldX(i), 111);
        EXPECT_EQ(WorldX(d), 11);
        EXPECT_EQ(WorldX(h), 22);
        EXPECT_FALSE(scene->MakeGroupForChilds(start));
    }
}

TEST(Groups, DepthDoesNotMatter)
{
    // Faults in mind: walks that start over, and look at where a node lies by climbing up from it, or what lies before it by
    // climbing down: each makes minutes of this.
    const CRef<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* node = nullptr;
    for (int i = 0; i < DEPTH; i++)
        node = AddNode(*scene, node, L"n", OBJECT_POLYGONAL);
    EXPECT_TRUE(scene->MakeGroupForChilds(nullptr));
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_GROUP), DEPTH - 1);
    C3DSceneNode* chain = scene->GetChildNode(nullptr);
    EXPECT_EQ(chain->GetFirstChild(), nullptr);
    EXPECT_EQ(scene->GetChildDepth(node), static_cast<unsigned int>(DEPTH - 1));

    for (int i = 0; i < DEPTH; i++)
        AddNode(*scene, nullptr, L"g", OBJECT_GROUP)->SetFlag(NODE_SELECTED, i % 2 != 0);
    const C3DFilter selected(FILTER_UNSELECTED);
    scene->DeleteNodes(nullptr, &selected);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_GROUP), DEPTH - 1 + DEPTH / 2);
    scene->CleanGroups(true);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_GROUP), DEPTH - 1);
    scene->RemoveGroups();
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), DEPTH);
    EXPECT_EQ(scene->GetDirectChildCount(nullptr, OBJECT_ANY), DEPTH);
}
