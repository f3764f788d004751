#include "ListView.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableView>

#include <windows/CustomList.h>

#include "Events.h"
#include "Peer.h"
#include "Text.h"

namespace {

class CListModel : public QAbstractTableModel {
public:
    explicit CListModel(CCustomList* list) : m_list(list) {}

    void Reset(CCustomList* list)
    {
        beginResetModel();
        m_list = list;
        endResetModel();
    }

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() || !m_list ? 0 : m_list->GetRowCount(); }
    int columnCount(const QModelIndex& parent) const override
    {
        return parent.isValid() || !m_list ? 0 : static_cast<int>(m_list->GetColumns().size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole && m_list ? QVariant(ToQt(m_list->GetCellText(index.row(), index.column()))) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal || !m_list)
            return {};
        return ToQt(m_list->GetColumns()[static_cast<std::size_t>(section)].title);
    }

private:
    CCustomList* m_list;
};

class CListWidget : public QTableView {
public:
    CListWidget(CCustomList* list, QWidget* parent);

    void Forget();
    void Read();
    void ReadSelection();

protected:
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void keyPressEvent(QKeyEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers keys) override;

private:
    void Activate(int row);

    CCustomList* m_list;
    CListModel m_model;
    bool m_reading = false;
};

CListWidget::CListWidget(CCustomList* list, QWidget* parent) : QTableView(parent), m_list(list), m_model(list)
{
    setModel(&m_model);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setHighlightSections(false);
    QObject::connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& index) { Activate(index.row()); });
    Read();
}

void CListWidget::Forget()
{
    m_reading = true;
    m_model.Reset(nullptr);
    m_list = nullptr;
}

void CListWidget::Read()
{
    m_reading = true;
    m_model.Reset(m_list);
    const auto& columns = m_list->GetColumns();
    for (int i = 0; i < static_cast<int>(columns.size()); i++) {
        const int width = columns[static_cast<std::size_t>(i)].width;
        horizontalHeader()->setSectionResizeMode(i, width > 0 ? QHeaderView::Interactive : QHeaderView::Stretch);
        if (width > 0)
            setColumnWidth(i, width);
    }
    ReadSelection();
    m_reading = false;
}

// Rows beside each other become one range.
void CListWidget::ReadSelection()
{
    QItemSelection selection;
    const std::vector<int>& rows = m_list->GetSelectedRows();
    const int lastColumn = m_model.columnCount({}) - 1;
    for (std::size_t first = 0; first < rows.size() && lastColumn >= 0;) {
        std::size_t last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1)
            last++;
        selection.append(QItemSelectionRange(m_model.index(rows[first], 0), m_model.index(rows[last], lastColumn)));
        first = last + 1;
    }
    const bool former = std::exchange(m_reading, true);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    m_reading = former;
}

void CListWidget::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTableView::selectionChanged(selected, deselected);
    if (m_reading || !m_list)
        return;
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); row++)
            rows.push_back(row);
    const CEventScope scope;
    m_list->UserSelect(std::move(rows));
}

void CListWidget::Activate(int row)
{
    const CEventScope scope;
    if (m_list)
        m_list->OnRowActivated(row);
}

void CListWidget::keyPressEvent(QKeyEvent* event)
{
    if (selectionModel()->isSelected(currentIndex()) && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        Activate(currentIndex().row());
    else
        QTableView::keyPressEvent(event);
}

// Whole rows are chosen: the ends of a row mean nothing, those of the list do.
QModelIndex CListWidget::moveCursor(CursorAction action, Qt::KeyboardModifiers keys)
{
    const int last = m_model.rowCount({}) - 1;
    if (last >= 0 && (action == MoveHome || action == MoveEnd))
        return m_model.index(action == MoveHome ? 0 : last, 0);
    return QTableView::moveCursor(action, keys);
}

class CListPeer : public TPeer<IListPeer> {
public:
    CListPeer(CCustomList* list, CListWidget* widget) : TPeer(list, widget), m_shown(widget) {}
    ~CListPeer() override
    {
        if (m_shown)
            m_shown->Forget();
    }

    void Invalidate(const CRect*) override { m_shown->viewport()->update(); }
    void ListChanged() override { m_shown->Read(); }
    void SelectionChanged() override { m_shown->ReadSelection(); }

private:
    QPointer<CListWidget> m_shown;
};

}

IListPeer* CreateListView(CCustomList* list, QWidget* parent) { return new CListPeer(list, new CListWidget(list, parent)); }
