#include <gtest/gtest.h>

#include <string>

#include "windows/Menu.h"
#include "windows/Toolbar.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int At(unsigned int block, unsigned int place) { return block << 16 | place; }

std::string Read(const CCustomMenu& menu)
{
    std::string text;
    for (const CMenuItem& item : menu.items)
        text += item.separator ? "| " : item.popup ? "[ " + Read(*item.popup) + "] " : std::to_string(item.id) + " ";
    return text;
}

}

TEST(Menu, EntriesStandByOrderWithSeparatorsBetweenBlocks)
{
    // Faults in mind: a separator twice or at an end when entries come from behind, between, and before; equal orders change places.
    const struct {
        const char* name;
        std::vector<std::pair<unsigned int, unsigned int>> entries;
        const char* menu;
        const char* bar;
    } rows[] = {
        {"as they come", {{1, At(1, 0)}, {2, At(1, 1)}, {3, At(2, 0)}}, "1 2 | 3 ", "1 2 | 3 "},
        {"backwards", {{3, At(2, 0)}, {2, At(1, 1)}, {1, At(1, 0)}}, "1 2 | 3 ", "1 2 | 3 "},
        {"a block between", {{1, At(1, 0)}, {3, At(3, 0)}, {2, At(2, 0)}}, "1 | 2 | 3 ", "1 | 2 | 3 "},
        {"equal orders", {{1, At(1, 0)}, {2, At(1, 0)}, {3, At(1, 0)}}, "1 2 3 ", "1 2 3 "},
        {"into the first block", {{1, At(1, 0)}, {3, At(2, 0)}, {2, At(1, 9)}}, "1 2 | 3 ", "1 2 | 3 "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CCustomMenu menu;
        CCustomToolbar bar;
        for (const auto& [id, order] : row.entries) {
            menu.InsertItem(id, L"entry", order);
            bar.InsertButton(id, L"button", 0, order);
        }
        EXPECT_EQ(Read(menu), row.menu);
        std::string buttons;
        for (const CToolbarButton& button : bar.buttons)
            buttons += button.id ? std::to_string(button.id) + " " : "| ";
        EXPECT_EQ(buttons, row.bar);
    }
}

TEST(Menu, PopupsStayBehindAndEmptyOnesGo)
{
    CCustomMenu menu;
    CCustomMenu* const popup = menu.FindPopup(L"Sub");
    menu.FindPopup(L"Empty");
    menu.InsertItem(1, L"entry", At(1, 0));
    EXPECT_EQ(menu.FindPopup(L"Sub"), popup);
    popup->AddItem(7, L"deep");
    popup->AddMenuSeparator();
    EXPECT_EQ(Read(menu), "1 | [ 7 | ] [ ] ");
    ASSERT_TRUE(menu.FindItem(7));
    EXPECT_EQ(menu.FindItem(0), nullptr);
    menu.Tidy();
    EXPECT_EQ(Read(menu), "1 | [ 7 ] ");
}
