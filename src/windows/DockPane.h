#pragma once

#include "tools/Rect.h"
#include "windows/Window.h"

enum DockSide { DOCK_LEFT, DOCK_RIGHT, DOCK_TOP, DOCK_BOTTOM };

/// A pane at the side of a frame, around one window.
class ZEL_API CCustomDockablePane : public CWnd {
public:
    CCustomDockablePane();
    ~CCustomDockablePane() override;

    /// Room of a pane that was never placed: its width (left and right) or height, pixels at 96 a inch.
    virtual CSize GetDefaultSize() const;
    /// The window inside; owned by the caller, set before the pane is attached.
    void SetContent(CWnd* content) { m_content = content; }
    CWnd* GetContent() const { return m_content; }
    /// Gives the window inside its peer, unless it has one; called by the window system once the pane has its own. False without a window inside.
    bool CreateContent();
    /// Resource number.
    void SetIcon(unsigned int icon) { m_icon = icon; }
    unsigned int GetIcon() const { return m_icon; }
    void SetPaneTitle(const CXTString<wchar_t>& title) { m_title = title; }
    const CXTString<wchar_t>& GetPaneTitle() const { return m_title; }

private:
    CWnd* m_content = nullptr;
    unsigned int m_icon = 0;
    CXTString<wchar_t> m_title;
};
