#pragma once

// Actions that a user, a key or a script starts. CZelCommand is the action, CCommandMgr runs it.

#include <vector>

#include "tools/Api.h"
#include "tools/CustomData.h"
#include "tools/Rect.h"
#include "tools/String.h"

class CCommandFrameWnd;
class CCommandMgr;
class CCustomMenu;
class CDC;
class CZelCommand;

enum CommandResult : int {
    COMMAND_DONE = 0,
    COMMAND_DECLINED = 7,    ///< or failed
    COMMAND_NO_SCENE = 8,
    COMMAND_CANCELLED = 11,
};

enum CommandState : unsigned int {
    COMMAND_ENABLED = 0x2,
    COMMAND_CHECKED = 0x8,
    COMMAND_HAS_POPUP = 0x20,           ///< its menu entry is a popup (OnPopupMenu), its button has an arrow
    COMMAND_HAS_TOOLBAR_MENU = 0x40,    ///< its button has an arrow beside it: OnToolbarMenu
    // How a command behaves; kept for hosts.
    COMMAND_REPEATABLE = 0x4000,
    COMMAND_TAKES_MOUSE = 0x8000,
    COMMAND_CHANGES_DOCUMENT = 0x10000,    ///< applied, it leaves the document changed: the frame then asks to save it
};

/// Which help text is asked for.
enum HelpInfo { HELP_DESCRIPTION = 1, HELP_MOUSE = 4, HELP_KEYS = 5, HELP_CONTENTS = 7 };

/// Identity of a command: six words, most of them four-character codes.
struct CCommandID {
    unsigned int owner = 0;
    unsigned int ownerGroup = 0;
    unsigned int type = 0;    ///< 'SIMP' runs once, 'INTE' stays current, 'DIAL' opens a dialog
    unsigned int group = 0;
    unsigned int identifier = 0;
    unsigned int version = 1;
    friend bool operator==(const CCommandID&, const CCommandID&) = default;
};

/// How a command is reached: key, menu, tool bar.
class ZEL_API CCommandAccess {
public:
    /// `modifiers`: 1 Shift, 2 Ctrl, 4 Alt, with 0x200.
    void SetAccess(unsigned int key, unsigned int modifiers, unsigned int options);
    void SetBitmap(unsigned int id, int index);
    void SetMenuPosition(unsigned int group, unsigned int position, int reserved);
    void SetToolbarPosition(unsigned int group, unsigned int position, int reserved);

    unsigned int GetKey() const { return m_key; }
    unsigned int GetModifiers() const { return m_modifiers; }
    unsigned int GetOptions() const { return m_options; }
    unsigned int GetBitmap() const { return m_bitmap; }
    int GetBitmapIndex() const { return m_bitmapIndex; }
    bool HasMenuPosition() const { return m_menuGroup != 0; }
    unsigned int GetMenuGroup() const { return m_menuGroup; }
    unsigned int GetMenuPosition() const { return m_menuPosition; }
    bool HasToolbarPosition() const { return m_toolbarGroup != 0; }
    unsigned int GetToolbarGroup() const { return m_toolbarGroup; }
    unsigned int GetToolbarPosition() const { return m_toolbarPosition; }
    /// "Ctrl+Shift+S"; empty without a key.
    CXTString<wchar_t> GetKeyText() const;

private:
    unsigned int m_key = 0, m_modifiers = 0, m_options = 0;
    unsigned int m_bitmap = 0;
    int m_bitmapIndex = 0;
    unsigned int m_menuGroup = 0, m_menuPosition = 0;
    unsigned int m_toolbarGroup = 0, m_toolbarPosition = 0;
};

/// Base of all commands. Handlers of mouse and keys answer 0 when they leave the event to others.
class ZEL_API CZelCommand {
public:
    CZelCommand();
    CZelCommand(const CZelCommand&) = delete;
    CZelCommand& operator=(const CZelCommand&) = delete;

    virtual void UpdateState();
    virtual ~CZelCommand();
    virtual unsigned int GetInputDataFormat(unsigned int& options) const;
    virtual unsigned int GetOutputDataFormat() const;
    virtual CXTString<wchar_t> GetName() = 0;
    virtual CCommandID GetCommandID() = 0;
    virtual int OnInitCommand(CCommandFrameWnd* frame);
    virtual CommandResult OnOpenCommand(unsigned int& mode, void* data);
    virtual CommandResult OnCloseCommand();
    virtual CommandResult OnValidateCommand();
    virtual CommandResult OnCancelCommand();
    virtual void AskForValidation(CXTString<wchar_t>& question) const;
    virtual void OnGetFocus(int reason, CZelCommand* former, CommandResult result);
    virtual void OnLooseFocus(int reason, CZelCommand* next);
    virtual CommandResult OnApplyCommand();
    virtual int OnCustomMessage(unsigned int message, void* data);
    virtual int SetCursor(const CPoint& point);
    virtual bool OnMouseActivate(int reason);
    virtual void OnMouseMove(unsigned int state, const CPoint& point);
    virtual int OnMouseWheel(unsigned int state, short delta, CPoint point);
    virtual int OnLButtonUp(unsigned int state, const CPoint& point);
    virtual int OnRButtonUp(unsigned int state, const CPoint& point);
    virtual int OnMButtonUp(unsigned int state, const CPoint& point);
    virtual int OnLButtonDown(unsigned int state, const CPoint& point);
    virtual int OnRButtonDown(unsigned int state, const CPoint& point);
    virtual int OnMButtonDown(unsigned int state, const CPoint& point);
    virtual int OnLButtonDblClk(unsigned int state, const CPoint& point);
    virtual int OnRButtonDblClk(unsigned int state, const CPoint& point);
    virtual int OnMButtonDblClk(unsigned int state, const CPoint& point);
    virtual int OnKey(unsigned char key);
    virtual void OnDraw(CDC* dc);
    virtual void OnEraseBkgnd(CDC* dc);
    virtual void OnTimer(unsigned int id);
    virtual int HasDialog();
    virtual int OnOpenDialog();
    virtual void OnCloseDialog(unsigned int id);
    virtual int OnValidateDialog(unsigned int id);
    virtual int OnCancelDialog(unsigned int id);
    virtual void OnUpdateFromDialog(unsigned int id);
    virtual unsigned int GetOptions() const;
    virtual CXTString<wchar_t> GetMenuName(int which);
    virtual int OnToolbarMenu(CPoint& point);
    virtual CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first);
    virtual unsigned int GetPopupCmdState(unsigned int id);
    virtual bool GetPopupCmdHelp(unsigned int id, HelpInfo kind, CXTString<wchar_t>& text);
    virtual int DoPopupCmd(unsigned int id);
    virtual int OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const;

    void SetState(unsigned int bit, bool on) { m_state = on ? m_state | bit : m_state & ~bit; }
    bool IsStateSet(unsigned int bit) const { return (m_state & bit) == bit; }
    unsigned int GetState() const { return m_state; }

    void SetInputDataFormat(unsigned int format, unsigned int options);
    void SetOutputDataFormat(unsigned int format) { m_outputFormat = format; }
    void SetInputData(const CCustomData& data) { m_input = data; }
    CCustomData& GetInputData() { return m_input; }
    CCustomData& GetOutputData() { return m_output; }
    void SetParameters(const CCustomData& parameters) { m_parameters = parameters; }
    void GetParameters(CCustomData& parameters) const { parameters = m_parameters; }
    /// The parameter bag itself.
    CCustomData& GetCustomData() { return m_parameters; }
    /// True when the bag names this command or no command: see StampParameters.
    bool AreParametersValid(const CCustomData& parameters);
    /// Writes the command's identifier into the bag ('CMID').
    void StampParameters(CCustomData& parameters);

    /// True while a script runs commands.
    bool IsScripting() const;
    /// String-table text of the id.
    static CXTString<wchar_t> GetCommandHelp(unsigned int id);
    CCommandAccess& GetAccess() { return m_access; }
    CXTString<wchar_t> GetKeyAccess() const { return m_access.GetKeyText(); }

    CCommandMgr* GetManager() const { return m_manager; }

    /// Calls OnTimer every so many milliseconds while the frame has a window; false when it has none. Timers of a command are its own.
    bool SetTimer(unsigned int id, unsigned int milliseconds, bool on = true);
    void CloseTimer(unsigned int id);
    bool IsTimerEnabled(unsigned int id) const;

protected:
    CCommandAccess m_access;

private:
    friend class CCommandMgr;

    CCommandMgr* m_manager = nullptr;
    unsigned int m_windowsId = 0;
    unsigned int m_state = COMMAND_ENABLED;
    unsigned int m_inputFormat = 0, m_inputOptions = 0, m_outputFormat = 0;
    CCustomData m_input, m_output, m_parameters;
};
