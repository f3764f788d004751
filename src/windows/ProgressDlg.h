#pragma once

#include <memory>

#include "tools/Api.h"
#include "tools/String.h"

class CProgress;
class CProgressScope;
class CWnd;
class IProgressSink;

/// Progress window over a parent. It uses the thread's sink, or else one that the window system gives.
class ZEL_API CProgressDlg {
public:
    explicit CProgressDlg(const CXTString<wchar_t>& title, CWnd* parent = nullptr);
    ~CProgressDlg();
    CProgressDlg(const CProgressDlg&) = delete;
    CProgressDlg& operator=(const CProgressDlg&) = delete;

    void SetRange(int lower, int upper);
    void SetStep(int step) { m_step = step; }
    void SetStatus(const CXTString<wchar_t>& text);
    /// With `update` the window shows it at once.
    void SetPos(int position, bool update = true);
    void StepIt();
    /// True when the user pressed cancel.
    bool CheckCancelButton();

private:
    std::unique_ptr<IProgressSink> m_ownSink;
    std::unique_ptr<CProgressScope> m_scope;
    std::unique_ptr<CProgress> m_progress;
    int m_lower = 0, m_step = 1, m_position = 0;
};
