#include "windows/StatusBar.h"

#include "windows/Frame.h"

CCommandStatusBar::CCommandStatusBar() = default;
CCommandStatusBar::~CCommandStatusBar() = default;

void CCommandStatusBar::Init(CFrameWndEx* frame)
{
    m_frame = frame;
    OnInit();
}

void CCommandStatusBar::OnInit() {}

CXTString<wchar_t> CCommandStatusBar::OnDrawPane(int pane) const
{
    return pane >= 0 && pane < static_cast<int>(m_panes.size()) ? m_panes[static_cast<std::size_t>(pane)].text : CXTString<wchar_t>();
}

void CCommandStatusBar::OnItemClick(int, bool) {}

void CCommandStatusBar::SetPanes(std::vector<Pane> panes)
{
    m_panes = std::move(panes);
    if (m_frame)
        m_frame->UpdateStatus();
}

void CCommandStatusBar::SetPaneText(int pane, const CXTString<wchar_t>& text)
{
    if (pane < 0 || pane >= static_cast<int>(m_panes.size()) || m_panes[static_cast<std::size_t>(pane)].text == text)
        return;
    m_panes[static_cast<std::size_t>(pane)].text = text;
    if (m_frame)
        m_frame->UpdateStatus();
}
