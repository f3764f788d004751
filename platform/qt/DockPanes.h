#pragma once

#include <map>

#include <windows/DockPane.h>

class CFrameWndEx;
class QDockWidget;
class QMainWindow;

/// The docked panes of a frame, by number.
class CDockPanes {
public:
    CDockPanes(CFrameWndEx* frame, QMainWindow* window) : m_frame(frame), m_window(window) {}

    void Attach(unsigned int id, CCustomDockablePane* pane, DockSide side, bool shown);
    void Detach(unsigned int id);
    void Show(unsigned int id, bool on);
    bool IsShown(unsigned int id) const;
    /// In full screen; those that showed come back after it.
    void Hide(bool on);

private:
    struct Dock {
        QDockWidget* shown;
        bool wanted;
    };

    CFrameWndEx* m_frame;
    QMainWindow* m_window;
    std::map<unsigned int, Dock> m_docks;
    bool m_hidden = false;
};
