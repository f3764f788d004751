// Menus, tool bars and panels of the frame: where each group of commands stands.

#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "viewer/Panels.h"
#include "viewer/Texts.h"

namespace {

enum Bar { BAR_NONE, BAR_FILE, BAR_TOOLS, BAR_VIEW };

/// Of a group of commands.
struct GroupPlace {
    unsigned int group;
    unsigned int menu;       ///< popup of the menu bar, a text; 0 for none
    unsigned int submenu;    ///< of that popup; 0 for none
    Bar bar;
};

// 'VCAM' has no menu: its commands are in the popup of the cameras.
constexpr GroupPlace PLACES[] = {
    {FourCC("FILE"), TEXT_MENU_FILE, 0, BAR_FILE},
    {FourCC("EDIT"), TEXT_MENU_EDIT, 0, BAR_TOOLS},
    {FourCC("SELE"), TEXT_MENU_EDIT, 0, BAR_TOOLS},
    {FourCC("TOOL"), TEXT_MENU_TOOLS, 0, BAR_TOOLS},
    {FourCC("VIEW"), TEXT_MENU_VIEW, 0, BAR_VIEW},
    {FourCC("HELP"), TEXT_MENU_HELP, 0, BAR_NONE},
    {FourCC("WNDW"), TEXT_MENU_WINDOW, 0, BAR_NONE},
    {FourCC("POVW"), TEXT_MENU_VIEW, TEXT_MENU_POINTS_OF_VIEW, BAR_VIEW},
    {FourCC("POV2"), TEXT_MENU_VIEW, TEXT_MENU_ISOMETRIC, BAR_VIEW},
    {FourCC("REND"), TEXT_MENU_VIEW, TEXT_MENU_RENDER, BAR_VIEW},
    {FourCC("LIGH"), TEXT_MENU_VIEW, TEXT_MENU_LIGHT, BAR_VIEW},
    {FourCC("ANIM"), TEXT_MENU_VIEW, TEXT_MENU_ANIMATION, BAR_VIEW},
    {FourCC("EXTR"), TEXT_MENU_VIEW, TEXT_MENU_EXTRAS, BAR_VIEW},
    {FourCC("VCAM"), 0, 0, BAR_VIEW},
    {FourCC("ZOOM"), TEXT_MENU_VIEW, TEXT_MENU_ZOOM, BAR_TOOLS},
    {FourCC("MOVE"), TEXT_MENU_VIEW, TEXT_MENU_MOVE, BAR_TOOLS},
    {FourCC("ROTA"), TEXT_MENU_VIEW, TEXT_MENU_ROTATE, BAR_TOOLS},
};

const GroupPlace& FindPlace(unsigned int group)
{
    static constexpr GroupPlace NOWHERE{0, 0, 0, BAR_NONE};
    for (const GroupPlace& place : PLACES)
        if (place.group == group)
            return place;
    return NOWHERE;
}

}

void C3DFrameViewer::CreateMainMenu() { CDocumentFrameWnd::CreateMainMenu(); }

// Popups stand in this order, behind the commands of their menu; those that stay empty go once the commands are there.
void C3DFrameViewer::InitMenu()
{
    CDocumentFrameWnd::InitMenu();
    CCustomMenu& bar = GetMenuBar();
    for (const _VIEWER_TEXT text : {TEXT_MENU_FILE, TEXT_MENU_EDIT, TEXT_MENU_TOOLS, TEXT_MENU_VIEW})
        bar.FindPopup(LoadText(text));
    CCustomMenu& view = *bar.FindPopup(LoadText(TEXT_MENU_VIEW));
    for (const _VIEWER_TEXT text :
         {TEXT_MENU_POINTS_OF_VIEW, TEXT_MENU_ISOMETRIC, TEXT_MENU_RENDER, TEXT_MENU_LIGHT, TEXT_MENU_ANIMATION, TEXT_MENU_EXTRAS})
        view.FindPopup(LoadText(text));
    view.AddMenuSeparator();
    for (const _VIEWER_TEXT text : {TEXT_MENU_WINDOW, TEXT_MENU_HELP})
        bar.FindPopup(LoadText(text));
    for (const _VIEWER_TEXT text : {TEXT_MENU_ZOOM, TEXT_MENU_MOVE, TEXT_MENU_ROTATE})
        view.FindPopup(LoadText(text));
}

CCustomMenu* C3DFrameViewer::GetCommandMenu(unsigned int group)
{
    const GroupPlace& place = FindPlace(group);
    if (!place.menu)
        return nullptr;
    CCustomMenu* const menu = GetMenuBar().FindPopup(LoadText(place.menu));
    return place.submenu ? menu->FindPopup(LoadText(place.submenu)) : menu;
}

// Side by side, from left to right.
void C3DFrameViewer::InitToolbars()
{
    constexpr unsigned int FIRST_BAR = 59433;
    const struct {
        CCustomToolbar& bar;
        unsigned int name;
    } bars[] = {{m_fileBar, TEXT_MENU_FILE}, {m_toolsBar, TEXT_BAR_TOOLS}, {m_viewBar, TEXT_BAR_VIEW}};
    unsigned int id = FIRST_BAR;
    for (const auto& [bar, nameId] : bars) {
        CXTString<wchar_t> name = LoadText(nameId);
        name.Replace(L"&", L"");
        bar.InitToolbar(id++, name);
        AddToolbar(&bar);
    }
    ToolbarsSizeChanged();
}

void C3DFrameViewer::ToolbarsSizeChanged()
{
    const bool large = IsSettingsFlagSet(SETTINGS3D_LARGE_ICONS);
    for (CCustomToolbar* const bar : {&m_fileBar, &m_toolsBar, &m_viewBar})
        bar->SetLargeIcons(large);
    UpdateToolbars();
}

CCustomToolbar* C3DFrameViewer::GetCommandToolbar(unsigned int group)
{
    CCustomToolbar* const bars[] = {nullptr, &m_fileBar, &m_toolsBar, &m_viewBar};
    return bars[FindPlace(group).bar];
}

// Panels

void C3DFrameViewer::ShowPanel(unsigned int id, _LeftBarShowMode mode)
{
    CCustomFramePanels* const panels = GetPanels();
    if (!panels)
        return;
    const bool show = mode == LEFTBAR_TOGGLE ? !panels->IsPanelShown(id) : mode == LEFTBAR_SHOW;
    if (show ? CreatePanel(id) : panels->GetPanel(id))
        panels->ShowPanel(id, show);
}

void C3DFrameViewer::ShowObjects(_LeftBarShowMode mode)
{
    TellCallbacks([&](C3DCallbackWnd& window) { window.ShowObjects(mode); });
    ShowPanel(PANEL_OBJECTS, mode);
}

void C3DFrameViewer::ShowMaterials(_LeftBarShowMode mode)
{
    TellCallbacks([&](C3DCallbackWnd& window) { window.ShowMaterials(mode); });
    ShowPanel(PANEL_MATERIALS, mode);
}

void C3DFrameViewer::ShowThumbnails(_LeftBarShowMode mode)
{
    if (!IsFrameFlagSet(FRAME_NO_SCENE_LIST))
        ShowPanel(PANEL_SCENES, mode);
    SetFrameFlag(FRAME_SCENE_LIST_SHOWN, IsPanelShown(PANEL_SCENES));
}

void C3DFrameViewer::OnPaneShown(unsigned int id, bool shown)
{
    CDocumentFrameWnd::OnPaneShown(id, shown);
    if (id == PANEL_SCENES)
        SetFrameFlag(FRAME_SCENE_LIST_SHOWN, shown);
}
