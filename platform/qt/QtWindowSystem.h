#pragma once

#include <optional>

#include <windows/WindowSystem.h>

#include "KeyRouter.h"

/// Windows by Qt. Made after the application object, once a process.
class CQtWindowSystem : public IWindowSystem {
public:
    CQtWindowSystem();

    bool CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect) override;
    bool CreateFramePeer(CFrameWndEx* frame, CWnd* parent, const CXTString<wchar_t>& title) override;
    bool CreateTreePeer(CCustomTree* tree, CWnd* parent) override;
    bool CreateListPeer(CCustomList* list, CWnd* parent) override;
    int Run() override;
    void Quit(int exitCode) override;
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
    Bitmap* GrabWindow(CWnd* window) override;
    std::vector<CShownQuestion> GetShownQuestions() override;
    bool AnswerQuestion(const CXTString<wchar_t>& answer) override;

private:
    CKeyRouter m_keys;
    std::optional<int> m_exitCode;    ///< once the loop has been asked to end
    bool m_running = false;
};
