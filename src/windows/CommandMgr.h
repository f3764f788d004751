#pragma once

#include <map>
#include <vector>

#include "windows/Command.h"
#include "windows/Keys.h"
#include "windows/Window.h"

class CCommandFrameWnd;
class CCommandView;

/// Buttons that are down, as IsSingleClick gives them.
enum ClickFlag : unsigned int {
    CLICK_RIGHT = 0x10000,
    CLICK_LEFT = 0x20000,
    CLICK_MIDDLE = 0x40000,
    CLICK_MOVED = 0x80000,    ///< the mouse has moved since the press
};

/// How StackCommand runs a command.
enum StackMode : unsigned int {
    STACK_USER = 0,     ///< with its dialog
    STACK_APPLY = 2,    ///< applies at once
};

/// What a script is doing.
enum ScriptMode { SCRIPT_NONE = 0, SCRIPT_DIALOG = 1, SCRIPT_APPLY = 2 };

/// Keeps the commands of a frame, runs them, and hands the mouse and the keys to the current one.
class ZEL_API CCommandMgr {
public:
    explicit CCommandMgr(CCommandFrameWnd* frame = nullptr);
    ~CCommandMgr();
    CCommandMgr(const CCommandMgr&) = delete;
    CCommandMgr& operator=(const CCommandMgr&) = delete;

    // Commands (CommandMgr.cpp)

    /// Runs OnInitCommand; one that answers other than 0 is refused. The command stays its owner's and must outlive the manager or be removed.
    /// False for null and for an identifier that is taken.
    bool AddCommand(CZelCommand* command, void* resource);
    void RemoveCommand(CZelCommand* command);
    /// By the identifier of CCommandID; null for none.
    CZelCommand* GetCommandById(unsigned int id) const;
    const std::vector<CZelCommand*>& GetCommands() const { return m_commands; }
    /// The one that a key starts; null for none. `state`: InputState.
    CZelCommand* GetCommandByKey(unsigned int key, unsigned int state) const;
    CCommandFrameWnd* GetFrame() const { return m_frame; }

    /// Runs a command: opens it with `mode` and `data`, then applies it or opens its dialog (STACK_USER with a dialog), then closes it.
    ///
    /// An interactive one ('INTE') becomes the current command instead, without being applied; nothing happens when it already is. A disabled or null
    /// command is declined. In script mode 1 the dialog is all that runs; in script mode 2 the command is applied, enabled or not.
    CommandResult StackCommand(CZelCommand* command, unsigned int mode, void* data);
    CommandResult StackCommand(unsigned int id, unsigned int mode, void* data);
    /// The command that takes mouse and keys; null for none.
    CZelCommand* GetCurrentCommand() const { return m_current; }
    /// Leaves the current command; nothing takes its place.
    void CloseCurrentCommand();

    void SetScriptMode(int mode) { m_scriptMode = mode; }
    int GetScriptMode() const { return m_scriptMode; }

    // Numbers in menus and bars (CommandMgr.cpp)

    static constexpr unsigned int FIRST_COMMAND = 32768, FIRST_POPUP = 36864, PAST_POPUPS = 45056;
    /// What CWnd::OnCommand gets for a command; 0 for one that is not here.
    unsigned int GetWindowsId(const CZelCommand* command) const;
    /// The reverse, entries of popups included; null for other numbers.
    CZelCommand* GetWindowsCommand(unsigned int windowsId) const;
    /// A number for an entry of the command's popup, never given twice while the command is here; 0 when all are in use.
    unsigned int GetFreePopupCmdId(CZelCommand* command);
    /// Gives back those of one command.
    void FreePopupCmdIds(CZelCommand* command);

    // Mouse, keys, painting, timers (CommandInput.cpp). What the window of a view hears; each answers whether the command used it.

    void OnMouseMove(CCommandView* view, unsigned int state, const CPoint& point);
    bool OnMouseButton(CCommandView* view, MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point);
    bool OnMouseWheel(CCommandView* view, unsigned int state, short delta, const CPoint& point);
    /// Ends the click under way without a release.
    void OnCaptureLost();
    bool OnSetCursor(const CPoint& point);
    /// First the current command, then the command whose key it is.
    bool OnKey(unsigned int key, unsigned int state);
    void OnDraw(CDC* dc);
    void OnEraseBkgnd(CDC* dc);
    /// False for a timer that no command has.
    bool OnTimer(unsigned int id);

    /// Any button is down.
    bool IsClick() const { return (m_click & (CLICK_LEFT | CLICK_RIGHT | CLICK_MIDDLE)) != 0; }
    /// Left and right are.
    bool IsDualClick() const;
    /// The one button that is down, a ClickFlag; 0 for none or several.
    unsigned int IsSingleClick() const;
    /// The mouse has not moved since the press.
    bool IsStaticClick() const { return !(m_click & CLICK_MOVED); }
    bool IsFlagSet(unsigned int flags) const { return (m_click & flags) == flags; }
    CPoint GetPressPoint() const { return m_press; }    ///< of the last press
    CPoint GetLastPoint() const { return m_last; }      ///< before the event under way
    /// InputState of the event under way, or the last one.
    unsigned int GetInputState() const { return m_state; }

    /// Timers belong to a command and have numbers of its own. False without a window.
    bool SetTimer(CZelCommand* command, unsigned int id, unsigned int milliseconds);
    void CloseTimer(CZelCommand* command, unsigned int id);
    bool IsTimerEnabled(const CZelCommand* command, unsigned int id) const;
    void CloseAllTimers();

    // Names of groups and categories of commands, of the whole process. A name given again replaces the former one in its place.

    static void RegisterGroupName(unsigned int id, const CXTString<wchar_t>& name);
    static void RegisterCategoryName(unsigned int id, const CXTString<wchar_t>& name);
    struct Name {
        unsigned int id;
        CXTString<wchar_t> name;
    };
    /// In the order of their first registration.
    static const std::vector<Name>& GetGroupNames();
    static const std::vector<Name>& GetCategoryNames();

private:
    CommandResult MakeCurrent(CZelCommand* command, unsigned int mode, void* data);
    CommandResult Apply(CZelCommand* command);

    struct Timer {
        CZelCommand* command;
        unsigned int id, windowsId;
    };

    CCommandFrameWnd* m_frame;
    std::vector<CZelCommand*> m_commands;
    std::map<unsigned int, CZelCommand*> m_popupIds;
    std::vector<Timer> m_timers;
    CZelCommand* m_current = nullptr;
    int m_scriptMode = SCRIPT_NONE;
    unsigned int m_click = 0, m_state = 0;
    CPoint m_press, m_last;
};
