#include "windows/CommandView.h"

#include "windows/CommandMgr.h"

CCommandView::CCommandView() = default;
CCommandView::~CCommandView() = default;

bool CCommandView::OnEraseBkgnd(CDC* dc)
{
    if (m_manager)
        m_manager->OnEraseBkgnd(dc);
    return CWnd::OnEraseBkgnd(dc);
}

void CCommandView::OnMouseMove(unsigned int state, const CPoint& point)
{
    if (m_manager)
        m_manager->OnMouseMove(this, state, point);
}

void CCommandView::OnMouseButton(MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point)
{
    if (down)
        SetFocus();
    if (m_manager)
        m_manager->OnMouseButton(this, button, down, doubleClick, state, point);
}

void CCommandView::OnMouseWheel(unsigned int state, short delta, const CPoint& point)
{
    if (!m_manager || !m_manager->OnMouseWheel(this, state, delta, point))
        OnUnusedWheel(state, delta, point);
}

void CCommandView::OnUnusedWheel(unsigned int, short, const CPoint&) {}

void CCommandView::OnCaptureLost()
{
    if (m_manager)
        m_manager->OnCaptureLost();
}

bool CCommandView::OnSetCursor(const CPoint& point) { return m_manager && m_manager->OnSetCursor(point); }

// Keys of a view in a frame are the frame's, which gets what is not used here.
bool CCommandView::OnKey(unsigned int key, unsigned int state) { return !GetParent() && m_manager && m_manager->OnKey(key, state); }

void CCommandView::OnDraw(CDC* dc)
{
    if (m_manager)
        m_manager->OnDraw(dc);
}
