#pragma once

#include <vector>

#include "tools/Api.h"
#include "tools/String.h"

/// A button of a tool bar, or a separator between two.
struct CToolbarButton {
    unsigned int id = 0;        ///< given to CWnd::OnCommand; 0: a separator
    unsigned int order = 0;     ///< as CMenuItem::order
    CXTString<wchar_t> text;    ///< name and key, shown over the button
    unsigned int icon = 0;      ///< resource number
    bool enabled = true, checked = false;
    bool hasMenu = false;    ///< an arrow beside it asks for CFrameWndEx::OnToolbarMenu
};

/// A tool bar of a frame. A plain list; the window system shows it.
class ZEL_API CCustomToolbar {
public:
    void InitToolbar(unsigned int id, const CXTString<wchar_t>& name);
    /// By order, with separators between blocks, as CCustomMenu::InsertItem.
    CToolbarButton& InsertButton(unsigned int id, const CXTString<wchar_t>& text, unsigned int icon, unsigned int order);
    CToolbarButton* FindButton(unsigned int id);
    void SetLargeIcons(bool on) { m_largeIcons = on; }
    bool HasLargeIcons() const { return m_largeIcons; }
    unsigned int GetId() const { return m_id; }
    const CXTString<wchar_t>& GetName() const { return m_name; }

    std::vector<CToolbarButton> buttons;
    bool visible = true;

private:
    unsigned int m_id = 0;
    CXTString<wchar_t> m_name;
    bool m_largeIcons = false;
};
