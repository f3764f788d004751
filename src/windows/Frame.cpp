#include "windows/Frame.h"

#include <algorithm>
#include <utility>

#include "windows/WindowSystem.h"

static const CXRuntimeClass g_class("CFrameWndEx", CWnd::GetThisRuntimeClassDescriptor(), nullptr);

CFrameWndEx::CFrameWndEx() = default;
CFrameWndEx::~CFrameWndEx() = default;

const CXRuntimeClass* CFrameWndEx::GetRuntimeClassDescriptor() const { return &g_class; }

const CXRuntimeClass* CFrameWndEx::GetThisRuntimeClassDescriptor() { return &g_class; }

bool CFrameWndEx::Create(const CXTString<wchar_t>& title, CWnd* parent)
{
    CXTString<wchar_t> error;
    return LoadWindowSystem(error) && GetWindowSystem().CreateFramePeer(this, parent, title);
}

IFramePeer* CFrameWndEx::GetFramePeer() const { return dynamic_cast<IFramePeer*>(GetPeer()); }

void CFrameWndEx::OnInitMenuPopup(CCustomMenu&) {}
void CFrameWndEx::OnIdle() {}
void CFrameWndEx::OnToolbarMenu(unsigned int, const CPoint&) {}
void CFrameWndEx::OnMenuSelect(unsigned int) {}
void CFrameWndEx::OnPaneShown(unsigned int, bool) {}

void CFrameWndEx::UpdateMenuBar()
{
    if (IFramePeer* const peer = GetFramePeer())
        peer->MenuChanged();
}

void CFrameWndEx::UpdateToolbars()
{
    if (IFramePeer* const peer = GetFramePeer())
        peer->ToolbarsChanged();
}

void CFrameWndEx::UpdateStatus()
{
    if (IFramePeer* const peer = GetFramePeer())
        peer->StatusChanged();
}

void CFrameWndEx::SetCentralWindow(CWnd* window)
{
    m_central = window;
    if (IFramePeer* const peer = GetFramePeer())
        peer->SetCentralWindow(window);
}

void CFrameWndEx::RemoveToolbars()
{
    for (CCustomToolbar* const bar : m_toolbars)
        bar->buttons.clear();
    m_toolbars.clear();
}

struct CCustomFramePanels::Panel {
    unsigned int id;
    std::unique_ptr<CWnd> content;
    std::unique_ptr<CCustomDockablePane> pane;
    bool attached = false;
};

CCustomFramePanels::CCustomFramePanels(CCustomFrameWnd* frame) : m_frame(frame) {}

CCustomFramePanels::~CCustomFramePanels() { Close(); }

CCustomDockablePane* CCustomFramePanels::CreatePanel(unsigned int id) { return GetPanel(id); }

bool CCustomFramePanels::InsertPanel(unsigned int id, std::unique_ptr<CCustomDockablePane> pane, std::unique_ptr<CWnd> content)
{
    if (!pane || GetPanel(id))
        return false;
    pane->SetContent(content.get());
    auto panel = std::make_unique<Panel>();
    panel->id = id;
    panel->content = std::move(content);
    panel->pane = std::move(pane);
    m_panels.push_back(std::move(panel));
    return true;
}

CCustomDockablePane* CCustomFramePanels::GetPanel(unsigned int id) const
{
    for (const auto& panel : m_panels)
        if (panel->id == id)
            return panel->pane.get();
    return nullptr;
}

void CCustomFramePanels::AttachPanelToWnd(unsigned int id, bool shown, DockSide side)
{
    IFramePeer* const peer = m_frame->GetFramePeer();
    for (const auto& panel : m_panels)
        if (peer && panel->id == id && !panel->attached) {
            peer->AttachPane(id, panel->pane.get(), side, shown);
            panel->attached = true;
        }
}

void CCustomFramePanels::ShowPanel(unsigned int id, bool on)
{
    if (IFramePeer* const peer = m_frame->GetFramePeer(); peer && GetPanel(id))
        peer->ShowPane(id, on);
}

bool CCustomFramePanels::IsPanelShown(unsigned int id) const
{
    const IFramePeer* const peer = m_frame->GetFramePeer();
    return peer && GetPanel(id) && peer->IsPaneShown(id);
}

void CCustomFramePanels::Drop(Panel& panel)
{
    if (IFramePeer* const peer = m_frame->GetFramePeer(); peer && panel.attached)
        peer->DetachPane(panel.id);
    if (panel.content)
        panel.content->SetPeer(nullptr);
    panel.pane->SetPeer(nullptr);
}

void CCustomFramePanels::RemovePanel(unsigned int id)
{
    const auto found = std::find_if(m_panels.begin(), m_panels.end(), [id](const auto& panel) { return panel->id == id; });
    if (found == m_panels.end())
        return;
    Drop(**found);
    m_panels.erase(found);
}

void CCustomFramePanels::Close()
{
    for (const auto& panel : m_panels)
        Drop(*panel);
    m_panels.clear();
}

CCustomFrameWnd::CCustomFrameWnd() = default;
CCustomFrameWnd::~CCustomFrameWnd() = default;

void CCustomFrameWnd::InitToolbars() {}
void CCustomFrameWnd::CreateMainMenu() { InitMenu(); }
void CCustomFrameWnd::InitMenu() {}
void CCustomFrameWnd::ReleaseMenu() { GetMenuBar().RemoveAll(); }
CCustomFramePanels* CCustomFrameWnd::CreateFramePanels() { return new CCustomFramePanels(this); }
CCustomDockablePane* CCustomFrameWnd::CreatePanel(unsigned int id) { return m_panels ? m_panels->CreatePanel(id) : nullptr; }
void CCustomFrameWnd::InitBeforeCreation() {}
void CCustomFrameWnd::OnFirstDisplay() {}
bool CCustomFrameWnd::LoadWindowPos(CWindowPlacement&) { return false; }
void CCustomFrameWnd::SaveWindowPos() {}

int CCustomFrameWnd::OnCreate()
{
    InitBeforeCreation();
    CreateMainMenu();
    InitToolbars();
    m_panels.reset(CreateFramePanels());
    return CFrameWndEx::OnCreate();
}

void CCustomFrameWnd::OnDestroy()
{
    SaveWindowPos();
    m_panels.reset();
    ReleaseMenu();
    RemoveToolbars();
    CFrameWndEx::OnDestroy();
}

void CCustomFrameWnd::ShowFrame()
{
    IFramePeer* const peer = GetFramePeer();
    if (!peer)
        return;
    CWindowPlacement placement;
    if (!m_shown && LoadWindowPos(placement))
        peer->SetPlacement(placement);
    peer->Show(true);
    if (std::exchange(m_shown, true))
        return;
    OnFirstDisplay();
}

bool CCustomFrameWnd::IsPanelShown(unsigned int id) const { return m_panels && m_panels->IsPanelShown(id); }
