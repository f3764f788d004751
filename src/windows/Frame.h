#pragma once

// The main window of a program: menus, three tool bars, docked panes, a status bar, and a window in the middle. The frame holds lists of what
// is to show; IFramePeer shows them and sends back what the user chooses.

#include <memory>
#include <vector>

#include "windows/DockPane.h"
#include "windows/Menu.h"
#include "windows/StatusBar.h"
#include "windows/Toolbar.h"
#include "windows/Window.h"

/// Where a frame stands on the screen.
struct CWindowPlacement {
    CRect rect;    ///< pixels of the screen, as it is when not maximized; empty: wherever the window system likes
    bool maximized = false;
};

/// The window system's side of a frame. It reads the frame's lists when it is told that they changed.
class ZEL_API IFramePeer : public IWindowPeer {
public:
    virtual void MenuChanged() = 0;    ///< entries, or their states
    virtual void ToolbarsChanged() = 0;
    virtual void StatusChanged() = 0;
    virtual void SetCentralWindow(CWnd* window) = 0;
    virtual void AttachPane(unsigned int id, CCustomDockablePane* pane, DockSide side, bool shown) = 0;
    virtual void DetachPane(unsigned int id) = 0;
    virtual void ShowPane(unsigned int id, bool on) = 0;
    virtual bool IsPaneShown(unsigned int id) const = 0;
    /// Without menus, bars and panes, over the whole screen.
    virtual void SetFullScreen(bool on) = 0;
    virtual CWindowPlacement GetPlacement() const = 0;
    virtual void SetPlacement(const CWindowPlacement& placement) = 0;
};

class ZEL_API CFrameWndEx : public CWnd {
public:
    CFrameWndEx();
    ~CFrameWndEx() override;
    const CXRuntimeClass* GetRuntimeClassDescriptor() const override;
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();

    /// Makes the window, hidden; loads the window system when there is none yet. False without a screen or when OnCreate refuses.
    bool Create(const CXTString<wchar_t>& title, CWnd* parent = nullptr);
    /// Null without a window.
    IFramePeer* GetFramePeer() const;

    CCustomMenu& GetMenuBar() { return m_menuBar; }
    const std::vector<CCustomToolbar*>& GetToolbars() const { return m_toolbars; }
    CCommandStatusBar* GetStatusBar() const { return m_statusBar; }
    CWnd* GetCentralWindow() const { return m_central; }

    // Events

    /// The user opens a popup of the menu bar, or one at the pointer: states of its entries are brought up to date, and lists that grow are filled.
    virtual void OnInitMenuPopup(CCustomMenu& menu);
    /// The window system has nothing to do: states of tool bars.
    virtual void OnIdle();
    /// The arrow of a button. `screen`: below the button.
    virtual void OnToolbarMenu(unsigned int id, const CPoint& screen);
    /// The user points at an entry or a button; 0 for none.
    virtual void OnMenuSelect(unsigned int id);
    virtual void OnPaneShown(unsigned int id, bool shown);

    // States, told to the window once they change

    void UpdateMenuBar();
    void UpdateToolbars();
    void UpdateStatus();

protected:
    void AddToolbar(CCustomToolbar* toolbar) { m_toolbars.push_back(toolbar); }
    /// Empties them too.
    void RemoveToolbars();
    void SetStatusBar(CCommandStatusBar* bar) { m_statusBar = bar; }
    void SetCentralWindow(CWnd* window);

private:
    CCustomMenu m_menuBar;
    std::vector<CCustomToolbar*> m_toolbars;
    CCommandStatusBar* m_statusBar = nullptr;
    CWnd* m_central = nullptr;
};

class CCustomFrameWnd;

/// The docked panes of a frame, by number.
class ZEL_API CCustomFramePanels {
public:
    explicit CCustomFramePanels(CCustomFrameWnd* frame);
    virtual ~CCustomFramePanels();
    CCustomFramePanels(const CCustomFramePanels&) = delete;
    CCustomFramePanels& operator=(const CCustomFramePanels&) = delete;

    /// The panel, made when it is not there; null when it cannot be made.
    virtual CCustomDockablePane* CreatePanel(unsigned int id);
    /// Takes pane and content over; false when the number is taken.
    bool InsertPanel(unsigned int id, std::unique_ptr<CCustomDockablePane> pane, std::unique_ptr<CWnd> content);
    CCustomDockablePane* GetPanel(unsigned int id) const;
    /// With its window.
    void RemovePanel(unsigned int id);
    void AttachPanelToWnd(unsigned int id, bool shown, DockSide side);
    void ShowPanel(unsigned int id, bool on);
    bool IsPanelShown(unsigned int id) const;
    /// Drops all panes and their windows.
    void Close();

private:
    struct Panel;
    void Drop(Panel& panel);
    CCustomFrameWnd* m_frame;
    std::vector<std::unique_ptr<Panel>> m_panels;
};

/// A frame whose window comes up in steps that derived frames fill in.
class ZEL_API CCustomFrameWnd : public CFrameWndEx {
public:
    CCustomFrameWnd();
    ~CCustomFrameWnd() override;

    virtual void InitToolbars();
    virtual void CreateMainMenu();
    virtual void InitMenu();
    virtual void ReleaseMenu();
    virtual CCustomFramePanels* CreateFramePanels();
    virtual CCustomDockablePane* CreatePanel(unsigned int id);
    virtual void InitBeforeCreation();
    /// After the window has shown for the first time.
    virtual void OnFirstDisplay();
    /// Where the window stood when it was last closed; false when nothing is known.
    virtual bool LoadWindowPos(CWindowPlacement& placement);
    virtual void SaveWindowPos();

    /// InitBeforeCreation, CreateMainMenu, InitToolbars; then the panels.
    int OnCreate() override;
    void OnDestroy() override;

    /// Puts the window where it stood and shows it.
    void ShowFrame();
    CCustomFramePanels* GetPanels() const { return m_panels.get(); }
    bool IsPanelShown(unsigned int id) const;

    bool IsFrameFlagSet(unsigned int flag) const { return (m_flags & flag) == flag; }
    void SetFrameFlag(unsigned int flag, bool on) { m_flags = on ? m_flags | flag : m_flags & ~flag; }

private:
    std::unique_ptr<CCustomFramePanels> m_panels;
    unsigned int m_flags = 0;
    bool m_shown = false;
};
