#include "viewer/Panels.h"

#include "tools/Application.h"
#include "viewer/FrameViewer.h"
#include "viewer/MaterialTree.h"
#include "viewer/ObjectTree.h"
#include "viewer/Texts.h"

namespace {

constexpr wchar_t SECTION[] = L"Window";

struct TreePanel {
    unsigned int id, icon, title, mode;
    const wchar_t* shownKey;
};
constexpr unsigned int CHECKED_LIST = CCustomTree::TREE_CHECKS | CCustomTree::TREE_SEVERAL | CCustomTree::TREE_OPEN_FOLDERS;
constexpr TreePanel TREE_PANELS[] = {
    {PANEL_MATERIALS, 9009, TEXT_MATERIALS_LIST, CHECKED_LIST, L"materials"},
    {PANEL_OBJECTS, 9010, TEXT_OBJECTS_LIST, CHECKED_LIST | CCustomTree::TREE_LINES, L"objects"},
};

const TreePanel* FindTreePanel(unsigned int id)
{
    for (const TreePanel& panel : TREE_PANELS)
        if (panel.id == id)
            return &panel;
    return nullptr;
}

std::unique_ptr<C3DBaseTreeWnd> CreateTree(unsigned int id, C3DFrameViewer* frame)
{
    if (id == PANEL_MATERIALS)
        return std::make_unique<C3DMaterialTree>(frame);
    return std::make_unique<C3DObjectTree>(frame);
}

}

C3DPanels::C3DPanels(C3DFrameViewer* frame) : CCustomFramePanels(frame), m_frame(frame) {}

CCustomDockablePane* C3DPanels::CreatePanel(unsigned int id)
{
    const TreePanel* const panel = FindTreePanel(id);
    if (GetPanel(id) || !panel)
        return GetPanel(id);
    auto pane = std::make_unique<CCustomDockablePane>();
    pane->SetIcon(panel->icon);
    pane->SetPaneTitle(LoadText(panel->title));
    std::unique_ptr<C3DBaseTreeWnd> tree = CreateTree(id, m_frame);
    C3DBaseTreeWnd& made = *tree;
    made.SetMode(panel->mode);
    InsertPanel(id, std::move(pane), std::move(tree));
    IApplication* const application = GetApplication();
    AttachPanelToWnd(id, !application || application->GetProfileInt(SECTION, panel->shownKey, 1), DOCK_RIGHT);
    if (!made.HasPeer()) {
        RemovePanel(id);
        return nullptr;
    }
    m_frame->AddCallbackWnd(&made, true);
    made.SceneChanged(m_frame->GetCurrentScene(), CHANGED_SCENE, {});    // what was set before there was a window
    return GetPanel(id);
}

C3DBaseTreeWnd* C3DPanels::GetTree(unsigned int id) const
{
    const CCustomDockablePane* const pane = GetPanel(id);
    return pane ? dynamic_cast<C3DBaseTreeWnd*>(pane->GetContent()) : nullptr;
}

void C3DPanels::SaveShown() const
{
    IApplication* const application = GetApplication();
    for (const TreePanel& panel : TREE_PANELS)
        if (application && GetPanel(panel.id))
            application->WriteProfileInt(SECTION, panel.shownKey, IsPanelShown(panel.id));
}
