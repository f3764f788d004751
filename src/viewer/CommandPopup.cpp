#include "viewer/CommandPopup.h"

#include <algorithm>

#include "viewer/FrameViewer.h"

void CCommandPopup::Clear()
{
    m_entries.clear();
    if (CCommandMgr* const manager = m_command->GetManager())
        manager->FreePopupCmdIds(m_command);
}

void CCommandPopup::Add(CCustomMenu& menu, const CXTString<wchar_t>& text, int value, bool radio)
{
    CCommandMgr* const manager = m_command->GetManager();
    const unsigned int id = manager ? manager->GetFreePopupCmdId(m_command) : 0;
    if (id == 0)
        return;
    m_entries.push_back({id, value});
    menu.AddItem(id, text).radio = radio;
}

void CCommandPopup::AddCommand(CCustomMenu& menu, unsigned int commandID)
{
    const CCommandMgr* const manager = m_command->GetManager();
    CZelCommand* const command = manager ? manager->GetCommandById(commandID) : nullptr;
    if (!command)
        return;
    CMenuItem& item = menu.AddItem(manager->GetWindowsId(command), command->GetName());
    item.key = command->GetKeyAccess();
    item.icon = command->GetAccess().GetBitmap();
}

std::optional<int> CCommandPopup::GetValue(unsigned int id) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) { return entry.id == id; });
    return found != m_entries.end() ? std::optional(found->value) : std::nullopt;
}

unsigned int CCommandPopup::GetCommandID(unsigned int id) const
{
    const CCommandMgr* const manager = m_command->GetManager();
    CZelCommand* const command = manager ? manager->GetWindowsCommand(id) : nullptr;
    return command && command != m_command ? command->GetCommandID().identifier : 0;
}

int CCommandPopup::Open(C3DFrameViewer* frame, const CPoint& screen) const
{
    CCustomMenu menu;
    return frame && m_command->OnPopupMenu(&menu, 0) && frame->OpenPopup(menu, screen, m_command) ? 1 : 0;
}
