#pragma once

#include <initializer_list>

class CCustomMenu;

/// Texts of the menus of trees.
enum _TREE_TEXT : unsigned int {
    TREETEXT_NONE = 0,
    TREETEXT_SELECTION = 48030,
    TREETEXT_SELECT_ALL_MATERIALS = 48031,
    TREETEXT_SELECT_NO_MATERIAL = 48032,
    TREETEXT_INVERT_MATERIALS = 48033,
    TREETEXT_CLOSE_MATERIALS = 48034,
    TREETEXT_SELECT_ALL_OBJECTS = 48035,
    TREETEXT_SELECT_NO_OBJECT = 48036,
    TREETEXT_INVERT_OBJECTS = 48037,
    TREETEXT_DISPLAY = 48038,
    TREETEXT_DISPLAY_SELECTION = 48039,
    TREETEXT_DISPLAY_ALL = 48040,
    TREETEXT_DISPLAY_NONE = 48041,
    TREETEXT_INVERT_DISPLAY = 48042,
    TREETEXT_CLOSE_OBJECTS = 48043,
};

struct TreeMenuEntry {
    _TREE_TEXT popup;    ///< that it stands in; TREETEXT_NONE: in the menu itself
    _TREE_TEXT text;
    unsigned int id;    ///< its help is the text of this number
    bool enabled;
};

/// Adds the entries in this order.
void FillTreeMenu(CCustomMenu& menu, std::initializer_list<TreeMenuEntry> entries);
