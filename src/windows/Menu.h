#pragma once

#include <memory>
#include <vector>

#include "tools/Api.h"
#include "tools/String.h"

class CCustomMenu;

/// An entry of a menu: a command, a separator, or another menu.
struct ZEL_API CMenuItem {
    CMenuItem();
    ~CMenuItem();
    CMenuItem(CMenuItem&&) noexcept;
    CMenuItem& operator=(CMenuItem&&) noexcept;

    unsigned int id = 0;        ///< given to CWnd::OnCommand; 0 for separators and popups
    CXTString<wchar_t> text;    ///< '&' stands before its access key, "&&" is an ampersand
    CXTString<wchar_t> key;     ///< of its shortcut, as shown: "Ctrl+O"
    unsigned int icon = 0;      ///< resource number; 0 for none
    unsigned int order = 0;     ///< among the entries of its menu: the high half names its block, and separators stand between blocks
    bool separator = false, enabled = true, checked = false;
    bool radio = false;    ///< the mark says: this one of several
    std::unique_ptr<CCustomMenu> popup;
};

/// A menu: the bar of a frame, a popup of it, or one that opens at the pointer. A plain list; the window system shows it.
class ZEL_API CCustomMenu {
public:
    CCustomMenu();
    ~CCustomMenu();
    CCustomMenu(const CCustomMenu&) = delete;
    CCustomMenu& operator=(const CCustomMenu&) = delete;

    CMenuItem& AddItem(unsigned int id, const CXTString<wchar_t>& text, bool enabled = true, bool checked = false);
    /// After the last entry with the same or a lower order; between blocks (high half of the order) a separator comes in.
    CMenuItem& InsertItem(unsigned int id, const CXTString<wchar_t>& text, unsigned int order);
    /// Nothing at the head of a menu or after another separator.
    void AddMenuSeparator();
    /// The popup with that text, which is made at the end when there is none.
    CCustomMenu* FindPopup(const CXTString<wchar_t>& text);
    /// Null when there is none.
    CCustomMenu* GetPopup(const CXTString<wchar_t>& text) const;
    /// Here and in all popups below; null for none.
    CMenuItem* FindItem(unsigned int id);
    bool IsEmpty() const { return items.empty(); }
    void RemoveAll() { items.clear(); }
    /// Takes out popups without entries and separators that separate nothing, here and below.
    void Tidy();

    std::vector<CMenuItem> items;
};
