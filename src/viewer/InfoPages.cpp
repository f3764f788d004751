#include "viewer/InfoPages.h"

#include "viewer/Texts.h"

void CTextTable::SetRows(std::vector<Row> rows)
{
    m_texts = std::move(rows);
    if (GetRowCount() == static_cast<int>(m_texts.size()))
        Refresh();
    else
        SetRowCount(static_cast<int>(m_texts.size()));
}

CXTString<wchar_t> CTextTable::GetCellText(int row, int column) const
{
    return m_texts.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column));
}

CNodeAdditionalData::CNodeAdditionalData(const CCustomData* data)
{
    constexpr int LINES = 16;
    title = LoadText(TEXT_ADDITIONAL_DATA);
    CControl& memo = Add(CONTROL_MEMO, INFO_ADDITIONAL_DATA, {});
    memo.readOnly = true;
    memo.height = LINES;
    if (data)
        data->DumpCustomData(memo.value, 1, false);
}
