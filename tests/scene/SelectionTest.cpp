#include <gtest/gtest.h>

#include "scene/SceneBuilders.h"

namespace {

/// Names of the selected nodes.
std::wstring Selection(const C3DScene& scene)
{
    CXArray<C3DSceneNode*> nodes;
    nodes.Add(nullptr);    // goes
    const unsigned int count = scene.GetSelectedNodes(nodes);
    EXPECT_EQ(count, static_cast<unsigned int>(nodes.GetSize()));
    EXPECT_EQ(scene.IsNodeSelected(), !nodes.IsEmpty());
    std::wstring names;
    for (const C3DSceneNode* node : nodes)
        names += node->GetName().Str();
    return names;
}

}

TEST(Selection, BranchesAndInstances)
{
    // a(b(c)d)e(f)g: b, e and g share an object, c and f another; d has none.
    constexpr unsigned int ADD = C3DScene::SELECT_ADD, INSTANCES = C3DScene::SELECT_INSTANCES, BRANCH = C3DScene::SELECT_BRANCH;
    struct {
        const char* name;
        const wchar_t* node;
        unsigned int flags;
        const wchar_t* selected;
    } const rows[] = {
        {"one more", L"b", ADD, L"bd"},
        {"sharers of one", L"b", INSTANCES, L"beg"},
        {"sharers of a branch", L"a", BRANCH | INSTANCES, L"abcdefg"},
        {"sharers of a branch do not spread down", L"e", BRANCH | INSTANCES | ADD, L"bcdefg"},
        {"sharers of what has none", L"a", INSTANCES, L"a"},
        {"without object", L"d", INSTANCES, L"d"},
        {"the whole scene", L"Scene", BRANCH, L"abcdefg"},
        {"nothing", nullptr, 0, L"d"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<C3DScene> scene(C3DScene::Create());
        C3DSceneNode* a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        C3DSceneNode* b = AddNode(*scene, a, L"b", OBJECT_POLYGONAL);
        C3DSceneNode* c = AddNode(*scene, b, L"c", OBJECT_DUMMY);
        C3DSceneNode* d = AddNode(*scene, a, L"d", 0);
        C3DSceneNode* e = AddSharer(*scene, nullptr, L"e", b);
        AddSharer(*scene, e, L"f", c);
        AddSharer(*scene, nullptr, L"g", b);
        d->SetFlag(NODE_SELECTED, true);
        C3DSceneNode* chosen = nullptr;
        for (C3DSceneNode* node : {a, b, c, d, e, scene->GetRoot()}) {
            if (row.node && node->GetName() == row.node)
                chosen = node;
        }
        scene->Select(chosen, row.flags);
        EXPECT_EQ(Selection(*scene), row.selected);

        scene->SelectAll();
        EXPECT_EQ(Selection(*scene), L"abcdefg");
        scene->Unselect(b);
        scene->Unselect(nullptr);
        EXPECT_EQ(Selection(*scene), L"acdefg");    // its sharers stay
        scene->SelectNone();
        EXPECT_EQ(Selection(*scene), L"");
        scene->Select(a, 0);
        EXPECT_FALSE(scene->GetRoot()->IsFlagSet(NODE_SELECTED));
    }
}
