#pragma once

// What a toolkit must give. Without one every question is answered "cancel" and nothing shows.

#include <vector>

#include "tools/Color.h"
#include "tools/FileNameSpec.h"
#include "windows/Dialog.h"
#include "windows/Window.h"

class Bitmap;
class CCustomList;
class CCustomMenu;
class CCustomTree;
class CFrameWndEx;
class IProgressSink;

enum MessageButtons { MESSAGE_OK, MESSAGE_OK_CANCEL, MESSAGE_YES_NO, MESSAGE_YES_NO_CANCEL };
enum MessageAnswer { ANSWER_CANCEL = 0, ANSWER_OK = 1, ANSWER_YES = 2, ANSWER_NO = 3 };

/// A line of a file dialog's list of formats.
struct CFileFilter {
    CXTString<wchar_t> name;
    std::vector<CXTString<wchar_t>> patterns;    ///< "*.obj"
    unsigned int fileClass = 0;                  ///< 0: all together
};

/// What a file dialog asks for.
struct CFileDialogRequest {
    bool reading = true;
    bool several = false;
    unsigned int kind = 0;      ///< families of file classes
    unsigned int filter = 0;    ///< class to start with, or FILTER_ALL
    CFileNameSpec start;
    CXTString<wchar_t> title;            ///< empty: as usual
    std::vector<CFileFilter> filters;    ///< filled by fileOpenFile and its kin
};

/// A question that waits for the user: a dialog, a message, a menu.
struct CShownQuestion {
    CXTString<wchar_t> kind;    ///< "message", "dialog", "files", "folders", "color", "menu", "report"
    CXTString<wchar_t> title, text;
    std::vector<CDialogTable*> pages;    ///< of a dialog
};

/// The one factory of everything that a toolkit must give. Used by the thread that runs its loop.
class ZEL_API IWindowSystem {
public:
    virtual ~IWindowSystem();

    // Windows: each gives the window a peer (CWnd::SetPeer), hidden for those without parent; false when there is no screen, or OnCreate refuses.

    virtual bool CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect) = 0;
    virtual bool CreateFramePeer(CFrameWndEx* frame, CWnd* parent, const CXTString<wchar_t>& title) = 0;
    virtual bool CreateTreePeer(CCustomTree* tree, CWnd* parent) = 0;
    virtual bool CreateListPeer(CCustomList* list, CWnd* parent) = 0;

    // The loop

    /// Until Quit, or the last frame is gone. The exit code.
    virtual int Run() = 0;
    virtual void Quit(int exitCode) = 0;
    /// Deals with what has arrived, so that windows live during long work.
    virtual void PumpEvents() = 0;
    /// The key is down now (VirtualKey, also VK_SHIFT, VK_CONTROL, VK_MENU).
    virtual bool IsKeyDown(unsigned int key) = 0;

    // Menus and questions; each waits for its answer

    /// Opens a menu at a point of the screen; the chosen entry's number, 0 for none.
    virtual unsigned int TrackPopup(CWnd* parent, CCustomMenu& menu, const CPoint& screen) = 0;
    virtual MessageAnswer ShowMessage(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                                      MessageButtons buttons) = 0;
    /// A notice that the user may choose not to see again; `id` tells which one. `text` has the help mark-up. `milliseconds`: how long it stays,
    /// 0 until it is closed. Does not wait. False when the user wants it no more, or nothing shows.
    virtual bool ShowNotice(CWnd* parent, unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title,
                            const CXTString<wchar_t>& text) = 0;
    /// A longer text, as the report of a conversion.
    virtual void ShowReport(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) = 0;
    /// False when cancelled.
    virtual bool ChooseFiles(CWnd* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen) = 0;
    /// One folder, or `several`. `folders`: the first is where to start; then what was chosen. False when cancelled.
    virtual bool ChooseFolders(CWnd* parent, const CXTString<wchar_t>& title, bool several, std::vector<CXTString<wchar_t>>& folders) = 0;
    virtual bool ChooseColor(CWnd* parent, CRGBColor& color) = 0;
    /// Shows the pages as one sheet (a single page as a dialog) until OK or cancel; true on OK.
    virtual bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages) = 0;
    virtual void SetWaitCursor(bool on) = 0;
    /// A progress window that lives until it is deleted; null when nothing shows. Telling it keeps the other windows alive, but lets the user do
    /// nothing there.
    virtual IProgressSink* CreateProgress(CWnd* parent, const CXTString<wchar_t>& title) = 0;
    virtual bool GetClipboardText(CXTString<wchar_t>& text) = 0;
    virtual bool SetClipboardText(const CXTString<wchar_t>& text) = 0;

    // For scripts

    /// Presses and lets go of a key where a user's would go: the open dialog or menu, else the window with the focus. `state`: InputState.
    virtual void SendKey(unsigned int key, unsigned int state) = 0;
    /// What stands on the screen in a window without its borders; the caller's. Null when it cannot be had.
    virtual Bitmap* GrabWindow(CWnd* window) = 0;
    /// Those open now, the innermost last.
    virtual std::vector<CShownQuestion> GetShownQuestions();
    /// Answers the innermost one: "ok", "cancel", "yes", "no"; a menu: the text of an entry; files and folders: paths, with a line feed between; a
    /// dialog also "ID=VALUE", which changes a control and keeps it open. False when none is open, or it takes no such answer.
    virtual bool AnswerQuestion(const CXTString<wchar_t>& answer);
};

/// The window system of the process: the one set, else the one without windows.
ZEL_API IWindowSystem& GetWindowSystem();
/// Null goes back to none. The system stays the caller's, and must outlive its use. Returns the former one, null for none.
ZEL_API IWindowSystem* SetWindowSystem(IWindowSystem* system);
/// Loads the module that shows windows unless a system is set: "zel-windows-*.so" from $ZEL_WINDOWS_PATH, the folder of the build, or
/// <libdir>/3dzel/windows. False with the reason when there is none, or no screen. It stays loaded.
ZEL_API bool LoadWindowSystem(CXTString<wchar_t>& error);

/// What a module of windows exports under the name WINDOWS_ENTRY: makes its window system, for the life of the process; null, with the reason, when
/// it cannot show anything. `version`: WINDOWS_VERSION.
using WindowSystemEntry = IWindowSystem* (*)(unsigned int version, CXTString<wchar_t>* error);
constexpr char WINDOWS_ENTRY[] = "ZelCreateWindowSystem";
constexpr unsigned int WINDOWS_VERSION = 1;

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
    static bool ShowDialog(unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                           CWnd* parent = nullptr);
};

/// Chooses one or several folders.
class ZEL_API CSelectFolderDlg {
public:
    CSelectFolderDlg(CWnd* parent, unsigned int flags);
    void SetFolder(const CXTString<wchar_t>& folder);
    /// True on OK.
    bool DoModal();
    /// That all chosen ones lie in, or the one chosen.
    const CXTString<wchar_t>& GetFolder() const { return m_folder; }
    const std::vector<CXTString<wchar_t>>& GetFolders() const { return m_folders; }

private:
    CWnd* m_parent;
    CXTString<wchar_t> m_folder;
    std::vector<CXTString<wchar_t>> m_folders;
};
