#include "windows/CustomList.h"

#include <algorithm>
#include <numeric>

#include "windows/Keys.h"
#include "windows/WindowSystem.h"

CCustomList::CCustomList() = default;
CCustomList::~CCustomList() = default;

void CCustomList::SetColumns(std::vector<Column> columns)
{
    m_columns = std::move(columns);
    Refresh();
}

void CCustomList::SetRowCount(int rows)
{
    m_rows = std::max(rows, 0);
    m_selected.clear();
    Refresh();
}

void CCustomList::Refresh()
{
    if (IListPeer* const peer = dynamic_cast<IListPeer*>(GetPeer()))
        peer->ListChanged();
}

CXTString<wchar_t> CCustomList::GetCellText(int, int) const { return {}; }

void CCustomList::OnRowActivated(int) {}

void CCustomList::SelectAllRows()
{
    std::vector<int> all(static_cast<std::size_t>(m_rows));
    std::iota(all.begin(), all.end(), 0);
    SetSelectedRows(std::move(all));
}

void CCustomList::SetSelectedRows(std::vector<int> rows)
{
    UserSelect(std::move(rows));
    if (IListPeer* const peer = dynamic_cast<IListPeer*>(GetPeer()))
        peer->SelectionChanged();
}

void CCustomList::UserSelect(std::vector<int> rows)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::erase_if(rows, [&](int row) { return row < 0 || row >= m_rows; });
    if (rows == m_selected)
        return;
    m_selected = std::move(rows);
    OnSelectionChanged();
}

void CCustomList::OnSelectionChanged() {}

CXTString<wchar_t> CCustomList::GetSelectedText() const
{
    CXTString<wchar_t> text;
    for (const int row : m_selected) {
        for (int column = 0; column < static_cast<int>(m_columns.size()); column++)
            text += GetCellText(row, column) + L"\t";
        text += CXTString<wchar_t>(L"\r\n");
    }
    return text;
}

bool CCustomList::OnKey(unsigned int key, unsigned int state)
{
    const bool ctrl = (state & INPUT_CTRL) != 0;
    if (ctrl && key == 'A') {
        SelectAllRows();
        return true;
    }
    if ((ctrl && (key == 'C' || key == 'X' || key == VK_INSERT)) && !m_selected.empty()) {
        GetWindowSystem().SetClipboardText(GetSelectedText());
        return true;
    }
    return CWnd::OnKey(key, state);
}
