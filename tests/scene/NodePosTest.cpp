#include <gtest/gtest.h>

#include "scene/Filter.h"
#include "scene/SceneBuilders.h"
#include "support/Checksum.h"

namespace {

// a(b(c d) e) f(g) h      e, f and h share one object; d has none
struct Tree {
    CRef<C3DScene> scene{C3DScene::Create()};
    C3DSceneNode *a, *b, *c, *d, *e, *f, *g, *h;

    Tree()
    {
        a = AddNode(*scene, nullptr, L"a", OBJECT_GROUP);
        b = AddNode(*scene, a, L"b", OBJECT_DUMMY);
        c = AddNode(*scene, b, L"c", OBJECT_CAMERA);
        d = AddNode(*scene, b, L"d", 0);
        e = AddNode(*scene, a, L"e", OBJECT_POLYGONAL);
        f = AddSharer(*scene, nullptr, L"f", e);
        g = AddNode(*scene, f, L"g", OBJECT_DUMMY);
        h = AddSharer(*scene, nullptr, L"h", e);
    }
};

}

TEST(NodePos, EveryCombinationOfFlagsAgreesWithTheRules)
{
    // Faults in mind: a walk below a node that runs on behind its branch; the start taken twice or, as a leaf, followed by
    // its siblings; the first candidate not tested; a shared object met first outside the mask. The sum is that of all nodes in order,
    // with the window of the start and then the tests.
    const Tree tree;
    Checksum sum;
    for (unsigned int flags = 0; flags < 16; flags++) {
        for (const unsigned int mask : {0xFFFFFFFFu, 1u, 8u, 16u, 48u, 2u}) {
            for (const C3DSceneNode* start :
                 {static_cast<C3DSceneNode*>(nullptr), tree.a, tree.b, tree.c, tree.d, tree.e, tree.f, tree.h}) {
                sum.Add(Names(*tree.scene, tree.scene->GetFirstNode(mask, flags, start)));
            }
        }
    }
    EXPECT_EQ(sum.Get(), 0xC200D7092C0C8C76u);
}

TEST(NodePos, FilterHoldsFromTheCurrentNodeOn)
{
    const Tree tree;
    tree.a->SetFlag(NODE_HIDDEN, true);
    tree.e->SetFlag(NODE_HIDDEN, true);
    tree.c->SetFlag(NODE_SELECTED, true);
    tree.h->SetFlag(NODE_SELECTED, true);
    tree.g->GetBaseObject()->SetFlag(OBJECT_EMPTY, true);
    struct {
        unsigned int mode;
        const wchar_t* nodes;
    } const rows[] = {
        {0, L"abcefgh"},
        {FILTER_HIDDEN, L"bcfgh"},
        {FILTER_UNSELECTED, L"ch"},
        {FILTER_EMPTY, L"abcefh"},
        {FILTER_EMPTY | FILTER_HIDDEN, L"bcfh"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        const C3DFilter filter(row.mode);
        C3DNodePos pos = tree.scene->GetFirstNode(OBJECT_ANY);
        pos.SetFilter(&filter);
        EXPECT_EQ(Names(*tree.scene, pos), row.nodes);
    }
}

TEST(NodePos, CopiesShareWhatWasVisited)
{
    const Tree tree;
    C3DNodePos pos = tree.scene->GetFirstNode(OBJECT_POLYGONAL, ITER_UNIQUE_OBJECTS);
    C3DNodePos copy = pos;
    EXPECT_TRUE(copy.CheckObjectID(tree.e->GetObjectID()));
    copy.AddObjectID(tree.e->GetObjectID());    // the current node holds it: the copy moves on, to the end
    EXPECT_FALSE(copy);
    EXPECT_EQ(pos.GetNode(), tree.e);
    copy = pos;
    pos = C3DNodePos();
    EXPECT_EQ(Names(*tree.scene, copy), L"e");
}

TEST(NodePos, NodesGoDuringAWalk)
{
    // Faults in mind: the node after the removed one is passed over; the position stays on a destroyed node; the walk of
    // unique objects refuses a node that it had already settled on.
    struct {
        const char* name;
        const wchar_t *remove, *visited, *left;
        unsigned int flags;
    } const rows[] = {
        {"leaf", L"c", L"abcefgh", L"a(b(d)e)f(g)h", 0},
        {"branch that the walk stands in", L"b", L"abefgh", L"a(e)f(g)h", 0},
        {"branch with the walk's next node", L"a", L"afgh", L"f(g)h", 0},
        {"last", L"h", L"abcefgh", L"a(b(cd)e)f(g)", 0},
        {"first sharer", L"e", L"abceg", L"a(b(cd))f(g)h", ITER_UNIQUE_OBJECTS},
        {"before a shared object", L"c", L"abceg", L"a(b(d)e)f(g)h", ITER_UNIQUE_OBJECTS},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Tree tree;
        std::wstring visited;
        for (C3DNodePos pos = tree.scene->GetFirstNode(OBJECT_ANY, row.flags); pos;) {
            C3DSceneNode* node = tree.scene->GetNextNode(pos);
            visited += node->GetName().Str();
            if (node->GetName() == row.remove) {
                const bool stands = tree.scene->RemoveNode(node, pos, true);
                EXPECT_EQ(stands, static_cast<bool>(pos));
            }
        }
        EXPECT_EQ(visited, row.visited);
        EXPECT_EQ(Outline(*tree.scene), row.left);
    }
}

TEST(NodePos, TheStartGoesDuringAWalkBelowIt)
{
    const Tree tree;
    C3DNodePos pos = tree.scene->GetFirstNode(OBJECT_ANY, ITER_INCLUDE_START | ITER_SUBTREE, tree.a);
    C3DSceneNode* node = tree.scene->GetNextNode(pos);
    EXPECT_FALSE(tree.scene->RemoveNode(node, pos, true));
    EXPECT_EQ(Outline(*tree.scene), L"f(g)h");
}
