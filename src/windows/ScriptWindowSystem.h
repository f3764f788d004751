#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "windows/Window.h"

/// Window system without a screen that answers from lists and keeps what was asked and shown. For tests and unattended runs.
///
/// An empty list answers "cancel".
class ZEL_API CScriptWindowSystem : public IWindowSystem {
public:
    CScriptWindowSystem();
    ~CScriptWindowSystem() override;

    /// What a user does in a dialog: changes controls (calling OnControl) and says whether to press OK.
    using DialogUser = std::function<bool(const std::vector<CDialogTable*>& pages)>;

    std::deque<MessageAnswer> messageAnswers;
    std::deque<std::vector<CFileNameSpec>> fileAnswers;    ///< an empty one cancels
    std::deque<CXTString<wchar_t>> folderAnswers;
    std::deque<CRGBColor> colorAnswers;
    std::deque<DialogUser> dialogUsers;

    /// Everything that was asked or shown, in order: "message: …", "notice 2007: …", "report: …", "files: read 4000",
    /// "dialog: title".
    std::vector<CXTString<wchar_t>> shown;
    int waitCursors = 0;        ///< shown now
    int waitCursorCount = 0;    ///< shown ever
    CXTString<wchar_t> clipboard;

    /// Ticks or unticks a box and tells the page; false when no page has the control, or it cannot be used.
    static bool Check(const std::vector<CDialogTable*>& pages, unsigned int id, bool on = true);
    static bool Press(const std::vector<CDialogTable*>& pages, unsigned int id);
    static bool Enter(const std::vector<CDialogTable*>& pages, unsigned int id, const CXTString<wchar_t>& value);

    bool CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect) override;
    MessageAnswer ShowMessage(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                              MessageButtons buttons) override;
    void ShowNotice(CWnd* parent, unsigned int id, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) override;
    void ShowReport(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text) override;
    bool ChooseFiles(CWnd* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen) override;
    bool ChooseFolder(CWnd* parent, CXTString<wchar_t>& folder) override;
    bool ChooseColor(CWnd* parent, CRGBColor& color) override;
    bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages) override;
    void SetWaitCursor(bool on) override;
    IProgressSink* CreateProgress(CWnd* parent, const CXTString<wchar_t>& title) override;
    bool GetClipboardText(CXTString<wchar_t>& text) override;
    bool SetClipboardText(const CXTString<wchar_t>& text) override;
};
