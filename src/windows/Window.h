#pragma once

// Windows as this system sees them. A toolkit stands behind IWindowSystem; without one every question is answered "cancel" and
// nothing shows.

#include <vector>

#include "tools/Api.h"
#include "tools/Color.h"
#include "tools/FileNameSpec.h"
#include "tools/Rect.h"
#include "tools/String.h"

class CWnd;
class IProgressSink;

enum CursorShape { CURSOR_ARROW, CURSOR_WAIT, CURSOR_MOVE, CURSOR_ZOOM, CURSOR_ROTATE, CURSOR_CROSS, CURSOR_HAND };
enum MouseButton { MOUSE_LEFT = 1, MOUSE_RIGHT = 2, MOUSE_MIDDLE = 4 };
/// State of buttons and keys during a mouse or key event.
enum InputState : unsigned int {
    INPUT_LEFT = 1,
    INPUT_RIGHT = 2,
    INPUT_SHIFT = 4,
    INPUT_CTRL = 8,
    INPUT_MIDDLE = 16,
    INPUT_ALT = 32,
};

/// The toolkit's side of a window.
class ZEL_API IWindowPeer {
public:
    virtual ~IWindowPeer();
    virtual void Invalidate(const CRect* area) = 0;    // null: all of it
    virtual CRect GetClientRect() const = 0;
    virtual void SetTimer(unsigned int id, unsigned int milliseconds) = 0;
    virtual void KillTimer(unsigned int id) = 0;
    virtual void SetCapture(bool on) = 0;
    virtual void SetCursor(CursorShape shape) = 0;
    virtual void SetFocus() = 0;
    virtual void SetTitle(const CXTString<wchar_t>& title) = 0;
    virtual void Close() = 0;
    /// Native handle of the window, for a GL surface; null without one.
    virtual void* GetNativeHandle() const = 0;
};

/// A window. Without a peer it is a valid object that shows nothing: that is what an off-screen view is.
class ZEL_API CWnd {
public:
    CWnd() = default;
    virtual ~CWnd();    // the peer goes with it
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    virtual void OnPaint();
    virtual void OnSize(int width, int height);
    virtual void OnTimer(unsigned int id);
    virtual void OnMouseMove(unsigned int state, const CPoint& point);
    virtual void OnMouseButton(MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point);
    virtual void OnMouseWheel(unsigned int state, short delta, const CPoint& point);
    /// True when the key was used.
    virtual bool OnKey(unsigned int key, unsigned int state);
    virtual void OnDestroy();

    /// Takes the peer over; null drops the present one. OnDestroy runs first when there was one.
    void SetPeer(IWindowPeer* peer);
    IWindowPeer* GetPeer() const { return m_peer; }
    bool HasPeer() const { return m_peer != nullptr; }

    void Invalidate(const CRect* area = nullptr);
    CRect GetClientRect() const;    // empty without a peer
    void SetTimer(unsigned int id, unsigned int milliseconds);
    void KillTimer(unsigned int id);
    void SetCapture();
    void ReleaseCapture();
    void SetCursor(CursorShape shape);
    void SetFocus();
    void SetTitle(const CXTString<wchar_t>& title);

private:
    IWindowPeer* m_peer = nullptr;
};

enum MessageButtons { MESSAGE_OK, MESSAGE_OK_CANCEL, MESSAGE_YES_NO, MESSAGE_YES_NO_CANCEL };
enum MessageAnswer { ANSWER_CANCEL = 0, ANSWER_OK = 1, ANSWER_YES = 2, ANSWER_NO = 3 };

/// What a file dialog asks for.
struct CFileDialogRequest {
    bool reading = true;
    bool several = false;
    unsigned int kind = 0;      ///< families of file classes
    unsigned int filter = 0;    ///< class to start with, or FILTER_ALL
    CFileNameSpec start;
};

enum ControlKind { CONTROL_LABEL, CONTROL_CHECK, CONTROL_RADIO, CONTROL_EDIT, CONTROL_BUTTON, CONTROL_LIST };

/// One control of a dialog. Controls stand below each other in the order of their rows, those of one row side by side.
struct CControl {
    unsigned int id = 0;
    ControlKind kind = CONTROL_LABEL;
    CXTString<wchar_t> text;    ///< of an edit field and a list: what stands in front
    int row = 0;
    unsigned int group = 0;    ///< radio buttons of one group exclude each other
    bool visible = true, enabled = true;
    bool checked = false;                     ///< check box, radio button
    CXTString<wchar_t> value;                 ///< edit field
    std::vector<CXTString<wchar_t>> items;    ///< list
    int selected = -1;                        ///< list
};

/// A dialog, or a page of a property sheet: a table of controls and the logic behind them. The window system shows it, writes
/// what the user does into the controls and calls the handlers.
class ZEL_API CDialogTable {
public:
    CDialogTable();
    virtual ~CDialogTable();

    /// Runs before the dialog shows.
    virtual void OnInit();
    /// A button was pressed, or a control's value changed.
    virtual void OnControl(unsigned int id);
    /// False keeps the dialog open.
    virtual bool OnOk();
    virtual void OnCancel();

    /// Adds a control in a row of its own, or with `sameRow` beside the former one. The reference holds until the next one.
    CControl& Add(ControlKind kind, unsigned int id, const CXTString<wchar_t>& text, bool sameRow = false);
    CControl* Find(unsigned int id);

    CXTString<wchar_t> title;
    std::vector<CControl> controls;
};

/// The one factory of everything that a toolkit must give.
class ZEL_API IWindowSystem {
public:
    virtual ~IWindowSystem();

    /// Gives `window` a peer; false when there is no screen.
    virtual bool CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect) = 0;
    virtual MessageAnswer ShowMessage(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                                      MessageButtons buttons) = 0;
    /// A notice that the user may choose not to see again; `id` tells which one. `text` has the help mark-up.
    virtual void ShowNotice(CWnd* parent, unsigned int id, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) = 0;
    /// A longer text, as the report of a conversion.
    virtual void ShowReport(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) = 0;
    /// False when cancelled.
    virtual bool ChooseFiles(CWnd* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen) = 0;
    virtual bool ChooseFolder(CWnd* parent, CXTString<wchar_t>& folder) = 0;
    virtual bool ChooseColor(CWnd* parent, CRGBColor& color) = 0;
    /// Shows the pages as one sheet (a single page as a dialog) until OK or cancel; true on OK.
    virtual bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages) = 0;
    virtual void SetWaitCursor(bool on) = 0;
    /// A progress window that lives until it is deleted; null when nothing shows.
    virtual IProgressSink* CreateProgress(CWnd* parent, const CXTString<wchar_t>& title) = 0;
    virtual bool GetClipboardText(CXTString<wchar_t>& text) = 0;
    virtual bool SetClipboardText(const CXTString<wchar_t>& text) = 0;
};

/// The window system of the process: the one set, else the one without windows.
ZEL_API IWindowSystem& GetWindowSystem();
/// Null goes back to none. The system stays the caller's, and must outlive its use. Returns the former one, null for none.
ZEL_API IWindowSystem* SetWindowSystem(IWindowSystem* system);

/// Runs pages through the window system: each page's OnInit first; true on OK.
ZEL_API bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages);

/// Wait cursor as long as the object lives and is shown; nested ones count.
class ZEL_API CWaitCursor {
public:
    explicit CWaitCursor(bool show = true);
    ~CWaitCursor();
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;

    void Show();
    void Hide();

private:
    bool m_shown = false;
};

/// Notice of this process's dialogs by number; see IWindowSystem::ShowNotice.
class ZEL_API CNotifyDlg2 {
public:
    static void ShowDialog(CWnd* parent, unsigned int id, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text);
};
