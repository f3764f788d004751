#include "tools/Tree.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/Streams.h"

class CTestNode : public CTreeNode {
    ZEL_DECLARE_CREATABLE(CTestNode)
public:
    explicit CTestNode(int n = 0) : number(n) { s_alive++; }
    ~CTestNode() override { s_alive--; }
    void Serialize(CXArchive& ar) override { Move(ar, number); }
    int number;
    static int s_alive;
};
int CTestNode::s_alive = 0;
ZEL_IMPLEMENT_CREATABLE(CTestNode, CTreeNode)

class CTestRoot : public CTestNode {
    ZEL_DECLARE_CREATABLE(CTestRoot)
};
ZEL_IMPLEMENT_CREATABLE(CTestRoot, CTestNode)

namespace {

int Number(const CTreeNode* node) { return node ? static_cast<const CTestNode*>(node)->number : -1; }

// "0(1(2)3)" by the child lists, checking all links on the way.
std::string Shape(const CTreeNode* node)
{
    std::string text = std::to_string(Number(node)), children;
    const CTreeNode* left = nullptr;
    for (const CTreeNode* child = node->GetFirstChild(); child; child = child->GetNextSibling()) {
        EXPECT_EQ(child->GetParentNode(), node);
        EXPECT_EQ(child->GetPrevSibling(), left);
        children += (left ? " " : "") + Shape(child);
        left = child;
    }
    EXPECT_EQ(node->GetLastChild(), left);
    return children.empty() ? text : text + '(' + children + ')';
}

struct Numbered {
    Numbered() { tree.SetRoot(new CTestNode(0)); }
    CTreeNode* Add(CTreeNode* parent, int number)
    {
        auto* const node = new CTestNode(number);
        EXPECT_TRUE(tree.AddChild(parent, node, true));
        return node;
    }
    std::string Shape() const { return ::Shape(tree.GetRoot()); }
    std::vector<int> Walk(const CTreeNode* start, const CTreeNode* stop) const
    {
        std::vector<int> numbers;
        for (CTreeNode* node = tree.GetFirstNode(start); node; node = tree.GetNextNode(node, stop))
            numbers.push_back(Number(node));
        return numbers;
    }
    CTree tree;
};

// 0 ( 1 ( 2 3 ) 4 ( 5 ( 6 ) ) 7 )
struct Sample : Numbered {
    std::vector<CTreeNode*> n;
    Sample()
    {
        n.resize(8);
        n[0] = tree.GetRoot();
        const int parents[] = {0, 0, 1, 1, 0, 4, 5, 0};
        for (int i = 1; i < 8; i++)
            n[i] = Add(n[parents[i]], i);
    }
};

}

TEST(Tree, WalksParentFirstAndStaysBelowItsStop)
{
    const Sample s;
    EXPECT_EQ(s.Walk(nullptr, nullptr), (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(s.Walk(s.n[1], s.n[1]), (std::vector<int>{2, 3}));
    EXPECT_EQ(s.Walk(s.n[1], nullptr), (std::vector<int>{2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(s.Walk(s.n[7], s.n[7]), (std::vector<int>{}));
    EXPECT_EQ(s.tree.GetNextNode(s.n[7], s.n[7]), nullptr);
    EXPECT_EQ(s.tree.GetNextNode(s.n[0], nullptr), s.n[1]);
    EXPECT_EQ(s.tree.GetDepth(s.n[6]), 3u);
    EXPECT_EQ(s.tree.GetDepth(s.n[0]), 0u);
    EXPECT_EQ(CTree::IsBelow(s.n[6], s.n[4]), true);
    EXPECT_EQ(CTree::IsBelow(s.n[4], s.n[6]), false);
}

TEST(Tree, RemovalTellsWhereTheWalkGoesOn)
{
    // One step from the result must reach what followed the branch.
    struct {
        int node, before, after;
        const char* shape;
    } const rows[] = {
        {1, 0, 4, "0(4(5(6)) 7)"}, {2, 1, 3, "0(1(3) 4(5(6)) 7)"}, {3, 2, 4, "0(1(2) 4(5(6)) 7)"},
        {4, 3, 7, "0(1(2 3) 7)"},  {6, 5, 7, "0(1(2 3) 4(5) 7)"},  {7, 6, -1, "0(1(2 3) 4(5(6)))"},
    };
    for (const auto& row : rows)
        for (const bool destroy : {false, true}) {
            SCOPED_TRACE(row.node);
            Sample s;
            const int alive = CTestNode::s_alive;
            CTreeNode* const before = destroy ? s.tree.DeleteNode(s.n[row.node]) : s.tree.RemoveNode(s.n[row.node]);
            EXPECT_EQ(Number(before), row.before);
            EXPECT_EQ(Number(s.tree.GetNextNode(before, nullptr)), row.after);
            EXPECT_EQ(s.Shape(), row.shape);
            if (destroy)
                EXPECT_LT(CTestNode::s_alive, alive);
            else {
                EXPECT_EQ(CTestNode::s_alive, alive);
                EXPECT_EQ(s.n[row.node]->GetParentNode(), nullptr);
                EXPECT_EQ(s.tree.RemoveNode(s.n[row.node]), nullptr);
                CTree::DeleteBranch(s.n[row.node]);
            }
        }
    Sample s;
    EXPECT_EQ(s.tree.RemoveNode(s.n[0]), nullptr);
    EXPECT_EQ(s.tree.DeleteNode(s.n[0]), nullptr);
    EXPECT_EQ(s.Shape(), "0");    // the root stays
    EXPECT_EQ(s.tree.DeleteNode(nullptr), nullptr);
}

TEST(Tree, EditsKeepTheOrderAndRefuseCircles)
{
    struct {
        const char* name;
        bool (*edit)(Sample&);
        bool done;
        const char* shape;
    } const rows[] = {
        {"move behind the others", [](Sample& s) { return s.tree.MoveNode(s.n[5], s.n[1]); }, true, "0(1(2 3 5(6)) 4 7)"},
        {"move to the same parent", [](Sample& s) { return s.tree.MoveNode(s.n[2], s.n[1]); }, true, "0(1(3 2) 4(5(6)) 7)"},
        {"move under the root", [](Sample& s) { return s.tree.MoveNode(s.n[6], nullptr); }, true, "0(1(2 3) 4(5) 7 6)"},
        {"move into its own branch", [](Sample& s) { return s.tree.MoveNode(s.n[4], s.n[6]); }, false, nullptr},
        {"move the root", [](Sample& s) { return s.tree.MoveNode(s.n[0], s.n[1]); }, false, nullptr},
        {"lift a child to the right", [](Sample& s) { return s.tree.MoveRight(s.n[1], s.n[2]); }, true, "0(1(3) 2 4(5(6)) 7)"},
        {"right of its neighbour", [](Sample& s) { return s.tree.MoveRight(s.n[7], s.n[1]); }, true, "0(4(5(6)) 7 1(2 3))"},
        {"right of the one before", [](Sample& s) { return s.tree.MoveRight(s.n[1], s.n[4]); }, true, "0(1(2 3) 4(5(6)) 7)"},
        {"right of itself", [](Sample& s) { return s.tree.MoveRight(s.n[1], s.n[1]); }, false, nullptr},
        {"right of its own descendant", [](Sample& s) { return s.tree.MoveRight(s.n[6], s.n[4]); }, false, nullptr},
        {"right of the root", [](Sample& s) { return s.tree.MoveRight(s.n[0], s.n[4]); }, false, nullptr},
        {"add in front", [](Sample& s) { return s.tree.AddChild(s.n[1], new CTestNode(8), false); }, true, "0(1(8 2 3) 4(5(6)) 7)"},
        {"add to the right", [](Sample& s) { return s.tree.AddRight(s.n[3], new CTestNode(8)); }, true, "0(1(2 3 8) 4(5(6)) 7)"},
        {"add one that has a parent", [](Sample& s) { return s.tree.AddChild(s.n[1], s.n[6], true); }, false, nullptr},
        {"add the root", [](Sample& s) { return s.tree.AddChild(s.n[1], s.n[0], true); }, false, nullptr},
        {"add null", [](Sample& s) { return s.tree.AddChild(s.n[1], nullptr, true); }, false, nullptr},
        {"replace with children", [](Sample& s) { return s.tree.ReplaceNode(new CTestNode(8), s.n[4], true); }, true,
         "0(1(2 3) 8(5(6)) 7)"},
        {"replace without", [](Sample& s) { return s.tree.ReplaceNode(new CTestNode(8), s.n[4], false); }, true, "0(1(2 3) 8 7)"},
        {"replace by its own kin", [](Sample& s) { return s.tree.ReplaceNode(s.n[5], s.n[4], true); }, false, nullptr},
        {"replace the root", [](Sample& s) { return s.tree.ReplaceNode(new CTestNode(8), s.n[0], true); }, true, "8(1(2 3) 4(5(6)) 7)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        {
            Sample s;
            EXPECT_EQ(row.edit(s), row.done);
            EXPECT_EQ(s.Shape(), row.shape ? row.shape : "0(1(2 3) 4(5(6)) 7)");
        }
        EXPECT_EQ(CTestNode::s_alive, 0);
    }
}

TEST(Tree, StreamsParentFirst)
{
    Sample s;
    const StreamBytes bytes = Stored(s.tree);
    Numbered read;
    CTreeNode* const root = read.tree.GetRoot();
    read.Add(nullptr, 99);
    EXPECT_TRUE(Load(read.tree, bytes));
    EXPECT_EQ(read.Shape(), s.Shape());
    EXPECT_EQ(read.tree.GetRoot(), root);    // the same class: it reads into the root that is there

    CTree bare, other;
    other.SetRoot(new CTestRoot);
    for (CTree* tree : {&bare, &other}) {
        EXPECT_TRUE(Load(*tree, bytes));
        EXPECT_EQ(::Shape(tree->GetRoot()), s.Shape());
    }

    const int alive = CTestNode::s_alive;
    std::mt19937 random(2);
    for (std::size_t i = 0; i < bytes.size() * 30; i++) {
        StreamBytes damaged = bytes;
        if (i < bytes.size())
            damaged.resize(i);
        else
            damaged[random() % damaged.size()] ^= 1u << random() % 8;
        CTree tree;
        const int error = LoadedBy(damaged, [&](CXArchive& ar) { tree.Serialize(ar); });
        ASSERT_TRUE(error != NO_ERROR_TYPE || i >= bytes.size()) << i;
        if (tree.GetRoot())
            ::Shape(tree.GetRoot());
    }
    EXPECT_EQ(CTestNode::s_alive, alive);
}

TEST(Tree, DepthCostsNoStack)
{
    constexpr int DEPTH = 100000;
    {
        Numbered s;
        CTreeNode* node = nullptr;
        for (int i = 1; i <= DEPTH; i++)
            node = s.Add(node, i);
        EXPECT_EQ(s.Walk(nullptr, nullptr).size(), static_cast<std::size_t>(DEPTH));
        EXPECT_EQ(s.tree.GetDepth(node), static_cast<unsigned int>(DEPTH));
        s.Add(nullptr, DEPTH + 1);    // all the way up in one step
        CTree read;
        const StreamBytes bytes = Stored(s.tree);
        EXPECT_TRUE(Load(read, bytes));
        EXPECT_EQ(Number(read.GetRoot()->GetLastChild()), DEPTH + 1);
        s.tree.DeleteAll();
        EXPECT_EQ(CTestNode::s_alive, 1 + DEPTH + 2);
    }
    EXPECT_EQ(CTestNode::s_alive, 0);
}
