#include "windows/CommandMgr.h"

#include <algorithm>

#include "tools/FourCC.h"
#include "windows/CommandFrame.h"

namespace {

constexpr unsigned int TYPE_INTERACTIVE = FourCC("INTE");

std::vector<CCommandMgr::Name>& GroupNames()
{
    static std::vector<CCommandMgr::Name>& names = *new std::vector<CCommandMgr::Name>;
    return names;
}

std::vector<CCommandMgr::Name>& CategoryNames()
{
    static std::vector<CCommandMgr::Name>& names = *new std::vector<CCommandMgr::Name>;
    return names;
}

void SetName(std::vector<CCommandMgr::Name>& names, unsigned int id, const CXTString<wchar_t>& name)
{
    const auto found = std::find_if(names.begin(), names.end(), [&](const CCommandMgr::Name& own) { return own.id == id; });
    if (found != names.end())
        found->name = name;
    else
        names.push_back({id, name});
}

}

CCommandMgr::CCommandMgr(CCommandFrameWnd* frame) : m_frame(frame) {}

CCommandMgr::~CCommandMgr()
{
    for (CZelCommand* const command : m_commands)
        command->m_manager = nullptr;
}

// Commands

bool CCommandMgr::AddCommand(CZelCommand* command, void*)
{
    if (!command || command->m_manager || GetCommandById(command->GetCommandID().identifier))
        return false;
    unsigned int id = FIRST_COMMAND;
    while (GetWindowsCommand(id))
        id++;
    if (id >= FIRST_POPUP)
        return false;
    command->m_manager = this;
    command->m_windowsId = id;
    m_commands.push_back(command);
    if (command->OnInitCommand(m_frame) == 0)
        return true;
    RemoveCommand(command);
    return false;
}

void CCommandMgr::RemoveCommand(CZelCommand* command)
{
    if (std::erase(m_commands, command) == 0)
        return;
    for (const Timer& timer : std::vector<Timer>(m_timers))
        if (timer.command == command)
            CloseTimer(command, timer.id);
    FreePopupCmdIds(command);
    if (m_current == command)
        m_current = nullptr;
    command->m_manager = nullptr;
    command->m_windowsId = 0;
}

CZelCommand* CCommandMgr::GetCommandById(unsigned int id) const
{
    const auto found =
        std::find_if(m_commands.begin(), m_commands.end(), [&](CZelCommand* command) { return command->GetCommandID().identifier == id; });
    return found != m_commands.end() ? *found : nullptr;
}

// Running

CommandResult CCommandMgr::StackCommand(unsigned int id, unsigned int mode, void* data)
{
    return StackCommand(GetCommandById(id), mode, data);
}

CommandResult CCommandMgr::StackCommand(CZelCommand* command, unsigned int mode, void* data)
{
    if (!command || command->m_manager != this)
        return COMMAND_DECLINED;
    command->UpdateState();
    if (m_scriptMode != SCRIPT_APPLY && !command->IsStateSet(COMMAND_ENABLED))
        return COMMAND_DECLINED;
    if (command->GetCommandID().type == TYPE_INTERACTIVE)
        return MakeCurrent(command, mode, data);

    CommandResult result = command->OnOpenCommand(mode, data);
    if (result != COMMAND_DONE)
        return result;
    if (m_frame)
        m_frame->OnOpenCommand(command);
    const bool asks = mode == STACK_USER && command->HasDialog();
    if (asks && !command->OnOpenDialog())
        result = COMMAND_CANCELLED;
    else if (m_scriptMode == SCRIPT_DIALOG)
        result = asks ? COMMAND_DONE : COMMAND_DECLINED;
    else
        result = Apply(command);
    if (m_frame && result == COMMAND_CANCELLED)
        m_frame->OnCancelCommand(command);
    command->OnCloseCommand();
    if (m_frame)
        m_frame->OnCloseCommand(command);
    return result;
}

CommandResult CCommandMgr::Apply(CZelCommand* command)
{
    if (m_frame)
        m_frame->OnApplyCommand(command, true, COMMAND_DONE);
    const CommandResult result = command->OnApplyCommand();
    if (m_frame)
        m_frame->OnApplyCommand(command, false, result);
    return result;
}

CommandResult CCommandMgr::MakeCurrent(CZelCommand* command, unsigned int mode, void* data)
{
    CZelCommand* const former = m_current;
    if (former == command)
        return COMMAND_DONE;
    if (const CommandResult result = command->OnOpenCommand(mode, data); result != COMMAND_DONE)
        return result;
    if (former) {
        former->OnLooseFocus(0, command);
        former->OnCloseCommand();
    }
    m_current = command;
    command->OnGetFocus(0, former, COMMAND_DONE);
    if (m_frame)
        m_frame->OnOpenCommand(command);
    return COMMAND_DONE;
}

void CCommandMgr::CloseCurrentCommand()
{
    if (!m_current)
        return;
    m_current->OnLooseFocus(0, nullptr);
    m_current->OnCloseCommand();
    m_current = nullptr;
}

// Numbers in menus and bars

unsigned int CCommandMgr::GetWindowsId(const CZelCommand* command) const
{
    return command && command->m_manager == this ? command->m_windowsId : 0;
}

CZelCommand* CCommandMgr::GetWindowsCommand(unsigned int windowsId) const
{
    if (const auto popup = m_popupIds.find(windowsId); popup != m_popupIds.end())
        return popup->second;
    const auto found =
        std::find_if(m_commands.begin(), m_commands.end(), [&](const CZelCommand* command) { return command->m_windowsId == windowsId; });
    return found != m_commands.end() ? *found : nullptr;
}

unsigned int CCommandMgr::GetFreePopupCmdId(CZelCommand* command)
{
    unsigned int id = FIRST_POPUP;
    for (const auto& used : m_popupIds)
        if (used.first == id)
            id++;
    if (id >= PAST_POPUPS)
        return 0;
    m_popupIds.emplace(id, command);
    return id;
}

void CCommandMgr::FreePopupCmdIds(CZelCommand* command)
{
    std::erase_if(m_popupIds, [&](const auto& used) { return used.second == command; });
}

// Names

void CCommandMgr::RegisterGroupName(unsigned int id, const CXTString<wchar_t>& name) { SetName(GroupNames(), id, name); }

void CCommandMgr::RegisterCategoryName(unsigned int id, const CXTString<wchar_t>& name) { SetName(CategoryNames(), id, name); }

const std::vector<CCommandMgr::Name>& CCommandMgr::GetGroupNames() { return GroupNames(); }

const std::vector<CCommandMgr::Name>& CCommandMgr::GetCategoryNames() { return CategoryNames(); }
