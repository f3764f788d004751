#include "windows/Window.h"

#include <utility>

IWindowPeer::~IWindowPeer() = default;

static const CXRuntimeClass g_class("CWnd", CXObject::GetThisRuntimeClassDescriptor(), nullptr);

CWnd::CWnd() = default;

CWnd::~CWnd() { delete m_peer; }

const CXRuntimeClass* CWnd::GetRuntimeClassDescriptor() const { return &g_class; }

const CXRuntimeClass* CWnd::GetThisRuntimeClassDescriptor() { return &g_class; }

int CWnd::OnCreate() { return 0; }
bool CWnd::OnClose() { return true; }
void CWnd::OnDestroy() {}
void CWnd::OnActivate(bool) {}
void CWnd::OnEnable(bool) {}
void CWnd::OnPaint() {}
bool CWnd::OnEraseBkgnd(CDC*) { return false; }
void CWnd::OnSize(int, int) {}
void CWnd::OnTimer(unsigned int) {}
void CWnd::OnMouseMove(unsigned int, const CPoint&) {}
void CWnd::OnMouseButton(MouseButton, bool, bool, unsigned int, const CPoint&) {}
void CWnd::OnMouseWheel(unsigned int, short, const CPoint&) {}
void CWnd::OnMouseLeave() {}
void CWnd::OnCaptureLost() {}
bool CWnd::OnSetCursor(const CPoint&) { return false; }
bool CWnd::OnContextMenu(const CPoint&) { return false; }
bool CWnd::OnKey(unsigned int, unsigned int) { return false; }
void CWnd::OnFocus(bool) {}
void CWnd::OnCommand(unsigned int) {}
DropEffect CWnd::OnDragOver(const std::vector<CXTString<wchar_t>>&, unsigned int, const CPoint&) { return DROP_NONE; }
void CWnd::OnDropFiles(const std::vector<CXTString<wchar_t>>&, unsigned int, const CPoint&) {}

bool CWnd::SetPeer(IWindowPeer* peer)
{
    if (peer == m_peer)
        return true;
    if (m_peer) {
        OnDestroy();
        delete std::exchange(m_peer, nullptr);
    }
    m_peer = peer;
    if (!m_peer || OnCreate() != -1)
        return true;
    delete std::exchange(m_peer, nullptr);
    return false;
}

void CWnd::Invalidate(const CRect* area)
{
    if (m_peer)
        m_peer->Invalidate(area);
}

CRect CWnd::GetClientRect() const { return m_peer ? m_peer->GetClientRect() : CRect(); }

void CWnd::SetTimer(unsigned int id, unsigned int milliseconds)
{
    if (m_peer)
        m_peer->SetTimer(id, milliseconds);
}

void CWnd::KillTimer(unsigned int id)
{
    if (m_peer)
        m_peer->KillTimer(id);
}

void CWnd::SetCapture()
{
    if (m_peer)
        m_peer->SetCapture(true);
}

void CWnd::ReleaseCapture()
{
    if (m_peer)
        m_peer->SetCapture(false);
}

void CWnd::SetCursor(MouseCursor cursor)
{
    if (m_peer)
        m_peer->SetCursor(cursor);
}

void CWnd::SetFocus()
{
    if (m_peer)
        m_peer->SetFocus();
}

void CWnd::SetTitle(const CXTString<wchar_t>& title)
{
    m_title = title;
    if (m_peer)
        m_peer->SetTitle(title);
}

void CWnd::Show(bool on)
{
    if (m_peer)
        m_peer->Show(on);
}

void CWnd::Enable(bool on)
{
    if (m_peer)
        m_peer->Enable(on);
}

CPoint CWnd::ClientToScreen(const CPoint& point) const { return m_peer ? m_peer->ClientToScreen(point) : point; }

CPoint CWnd::ScreenToClient(const CPoint& point) const { return m_peer ? m_peer->ScreenToClient(point) : point; }

void CWnd::PostClose()
{
    if (m_peer)
        m_peer->PostClose();
}

void CWnd::PostCommand(unsigned int id)
{
    if (m_peer)
        m_peer->PostCommand(id);
}
