#pragma once

#include <functional>
#include <map>
#include <vector>

#include "windows/CommandMgr.h"
#include "windows/Frame.h"

class CCommandView;

/// A frame whose menus, bars and keys start commands.
class ZEL_API CCommandFrameWnd : public CCustomFrameWnd {
public:
    /// `fullScreenCommand`: identifier of the command that is said to end the full screen.
    explicit CCommandFrameWnd(unsigned int fullScreenCommand = 0);
    ~CCommandFrameWnd() override;

    CCommandMgr& GetCommandMgr() { return m_manager; }
    CCommandView* GetViewer() const { return m_viewer; }
    /// The window in the middle; the frame owns it. Null drops it.
    void SetViewer(CCommandView* viewer);

    // Steps of the start, in this order

    /// Before OnCreate makes menus: AddCommands, LoadPlugins, InitCommands.
    virtual void AddCommands();
    /// Hosts add commands of their own under the same owner.
    virtual void AddPluginCommands(unsigned int owner);
    virtual void LoadPlugins();
    /// Puts every command that has a place into menus and bars.
    virtual void InitCommands();
    /// The interactive command that was current when the frame was last closed; false for none.
    virtual bool RestoreLastCommand();

    // Where a command stands; null for nowhere. `group`: of its CCommandID

    virtual CCustomToolbar* GetCommandToolbar(unsigned int group);
    virtual CCustomMenu* GetCommandMenu(unsigned int group);

    // Running

    virtual CommandResult RunCommand(CZelCommand* command);
    CommandResult RunCommand(unsigned int id);
    /// What runs a command tells the frame of it. A command changes the document between OnApplyCommand's two calls (`begin` true, then false) alone.
    virtual void OnApplyCommand(CZelCommand* command, bool begin, CommandResult result);
    virtual void OnOpenCommand(CZelCommand* command);
    virtual void OnCloseCommand(CZelCommand* command);
    virtual void OnCancelCommand(CZelCommand* command);
    virtual bool IsActiveCommand(const CZelCommand* command) const;
    virtual CommandResult ValidateCommand(CZelCommand* command);
    /// Enabled and checked states in bars; of open menus too.
    virtual void UpdateState();

    // Full screen

    void ToggleFullScreen();
    bool IsFullScreen() const { return m_fullScreen; }
    unsigned int GetFullScreenCommand() const { return m_fullScreenCommand; }
    void CancelFullScreen();
    virtual void InitFullscreenToolbar();
    /// Called for Esc once, instead of what else the key would do.
    void AddMessageCallback(std::function<void()> callback);

    // Help

    /// Text in the pane of help; with the mark-up <k> <b> <i> <e> <br>.
    void SetHelpText(const CXTString<wchar_t>& text);
    const CXTString<wchar_t>& GetHelpText() const { return m_helpText; }
    /// A list of all commands with their keys.
    virtual void ShowHelp();
    /// Keys that start a command, as that list tells them.
    virtual CXTString<wchar_t> GetKeysOf(CZelCommand& command) const;
    /// The next click on an entry or button shows its help.
    virtual void ShowContextHelp();
    virtual void UpdateStatusBar();

    void PostCloseWindow() { PostClose(); }
    void BeginWaitCursor();
    void EndWaitCursor();
    virtual bool OpenPopup(CCustomMenu& menu, const CPoint& screen, CZelCommand* command);
    virtual bool IsMenuOpen() const { return m_menusOpen > 0; }

    int OnCreate() override;
    void OnDestroy() override;
    void CreateMainMenu() override;
    bool OnKey(unsigned int key, unsigned int state) override;
    void OnCommand(unsigned int id) override;
    void OnInitMenuPopup(CCustomMenu& menu) override;
    void OnIdle() override;
    void OnToolbarMenu(unsigned int id, const CPoint& screen) override;
    void OnMenuSelect(unsigned int id) override;
    void OnTimer(unsigned int id) override;

    static constexpr unsigned int ID_HELP = 57670, ID_CONTEXT_HELP = 57669;

private:
    void PutIntoMenu(CZelCommand* command);
    void PutIntoToolbar(CZelCommand* command);
    bool UpdateItem(CMenuItem& item, CZelCommand* owner);
    void ShowHelpOf(CZelCommand* command);
    void SaveLastCommand();

    CCommandMgr m_manager{this};
    CCommandView* m_viewer = nullptr;
    unsigned int m_fullScreenCommand;
    bool m_fullScreen = false, m_contextHelp = false;
    int m_menusOpen = 0;
    std::vector<std::function<void()>> m_callbacks;
    std::map<const CCustomMenu*, CZelCommand*> m_commandPopups;    ///< menus that a command fills
    CXTString<wchar_t> m_helpText;
};
