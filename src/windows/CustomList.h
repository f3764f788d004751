#pragma once

#include <vector>

#include "windows/Window.h"

/// The window system's side of a list. Only the rows on screen are asked for.
class ZEL_API IListPeer : public IWindowPeer {
public:
    virtual void ListChanged() = 0;    ///< columns, number of rows, texts
    virtual void SelectionChanged() = 0;
};

/// A list with columns whose cells are computed when they are shown: millions of rows cost nothing.
class ZEL_API CCustomList : public CWnd {
public:
    struct Column {
        CXTString<wchar_t> title;
        int width = 0;    ///< pixels at 96 a inch; 0: an equal share of what the others leave
    };

    CCustomList();
    ~CCustomList() override;

    void SetColumns(std::vector<Column> columns);
    const std::vector<Column>& GetColumns() const { return m_columns; }
    /// Nothing is selected then.
    void SetRowCount(int rows);
    int GetRowCount() const { return m_rows; }
    /// Texts have changed.
    void Refresh();

    virtual CXTString<wchar_t> GetCellText(int row, int column) const;
    /// A double click, or return.
    virtual void OnRowActivated(int row);

    // Selection: rows, ascending

    const std::vector<int>& GetSelectedRows() const { return m_selected; }
    void SelectAllRows();
    void SetSelectedRows(std::vector<int> rows);
    /// What the window system sends.
    void UserSelect(std::vector<int> rows);
    virtual void OnSelectionChanged();

    /// Cells of the selected rows: each cell followed by a tab, each row by "\r\n".
    CXTString<wchar_t> GetSelectedText() const;
    /// Ctrl+A selects all rows; Ctrl+C, Ctrl+Insert and X copy to the clipboard.
    bool OnKey(unsigned int key, unsigned int state) override;

private:
    std::vector<Column> m_columns;
    std::vector<int> m_selected;
    int m_rows = 0;
};
