#include <gtest/gtest.h>

#include <string>

#include "windows/CustomList.h"
#include "windows/CustomTree.h"
#include "windows/Keys.h"
#include "windows/ScriptWindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

class CLoggedTree : public CCustomTree {
public:
    CLoggedTree() { SetMode(TREE_CHECKS | TREE_SEVERAL); }
    void CheckStateChange(HTREEITEM item, _TreeCheckState state) override
    {
        log += WideToUtf8(item->text) + (state == TREECHECK_CHECKED ? "+ " : "- ");
    }
    void BeginCheckStateChange() override { log += "( "; }
    void EndCheckStateChange() override { log += ") "; }
    void SelectionChange(HTREEITEM item, int) override { log += "one:" + WideToUtf8(item->text) + " "; }
    void OnMultiSelectionChanged() override { log += "several "; }
    void DeleteItemData(HTREEITEM item) override { log += "~" + WideToUtf8(item->text) + " "; }
    std::string Take() { return std::exchange(log, {}); }

    std::string log;
};

class CSquares : public CCustomList {
public:
    Text GetCellText(int row, int column) const override
    {
        Text text;
        text.FormatString(L"%d", column == 0 ? row : row * row);
        return text;
    }
};

}

TEST(CustomTree, ChecksSelectsAndDeletesWithAllBelow)
{
    CLoggedTree tree;
    const HTREEITEM a = tree.InsertItem(L"a", nullptr, nullptr), b = tree.InsertItem(L"b", nullptr, a),
                    c = tree.InsertItem(L"c", nullptr, b);
    const HTREEITEM d = tree.InsertItem(L"d", nullptr, a), e = tree.InsertItem(L"e", nullptr, nullptr);
    std::string order;
    for (HTREEITEM item = tree.GetNextItem(tree.GetRoot()); item; item = tree.GetNextItem(item))
        order += WideToUtf8(item->text);
    EXPECT_EQ(order, "abcde");

    tree.UserCheck(b);
    EXPECT_EQ(tree.Take(), "( b- c- ) ");
    EXPECT_EQ(tree.GetCheckLevelState(a), TREECHECK_MIXED);
    EXPECT_EQ(tree.GetCheckLevelState(b), TREECHECK_UNCHECKED);
    EXPECT_EQ(tree.GetCheckLevelState(e), TREECHECK_NONE);
    tree.CheckAll(TREECHECK_CHECKED, true);    // of those that aren't yet
    EXPECT_EQ(tree.Take(), "( b+ c+ ) ");

    tree.UserSelect({c});
    tree.UserSelect({c});
    tree.UserSelect({a, d});
    EXPECT_EQ(tree.Take(), "one:c several ");
    EXPECT_EQ(tree.GetSelectedItems(), (std::vector<HTREEITEM>{a, d}));

    tree.DeleteItem(b);
    EXPECT_EQ(tree.Take(), "~c ~b ");
    EXPECT_EQ(d->index, 0);
    EXPECT_EQ(tree.GetCount(), 3u);
    tree.DeleteAllItems();
    EXPECT_EQ(tree.Take(), "~e ~d ~a ");
    EXPECT_EQ(tree.GetCount(), 0u);
}

TEST(CustomTree, ADeepOneIsTakenApartWithoutTheStack)
{
    CCustomTree tree;
    HTREEITEM last = nullptr;
    for (int i = 0; i < 300000; i++)
        last = tree.InsertItem(L"x", nullptr, last);
    tree.ScrollTo(last);
    EXPECT_TRUE(last->parent->open);
}

TEST(CustomList, MillionsOfRowsCopyAsTold)
{
    CScriptWindowSystem screen;
    IWindowSystem* const former = SetWindowSystem(&screen);
    CSquares list;
    list.SetColumns({{L"n", 50}, {L"square", 0}});
    list.SetRowCount(3000000);
    list.UserSelect({4, 2, 4, -1, 3000000});
    EXPECT_EQ(list.GetSelectedText(), L"2\t4\t\r\n4\t16\t\r\n");
    EXPECT_TRUE(list.OnKey(VK_INSERT, INPUT_CTRL));
    EXPECT_EQ(screen.clipboard, list.GetSelectedText());
    EXPECT_FALSE(list.OnKey('C', 0));
    EXPECT_TRUE(list.OnKey('A', INPUT_CTRL));
    EXPECT_EQ(list.GetSelectedRows().size(), 3000000u);
    list.SetRowCount(1);
    EXPECT_TRUE(list.GetSelectedRows().empty());
    SetWindowSystem(former);
}
