#include "windows/CommandFrame.h"

#include "tools/Application.h"
#include "tools/FourCC.h"
#include "windows/CommandView.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int TYPE_INTERACTIVE = FourCC("INTE");
constexpr wchar_t SECTION[] = L"Window", LAST_COMMAND[] = L"command";

// A name without the marks of access keys.
Text WithoutMarks(const Text& text)
{
    Text plain;
    for (int i = 0; i < text.GetLength(); i++) {
        if (text[i] == L'&' && i + 1 < text.GetLength())
            i++;
        else if (text[i] == L'&')
            break;
        plain += text[i];
    }
    return plain;
}

// Name and key, as shown over a button.
Text ButtonText(CZelCommand& command)
{
    const Text key = command.GetKeyAccess();
    return key.IsEmpty() ? WithoutMarks(command.GetName()) : WithoutMarks(command.GetName()) + L" (" + key + L")";
}

}

CCommandFrameWnd::CCommandFrameWnd(unsigned int fullScreenCommand) : m_fullScreenCommand(fullScreenCommand) {}

CCommandFrameWnd::~CCommandFrameWnd() { delete m_viewer; }

void CCommandFrameWnd::SetViewer(CCommandView* viewer)
{
    if (viewer == m_viewer)
        return;
    SetCentralWindow(nullptr);
    if (m_viewer)
        m_viewer->SetPeer(nullptr);
    delete m_viewer;
    m_viewer = viewer;
    if (!viewer)
        return;
    viewer->SetCommandMgr(&m_manager);
    viewer->SetParent(this);
    if (HasPeer() && GetWindowSystem().CreateWindowPeer(viewer, this, Text(), CRect()))
        SetCentralWindow(viewer);
}

// Start and end

int CCommandFrameWnd::OnCreate()
{
    if (m_viewer && !m_viewer->HasPeer())
        return -1;
    AddCommands();
    LoadPlugins();
    if (CCustomFrameWnd::OnCreate() == -1)
        return -1;
    InitCommands();
    UpdateMenuBar();
    UpdateState();
    UpdateToolbars();
    RestoreLastCommand();
    return 0;
}

void CCommandFrameWnd::OnDestroy()
{
    m_manager.CloseAllTimers();
    CCustomFrameWnd::OnDestroy();
    m_commandPopups.clear();
    SaveLastCommand();
    m_manager.CloseCurrentCommand();
    SetViewer(nullptr);
}

void CCommandFrameWnd::AddCommands() {}
void CCommandFrameWnd::AddPluginCommands(unsigned int) {}
void CCommandFrameWnd::LoadPlugins() {}

// The profile keeps the interactive command by its identifier.

bool CCommandFrameWnd::RestoreLastCommand()
{
    IApplication* const application = GetApplication();
    CZelCommand* const command = application ? m_manager.GetCommandById(application->GetProfileInt(SECTION, LAST_COMMAND, 0)) : nullptr;
    if (!command || command->GetCommandID().type != TYPE_INTERACTIVE)
        return false;
    RunCommand(command);
    return IsActiveCommand(command);
}

void CCommandFrameWnd::SaveLastCommand()
{
    CZelCommand* const command = m_manager.GetCurrentCommand();
    if (IApplication* const application = GetApplication(); application && command)
        application->WriteProfileInt(SECTION, LAST_COMMAND, command->GetCommandID().identifier);
}

CCustomToolbar* CCommandFrameWnd::GetCommandToolbar(unsigned int) { return nullptr; }
CCustomMenu* CCommandFrameWnd::GetCommandMenu(unsigned int) { return nullptr; }

void CCommandFrameWnd::CreateMainMenu()
{
    GetMenuBar().RemoveAll();
    InitMenu();
}

void CCommandFrameWnd::InitCommands()
{
    for (CZelCommand* const command : m_manager.GetCommands()) {
        if (command->GetAccess().HasMenuPosition())
            PutIntoMenu(command);
        if (command->GetAccess().HasToolbarPosition())
            PutIntoToolbar(command);
    }
    GetMenuBar().Tidy();
}

void CCommandFrameWnd::PutIntoMenu(CZelCommand* command)
{
    CCustomMenu* const menu = GetCommandMenu(command->GetCommandID().group);
    if (!menu)
        return;
    CMenuItem& item = menu->InsertItem(m_manager.GetWindowsId(command), command->GetMenuName(0), command->GetAccess().GetMenuPosition());
    item.key = command->GetKeyAccess();
    item.icon = command->GetAccess().GetBitmap();
    if (!command->IsStateSet(COMMAND_HAS_POPUP))
        return;
    item.popup = std::make_unique<CCustomMenu>();
    m_commandPopups[item.popup.get()] = command;
    command->OnPopupMenu(item.popup.get(), CCommandMgr::FIRST_POPUP);
}

void CCommandFrameWnd::PutIntoToolbar(CZelCommand* command)
{
    CCustomToolbar* const bar = GetCommandToolbar(command->GetCommandID().group);
    if (!bar)
        return;
    const CCommandAccess& access = command->GetAccess();
    CToolbarButton& button =
        bar->InsertButton(m_manager.GetWindowsId(command), ButtonText(*command), access.GetBitmap(), access.GetToolbarPosition());
    button.hasMenu = command->IsStateSet(COMMAND_HAS_POPUP) || command->IsStateSet(COMMAND_HAS_TOOLBAR_MENU);
}

// Running

CommandResult CCommandFrameWnd::RunCommand(CZelCommand* command)
{
    const CommandResult result = m_manager.StackCommand(command, STACK_USER, nullptr);
    UpdateState();
    return result;
}

CommandResult CCommandFrameWnd::RunCommand(unsigned int id) { return RunCommand(m_manager.GetCommandById(id)); }

void CCommandFrameWnd::OnApplyCommand(CZelCommand*, bool, CommandResult) {}
void CCommandFrameWnd::OnOpenCommand(CZelCommand*) {}
void CCommandFrameWnd::OnCloseCommand(CZelCommand*) {}
void CCommandFrameWnd::OnCancelCommand(CZelCommand*) {}

bool CCommandFrameWnd::IsActiveCommand(const CZelCommand* command) const { return command && command == m_manager.GetCurrentCommand(); }

CommandResult CCommandFrameWnd::ValidateCommand(CZelCommand* command) { return command ? command->OnValidateCommand() : COMMAND_DECLINED; }

void CCommandFrameWnd::OnCommand(unsigned int id)
{
    CZelCommand* const command = m_manager.GetWindowsCommand(id);
    if (m_contextHelp && command) {
        m_contextHelp = false;
        ShowHelpOf(command);
    } else if (id == ID_HELP)
        ShowHelp();
    else if (id == ID_CONTEXT_HELP)
        ShowContextHelp();
    else if (command && id >= CCommandMgr::FIRST_POPUP) {
        command->DoPopupCmd(id);
        UpdateState();
    } else if (command)
        RunCommand(command);
    else
        CCustomFrameWnd::OnCommand(id);
}

bool CCommandFrameWnd::OnKey(unsigned int key, unsigned int state)
{
    if (key == VK_ESCAPE && m_contextHelp) {
        m_contextHelp = false;
        return true;
    }
    if (key == VK_ESCAPE && !m_callbacks.empty()) {
        for (const auto& callback : std::exchange(m_callbacks, {}))
            callback();
        UpdateState();
        return true;
    }
    return m_manager.OnKey(key, state) || CCustomFrameWnd::OnKey(key, state);
}

void CCommandFrameWnd::OnTimer(unsigned int id)
{
    if (!m_manager.OnTimer(id))
        CCustomFrameWnd::OnTimer(id);
}

// States

/// `owner`: of the popup, which has a say in the entries of other commands too; null for none.
bool CCommandFrameWnd::UpdateItem(CMenuItem& item, CZelCommand* owner)
{
    CZelCommand* const command = item.id ? m_manager.GetWindowsCommand(item.id) : nullptr;
    if (!command)
        return false;
    unsigned int state;
    if (item.id >= CCommandMgr::FIRST_POPUP)
        state = command->GetPopupCmdState(item.id);
    else {
        command->UpdateState();
        state = command->GetState();
        if (owner && !(owner->GetPopupCmdState(item.id) & COMMAND_ENABLED))
            state &= ~COMMAND_ENABLED;
    }
    item.enabled = (state & COMMAND_ENABLED) != 0;
    item.checked = (state & COMMAND_CHECKED) != 0 || (item.id < CCommandMgr::FIRST_POPUP && IsActiveCommand(command));
    return true;
}

void CCommandFrameWnd::OnInitMenuPopup(CCustomMenu& menu)
{
    const auto filled = m_commandPopups.find(&menu);
    CZelCommand* const owner = filled != m_commandPopups.end() ? filled->second : nullptr;
    if (owner) {
        menu.RemoveAll();
        owner->OnPopupMenu(&menu, CCommandMgr::FIRST_POPUP);
    }
    for (CMenuItem& item : menu.items)
        UpdateItem(item, owner);
}

void CCommandFrameWnd::UpdateState()
{
    bool changed = false;
    for (CCustomToolbar* const bar : GetToolbars())
        for (CToolbarButton& button : bar->buttons)
            if (CZelCommand* const command = button.id ? m_manager.GetWindowsCommand(button.id) : nullptr) {
                command->UpdateState();
                const bool enabled = command->IsStateSet(COMMAND_ENABLED);
                const bool checked = command->IsStateSet(COMMAND_CHECKED) || IsActiveCommand(command);
                changed |= enabled != button.enabled || checked != button.checked;
                button.enabled = enabled;
                button.checked = checked;
            }
    if (changed)
        UpdateToolbars();
}

void CCommandFrameWnd::OnIdle()
{
    UpdateState();
    UpdateStatusBar();
}

// Menus that open elsewhere

void CCommandFrameWnd::OnToolbarMenu(unsigned int id, const CPoint& screen)
{
    CZelCommand* const command = m_manager.GetWindowsCommand(id);
    if (!command)
        return;
    if (command->IsStateSet(COMMAND_HAS_POPUP)) {
        CCustomMenu menu;
        command->OnPopupMenu(&menu, CCommandMgr::FIRST_POPUP);
        OpenPopup(menu, screen, command);
    } else {
        CPoint point = screen;
        command->OnToolbarMenu(point);
    }
    UpdateState();
}

bool CCommandFrameWnd::OpenPopup(CCustomMenu& menu, const CPoint& screen, CZelCommand* command)
{
    for (CMenuItem& item : menu.items)
        UpdateItem(item, command);
    m_menusOpen++;
    const unsigned int chosen = GetWindowSystem().TrackPopup(this, menu, screen);
    m_menusOpen--;
    if (chosen)
        OnCommand(chosen);
    return chosen != 0;
}

// Full screen

void CCommandFrameWnd::ToggleFullScreen()
{
    m_fullScreen = !m_fullScreen;
    m_callbacks.clear();
    if (IFramePeer* const peer = GetFramePeer())
        peer->SetFullScreen(m_fullScreen);
    if (m_fullScreen)
        InitFullscreenToolbar();
}

void CCommandFrameWnd::CancelFullScreen()
{
    if (m_fullScreen)
        ToggleFullScreen();
}

void CCommandFrameWnd::InitFullscreenToolbar() {}

void CCommandFrameWnd::AddMessageCallback(std::function<void()> callback) { m_callbacks.push_back(std::move(callback)); }

// Help

void CCommandFrameWnd::SetHelpText(const CXTString<wchar_t>& text)
{
    m_helpText = text;
    UpdateStatusBar();
}

void CCommandFrameWnd::UpdateStatusBar()
{
    CCommandStatusBar* const bar = GetStatusBar();
    if (!bar)
        return;
    const auto& panes = bar->GetPanes();
    for (std::size_t i = 0; i < panes.size(); i++)
        if (panes[i].style & STATUSPANE_STRETCH) {
            bar->SetPaneText(static_cast<int>(i), m_helpText);
            return;
        }
}

void CCommandFrameWnd::OnMenuSelect(unsigned int id)
{
    Text text;
    if (CZelCommand* const command = id ? m_manager.GetWindowsCommand(id) : nullptr) {
        if (id < CCommandMgr::FIRST_POPUP || !command->GetPopupCmdHelp(id, HELP_DESCRIPTION, text))
            command->OnGetHelp(HELP_DESCRIPTION, text);
    } else if (id)
        text.LoadStringW(id);    // entries that are no command's have the text of their number
    SetHelpText(text);
}

Text CCommandFrameWnd::GetKeysOf(CZelCommand& command) const { return command.GetKeyAccess(); }

// One line a command: key, name, description, with tabs between.
void CCommandFrameWnd::ShowHelp()
{
    Text list;
    for (CZelCommand* const command : m_manager.GetCommands()) {
        Text description;
        command->OnGetHelp(HELP_DESCRIPTION, description);
        list += GetKeysOf(*command) + L"\t" + WithoutMarks(command->GetName()) + L"\t" + description + L"\n";
    }
    Text title;
    title.LoadStringW(9205);
    GetWindowSystem().ShowReport(this, WithoutMarks(title), list);
}

void CCommandFrameWnd::ShowContextHelp()
{
    m_contextHelp = true;
    SetCursor(CURSOR_HELP);
}

void CCommandFrameWnd::ShowHelpOf(CZelCommand* command)
{
    SetCursor(CURSOR_ARROW);
    Text text;
    for (const HelpInfo kind : {HELP_DESCRIPTION, HELP_MOUSE, HELP_KEYS}) {
        Text part;
        if (!command->OnGetHelp(kind, part) || part.IsEmpty())
            continue;
        if (!text.IsEmpty())
            text += Text(L"<br>");
        text += part;
    }
    CNotifyDlg2::ShowDialog(0, 0, WithoutMarks(command->GetName()), text, this);
}

void CCommandFrameWnd::BeginWaitCursor() { GetWindowSystem().SetWaitCursor(true); }

void CCommandFrameWnd::EndWaitCursor() { GetWindowSystem().SetWaitCursor(false); }
