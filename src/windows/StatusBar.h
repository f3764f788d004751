#pragma once

#include <vector>

#include "tools/Api.h"
#include "tools/String.h"

class CFrameWndEx;

enum StatusPaneStyle : unsigned int {
    STATUSPANE_FRAMED = 0x100,
    STATUSPANE_STRETCH = 0x8000000,    ///< takes what room is left
};

/// The bar at the foot of a frame: panes of text.
class ZEL_API CCommandStatusBar {
public:
    struct Pane {
        unsigned int id = 0;
        CXTString<wchar_t> text;    ///< with the help mark-up in the pane of help
        unsigned int style = 0;
        int width = 0;    ///< pixels at 96 a inch; the least width of a stretched one
    };

    CCommandStatusBar();
    virtual ~CCommandStatusBar();
    CCommandStatusBar(const CCommandStatusBar&) = delete;
    CCommandStatusBar& operator=(const CCommandStatusBar&) = delete;

    /// Lays the panes out in OnInit.
    void Init(CFrameWndEx* frame);
    virtual void OnInit();
    /// Text of a pane as it is shown: what SetPaneText left, unless a derived bar says otherwise.
    virtual CXTString<wchar_t> OnDrawPane(int pane) const;
    virtual void OnItemClick(int pane, bool doubleClick);

    void SetPanes(std::vector<Pane> panes);
    /// Nothing for a number outside.
    void SetPaneText(int pane, const CXTString<wchar_t>& text);
    const std::vector<Pane>& GetPanes() const { return m_panes; }
    CFrameWndEx* GetFrame() const { return m_frame; }

private:
    CFrameWndEx* m_frame = nullptr;
    std::vector<Pane> m_panes;
};
