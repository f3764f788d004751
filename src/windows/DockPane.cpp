#include "windows/DockPane.h"

#include "windows/CustomList.h"
#include "windows/CustomTree.h"
#include "windows/WindowSystem.h"

CCustomDockablePane::CCustomDockablePane() = default;
CCustomDockablePane::~CCustomDockablePane() = default;

CSize CCustomDockablePane::GetDefaultSize() const { return {240, 300}; }

bool CCustomDockablePane::CreateContent()
{
    if (!m_content || m_content->HasPeer())
        return m_content != nullptr;
    if (!m_content->GetParent())
        m_content->SetParent(this);
    if (auto* const tree = dynamic_cast<CCustomTree*>(m_content))
        return tree->Create(this);
    if (auto* const list = dynamic_cast<CCustomList*>(m_content))
        return GetWindowSystem().CreateListPeer(list, this);
    return GetWindowSystem().CreateWindowPeer(m_content, this, {}, {});
}
