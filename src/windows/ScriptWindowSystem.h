#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "windows/Frame.h"
#include "windows/WindowSystem.h"

class CScriptPeer;

/// Window system without a screen: windows have sizes and events but no picture, questions are answered from lists, and what was asked and shown is
/// kept. For tests and unattended runs.
///
/// An empty list answers "cancel".
class ZEL_API CScriptWindowSystem : public IWindowSystem {
public:
    CScriptWindowSystem();
    ~CScriptWindowSystem() override;

    // Answers

    /// What a user does in a dialog: changes controls (calling OnControl) and says whether to press OK.
    using DialogUser = std::function<bool(const std::vector<CDialogTable*>& pages)>;
    /// The number that a user chooses in a popup, 0 for none. The entries have their states.
    using MenuUser = std::function<unsigned int(const CCustomMenu& menu)>;

    std::deque<MessageAnswer> messageAnswers;
    std::deque<std::vector<CFileNameSpec>> fileAnswers;    ///< an empty one cancels
    std::deque<std::vector<CXTString<wchar_t>>> folderAnswers;
    std::deque<CRGBColor> colorAnswers;
    std::deque<DialogUser> dialogUsers;
    std::deque<MenuUser> menuUsers;
    /// Progress answers "cancel" from this many tellings on; negative: never.
    int cancelProgressAfter = -1;

    // What there was to see

    /// Everything that was asked or shown, in order: "message: …", "notice 2007: …", "report: …", "files: read 4000", "folder: …", "dialog: title",
    /// "menu: first entry", "progress: title".
    std::vector<CXTString<wchar_t>> shown;
    int waitCursors = 0;        ///< shown now
    int waitCursorCount = 0;    ///< shown ever
    CXTString<wchar_t> clipboard;

    // Dialog users

    /// Ticks or unticks a box and tells the page; false when no page has the control, or it cannot be used.
    static bool Check(const std::vector<CDialogTable*>& pages, unsigned int id, bool on = true);
    static bool Press(const std::vector<CDialogTable*>& pages, unsigned int id);
    static bool Enter(const std::vector<CDialogTable*>& pages, unsigned int id, const CXTString<wchar_t>& value);
    /// Entry of a list or combo.
    static bool Choose(const std::vector<CDialogTable*>& pages, unsigned int id, int entry);
    /// Drags a slider through the values, and lets it go at the last.
    static bool Slide(const std::vector<CDialogTable*>& pages, unsigned int id, const std::vector<int>& values);

    // The user's hands. Buttons and keys stay down until they are let go of; false, with nothing sent, for a window that isn't here or is disabled.

    CSize windowSize{800, 600};    ///< of the client area of windows without parent; set before they are made
    /// INPUT_SHIFT, INPUT_CTRL, INPUT_ALT.
    void HoldKeys(unsigned int keys) { m_keys = keys; }
    bool MoveMouse(CWnd* window, const CPoint& point);
    bool PressMouse(CWnd* window, MouseButton button, const CPoint& point, bool doubleClick = false);
    bool ReleaseMouse(CWnd* window, MouseButton button, const CPoint& point);
    /// Press and release.
    bool Click(CWnd* window, MouseButton button, const CPoint& point);
    bool DoubleClick(CWnd* window, MouseButton button, const CPoint& point);
    /// Press, moves to each point, release at the last.
    bool Drag(CWnd* window, MouseButton button, const std::vector<CPoint>& points);
    bool TurnWheel(CWnd* window, short delta, const CPoint& point);
    /// To the window, then its parents until one uses it; true when one did.
    bool PressKey(CWnd* window, unsigned int key);
    DropEffect DropFiles(CWnd* window, const std::vector<CXTString<wchar_t>>& files, const CPoint& point);
    bool Resize(CWnd* window, int width, int height);
    /// The close button; true when the window is gone.
    bool CloseWindow(CWnd* window);
    /// Opens the popup of a frame's menu bar that holds the number, and chooses it; false when it is missing or disabled.
    bool ChooseMenu(CFrameWndEx* frame, unsigned int id);
    /// Presses a button of a tool bar; false when it is missing or disabled.
    bool PressButton(CFrameWndEx* frame, unsigned int id);
    /// Lets time pass: timers run in order, each at most once a period, late ones dropped; then PumpEvents.
    void Wait(unsigned int milliseconds);

    // States

    bool NeedsPaint(const CWnd* window) const;
    MouseCursor GetCursor(const CWnd* window) const;
    bool HasCapture(const CWnd* window) const;
    bool IsShown(const CWnd* window) const;
    bool IsTimerRunning(const CWnd* window, unsigned int id) const;
    CXTString<wchar_t> GetTitle(const CWnd* window) const;
    bool IsFullScreen(const CFrameWndEx* frame) const;
    bool HasQuit() const { return m_quit; }
    unsigned long long GetTime() const { return m_now; }    ///< milliseconds, as Wait has let pass

    // For what stands behind the windows

    void FocusWindow(CWnd* window);
    /// Runs at the next PumpEvents, unless the window is gone by then.
    void Post(CWnd* window, std::function<void()> action);

    // IWindowSystem

    bool CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect) override;
    bool CreateFramePeer(CFrameWndEx* frame, CWnd* parent, const CXTString<wchar_t>& title) override;
    bool CreateTreePeer(CCustomTree* tree, CWnd* parent) override;
    bool CreateListPeer(CCustomList* list, CWnd* parent) override;
    /// Returns at once: nobody waits for a script.
    int Run() override;
    void Quit(int exitCode) override;
    /// What was posted, then paints.
    void PumpEvents() override;
    bool IsKeyDown(unsigned int key) override;
    unsigned int TrackPopup(CWnd* parent, CCustomMenu& menu, const CPoint& screen) override;
    MessageAnswer ShowMessage(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                              MessageButtons buttons) override;
    bool ShowNotice(CWnd* parent, unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title,
                    const CXTString<wchar_t>& text) override;
    void ShowReport(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) override;
    bool ChooseFiles(CWnd* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen) override;
    bool ChooseFolders(CWnd* parent, const CXTString<wchar_t>& title, bool several, std::vector<CXTString<wchar_t>>& folders) override;
    bool ChooseColor(CWnd* parent, CRGBColor& color) override;
    bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages) override;
    void SetWaitCursor(bool on) override;
    IProgressSink* CreateProgress(CWnd* parent, const CXTString<wchar_t>& title) override;
    bool GetClipboardText(CXTString<wchar_t>& text) override;
    bool SetClipboardText(const CXTString<wchar_t>& text) override;
    void SendKey(unsigned int key, unsigned int state) override;
    Bitmap* GrabWindow(CWnd* window) override;    ///< null

private:
    friend class CScriptPeer;

    CScriptPeer* Find(const CWnd* window) const;
    /// Null when it, or a window that it stands in, is disabled or not here.
    CWnd* FindEnabled(CWnd* window) const;
    template <class Peer> bool Give(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect);
    unsigned int GetState() const { return m_keys | m_buttons; }

    std::map<const CWnd*, CScriptPeer*> m_peers;
    struct Posted {
        CWnd* window;
        std::function<void()> action;
    };
    std::vector<Posted> m_posted;
    unsigned int m_keys = 0, m_buttons = 0;
    unsigned long long m_now = 0;    ///< milliseconds
    CWnd* m_focus = nullptr;
    bool m_quit = false;
    int m_exitCode = 0;
};
