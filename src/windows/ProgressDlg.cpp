#include "windows/ProgressDlg.h"

#include <algorithm>

#include "tools/Progress.h"
#include "windows/WindowSystem.h"

CProgressDlg::CProgressDlg(const CXTString<wchar_t>& title, CWnd* parent)
{
    if (!CProgressScope::GetCurrentSink())
        m_ownSink.reset(GetWindowSystem().CreateProgress(parent, title));
    if (m_ownSink)
        m_scope = std::make_unique<CProgressScope>(m_ownSink.get());
    m_progress = std::make_unique<CProgress>(title);
}

CProgressDlg::~CProgressDlg()
{
    m_progress.reset();
    m_scope.reset();
}

void CProgressDlg::SetRange(int lower, int upper)
{
    m_lower = lower;
    m_progress->SetRange(static_cast<std::uint64_t>(std::max(static_cast<long long>(upper) - lower, 1LL)));
}

void CProgressDlg::SetStatus(const CXTString<wchar_t>& text) { m_progress->SetText(text); }

void CProgressDlg::SetPos(int position, bool update)
{
    m_position = position;
    m_progress->SetPos(static_cast<std::uint64_t>(std::max(static_cast<long long>(position) - m_lower, 0LL)));
    if (update)
        m_progress->Update();
}

void CProgressDlg::StepIt() { SetPos(m_position + m_step); }

bool CProgressDlg::CheckCancelButton() { return !m_progress->Update(); }
