#include "windows/Window.h"

#include <atomic>

#include "tools/Progress.h"

namespace {

// No windows: every question is answered "cancel", nothing shows.
class CNoWindowSystem : public IWindowSystem {
public:
    bool CreateWindowPeer(CWnd*, CWnd*, const CXTString<wchar_t>&, const CRect&) override { return false; }
    MessageAnswer ShowMessage(CWnd*, const CXTString<wchar_t>&, const CXTString<wchar_t>&, MessageButtons) override
    {
        return ANSWER_CANCEL;
    }
    void ShowNotice(CWnd*, unsigned int, const CXTString<wchar_t>&, const CXTString<wchar_t>&) override {}
    void ShowReport(CWnd*, const CXTString<wchar_t>&, const CXTString<wchar_t>&) override {}
    bool ChooseFiles(CWnd*, const CFileDialogRequest&, std::vector<CFileNameSpec>&) override { return false; }
    bool ChooseFolder(CWnd*, CXTString<wchar_t>&) override { return false; }
    bool ChooseColor(CWnd*, CRGBColor&) override { return false; }
    bool RunDialog(CWnd*, const CXTString<wchar_t>&, const std::vector<CDialogTable*>&) override { return false; }
    void SetWaitCursor(bool) override {}
    IProgressSink* CreateProgress(CWnd*, const CXTString<wchar_t>&) override { return nullptr; }
    bool GetClipboardText(CXTString<wchar_t>&) override { return false; }
    bool SetClipboardText(const CXTString<wchar_t>&) override { return false; }
};

std::atomic<IWindowSystem*> g_system{nullptr};

}

IWindowPeer::~IWindowPeer() = default;
IWindowSystem::~IWindowSystem() = default;

CWnd::~CWnd() { delete m_peer; }

void CWnd::OnPaint() {}
void CWnd::OnSize(int, int) {}
void CWnd::OnTimer(unsigned int) {}
void CWnd::OnMouseMove(unsigned int, const CPoint&) {}
void CWnd::OnMouseButton(MouseButton, bool, bool, unsigned int, const CPoint&) {}
void CWnd::OnMouseWheel(unsigned int, short, const CPoint&) {}
bool CWnd::OnKey(unsigned int, unsigned int) { return false; }
void CWnd::OnDestroy() {}

void CWnd::SetPeer(IWindowPeer* peer)
{
    if (peer == m_peer)
        return;
    if (m_peer) {
        OnDestroy();
        delete m_peer;
    }
    m_peer = peer;
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

void CWnd::SetCursor(CursorShape shape)
{
    if (m_peer)
        m_peer->SetCursor(shape);
}

void CWnd::SetFocus()
{
    if (m_peer)
        m_peer->SetFocus();
}

void CWnd::SetTitle(const CXTString<wchar_t>& title)
{
    if (m_peer)
        m_peer->SetTitle(title);
}

CDialogTable::CDialogTable() = default;
CDialogTable::~CDialogTable() = default;
void CDialogTable::OnInit() {}
void CDialogTable::OnControl(unsigned int) {}
bool CDialogTable::OnOk() { return true; }
void CDialogTable::OnCancel() {}

CControl& CDialogTable::Add(ControlKind kind, unsigned int id, const CXTString<wchar_t>& text, bool sameRow)
{
    const int last = controls.empty() ? -1 : controls.back().row;
    CControl& control = controls.emplace_back();
    control.kind = kind;
    control.id = id;
    control.text = text;
    control.row = sameRow && last >= 0 ? last : last + 1;
    return control;
}

CControl* CDialogTable::Find(unsigned int id)
{
    for (CControl& control : controls)
        if (control.id == id)
            return &control;
    return nullptr;
}

IWindowSystem& GetWindowSystem()
{
    static CNoWindowSystem& none = *new CNoWindowSystem;
    IWindowSystem* const system = g_system;
    return system ? *system : none;
}

IWindowSystem* SetWindowSystem(IWindowSystem* system) { return g_system.exchange(system); }

bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages)
{
    for (CDialogTable* const page : pages)
        page->OnInit();
    if (GetWindowSystem().RunDialog(parent, title, pages))
        return true;
    for (CDialogTable* const page : pages)
        page->OnCancel();
    return false;
}

CWaitCursor::CWaitCursor(bool show)
{
    if (show)
        Show();
}

CWaitCursor::~CWaitCursor() { Hide(); }

void CWaitCursor::Show()
{
    if (!m_shown)
        GetWindowSystem().SetWaitCursor(true);
    m_shown = true;
}

void CWaitCursor::Hide()
{
    if (m_shown)
        GetWindowSystem().SetWaitCursor(false);
    m_shown = false;
}

void CNotifyDlg2::ShowDialog(CWnd* parent, unsigned int id, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text)
{
    GetWindowSystem().ShowNotice(parent, id, title, text);
}
