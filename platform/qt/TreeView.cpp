#include "TreeView.h"

#include <algorithm>

#include <QAbstractItemModel>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <windows/CustomTree.h>

#include "Events.h"
#include "Icons.h"
#include "Peer.h"
#include "Text.h"

namespace {

// Deeper entries are not shown: Qt lays out open ones by recursion, and each is indented by the width of an icon.
constexpr int MOST_LEVELS = 500;

// Calls `visit(item, level)` for all entries in the order of reading; those of the first level have level 0.
template <class VISIT> void ForItems(const CCustomTree& tree, VISIT visit)
{
    int level = 0;
    for (HTREEITEM former = tree.GetRoot(), item = tree.GetNextItem(former); item; former = item, item = tree.GetNextItem(item)) {
        if (former == tree.GetRoot())
            level = 0;
        else if (former == item->parent)
            level++;
        else
            for (HTREEITEM above = former->parent; above != item->parent; above = above->parent)
                level--;
        visit(item, level);
    }
}

bool IsShownLevel(HTREEITEM item)
{
    int level = 0;
    for (HTREEITEM above = item->parent; above && level <= MOST_LEVELS; above = above->parent)
        level++;
    return level <= MOST_LEVELS;
}

// The entries of a tree as Qt asks for them. Nothing is kept: an index holds the entry itself.
class CTreeModel : public QAbstractItemModel {
public:
    explicit CTreeModel(CCustomTree* tree) : m_tree(tree) {}

    HTREEITEM ItemOf(const QModelIndex& index) const
    {
        return index.isValid() ? static_cast<HTREEITEM>(index.internalPointer()) : m_tree ? m_tree->GetRoot() : nullptr;
    }
    QModelIndex IndexOf(HTREEITEM item) const { return item && item->parent ? createIndex(item->index, 0, item) : QModelIndex(); }

    /// With null for none: the window is gone.
    void Reset(CCustomTree* tree)
    {
        beginResetModel();
        m_tree = tree;
        endResetModel();
    }

    QModelIndex index(int row, int column, const QModelIndex& parent) const override
    {
        const HTREEITEM above = ItemOf(parent);
        if (!above || column != 0 || row < 0 || row >= static_cast<int>(above->children.size()))
            return {};
        return createIndex(row, 0, above->children[static_cast<std::size_t>(row)].get());
    }
    QModelIndex parent(const QModelIndex& index) const override
    {
        const HTREEITEM item = ItemOf(index);
        return item ? IndexOf(item->parent) : QModelIndex();
    }
    int rowCount(const QModelIndex& parent) const override
    {
        const HTREEITEM item = ItemOf(parent);
        return item && !item->children.empty() && IsShownLevel(item->children.front().get()) ? static_cast<int>(item->children.size()) : 0;
    }
    int columnCount(const QModelIndex&) const override { return 1; }
    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        const Qt::ItemFlags usual = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        return HasCheck(ItemOf(index)) ? usual | Qt::ItemIsUserCheckable : usual;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        const HTREEITEM item = ItemOf(index);
        if (!item || !m_tree)
            return {};
        switch (role) {
        case Qt::DisplayRole: return ToQt(item->text);
        case Qt::DecorationRole: return GetIcon(m_tree->ReplaceIcon(item));
        case Qt::CheckStateRole:
            if (!HasCheck(item))
                return {};
            return item->check == TREECHECK_CHECKED ? Qt::Checked : item->check == TREECHECK_MIXED ? Qt::PartiallyChecked : Qt::Unchecked;
        default: return {};
        }
    }
    bool setData(const QModelIndex& index, const QVariant&, int role) override
    {
        if (role != Qt::CheckStateRole || !m_tree)
            return false;
        const CEventScope scope;
        m_tree->UserCheck(ItemOf(index));
        return true;
    }

private:
    bool HasCheck(HTREEITEM item) const
    {
        return item && m_tree && m_tree->GetMode() & CCustomTree::TREE_CHECKS && item->check != TREECHECK_NONE;
    }

    CCustomTree* m_tree;
};

// The style's lines of boxes are darker than what is around them: on dark ground an empty box would not be seen.
class CEntryDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        QColor line = option.palette.color(QPalette::Text);
        if (line.lightness() < 128 || !index.data(Qt::CheckStateRole).isValid())
            return;
        QStyleOptionViewItem entry = option;
        initStyleOption(&entry, index);
        line.setAlpha(128);
        painter->setPen(line);
        const QRect box = entry.widget->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &entry, entry.widget);
        painter->drawRect(box.adjusted(0, 0, -1, -1));
    }
};

class CTreeWidget : public QTreeView {
public:
    CTreeWidget(CCustomTree* tree, QWidget* parent);

    CTreeModel& Model() { return m_model; }
    void Forget();
    /// Reads everything again.
    void Read();
    void ReadSelection();

protected:
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ReadMode();
    void Open(HTREEITEM item, bool open);
    unsigned int GetHit(const QModelIndex& index, QPoint point) const;

    CCustomTree* m_tree;
    CTreeModel m_model;
    bool m_reading = false;    ///< what changes is the program's doing
};

CTreeWidget::CTreeWidget(CCustomTree* tree, QWidget* parent) : QTreeView(parent), m_tree(tree), m_model(tree)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);    // or Qt would measure every entry
    setFrameShape(QFrame::NoFrame);
    setExpandsOnDoubleClick(false);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new CEntryDelegate(this));
    setModel(&m_model);
    // As wide as the entries on screen, so that deep ones can be scrolled to.
    header()->setStretchLastSection(false);
    header()->setResizeContentsPrecision(0);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    ReadMode();
    QObject::connect(this, &QTreeView::expanded, this, [this](const QModelIndex& index) { Open(m_model.ItemOf(index), true); });
    QObject::connect(this, &QTreeView::collapsed, this, [this](const QModelIndex& index) { Open(m_model.ItemOf(index), false); });
}

void CTreeWidget::Forget()
{
    m_reading = true;
    m_model.Reset(nullptr);
    m_tree = nullptr;
}

void CTreeWidget::ReadMode()
{
    setSelectionMode(m_tree->GetMode() & CCustomTree::TREE_SEVERAL ? ExtendedSelection : SingleSelection);
    const auto& first = m_tree->GetRoot()->children;
    const bool isFlat = std::all_of(first.begin(), first.end(), [](const auto& item) { return item->children.empty(); });
    setRootIsDecorated(m_tree->GetMode() & CCustomTree::TREE_LINES || !isFlat);    // a list has no room before its entries
}

void CTreeWidget::resizeEvent(QResizeEvent* event)
{
    header()->setMinimumSectionSize(viewport()->width());
    QTreeView::resizeEvent(event);
}

void CTreeWidget::Open(HTREEITEM item, bool open)
{
    if (m_reading || !m_tree)
        return;
    const CEventScope scope;
    m_tree->UserOpen(item, open);
}

void CTreeWidget::Read()
{
    const int place = verticalScrollBar()->value();
    const void* const formerCurrent = currentIndex().internalPointer();    // may be gone: only compared
    QModelIndex current;
    m_reading = true;
    ReadMode();
    m_model.Reset(m_tree);
    ForItems(*m_tree, [&](HTREEITEM item, int level) {
        if (item->open && !item->children.empty() && level + 1 < MOST_LEVELS)
            expand(m_model.IndexOf(item));
        if (item == formerCurrent && level < MOST_LEVELS)
            current = m_model.IndexOf(item);
    });
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    ReadSelection();
    m_reading = false;
    verticalScrollBar()->setValue(place);
}

// Neighbours become one range, so that all of a large tree is few. The former ranges go first: Qt would hold each against each.
void CTreeWidget::ReadSelection()
{
    QItemSelection selection;
    ForItems(*m_tree, [&](HTREEITEM item, int level) {
        const auto& beside = item->parent->children;
        const auto place = static_cast<std::size_t>(item->index);
        if (!item->selected || level >= MOST_LEVELS || (place > 0 && beside[place - 1]->selected))
            return;
        std::size_t last = place;
        while (last + 1 < beside.size() && beside[last + 1]->selected)
            last++;
        selection.append(QItemSelectionRange(m_model.IndexOf(item), m_model.IndexOf(beside[last].get())));
    });
    const QModelIndex current = currentIndex();
    const bool former = std::exchange(m_reading, true);
    selectionModel()->reset();
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::Select);
    viewport()->update();
    m_reading = former;
}

void CTreeWidget::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    if (m_reading || !m_tree)
        return;    // all of it is painted anew; Qt would look for the place of each range
    QTreeView::selectionChanged(selected, deselected);
    std::vector<HTREEITEM> items;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        const HTREEITEM above = m_model.ItemOf(range.parent());
        for (int row = range.top(); above && row <= range.bottom(); row++)
            items.push_back(above->children[static_cast<std::size_t>(row)].get());
    }
    const CEventScope scope;
    m_tree->UserSelect(items);
}

unsigned int CTreeWidget::GetHit(const QModelIndex& index, QPoint point) const
{
    const QRect row = visualRect(index);
    if (point.x() < row.left())
        return point.x() >= row.left() - indentation() && m_model.rowCount(index) ? TREEHIT_BUTTON : TREEHIT_INDENT;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = row;
    option.features = QStyleOptionViewItem::HasDecoration | QStyleOptionViewItem::HasDisplay;
    if (m_model.flags(index) & Qt::ItemIsUserCheckable)
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
    option.text = index.data().toString();
    if (style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this).contains(point))
        return TREEHIT_CHECK;
    if (style()->subElementRect(QStyle::SE_ItemViewItemDecoration, &option, this).contains(point))
        return TREEHIT_ICON;
    const QRect text = style()->subElementRect(QStyle::SE_ItemViewItemText, &option, this);
    return point.x() < text.left() + fontMetrics().horizontalAdvance(option.text) + 8 ? TREEHIT_LABEL : TREEHIT_RIGHT;
}

void CTreeWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const unsigned int hit = index.isValid() ? GetHit(index, event->position().toPoint()) : 0;
    if (!m_tree || !hit || hit & (TREEHIT_BUTTON | TREEHIT_CHECK)) {
        QTreeView::mousePressEvent(event);    // two clicks on a box are two clicks
        return;
    }
    const CEventScope scope;
    m_tree->DoubleClick(m_model.ItemOf(index), hit);
}

// Return is the double click of the keyboard.
void CTreeWidget::keyPressEvent(QKeyEvent* event)
{
    if (m_tree && currentIndex().isValid() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        const CEventScope scope;
        m_tree->DoubleClick(m_model.ItemOf(currentIndex()), TREEHIT_LABEL);
    } else
        QTreeView::keyPressEvent(event);
}

void CTreeWidget::contextMenuEvent(QContextMenuEvent* event)
{
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    const CPeer* const peer = CPeer::Of(m_tree);
    if (!peer)
        return;
    const QPoint place = byKey && index.isValid() ? viewport()->mapToGlobal(visualRect(index).bottomLeft()) : event->globalPos();
    const CEventScope scope;
    m_tree->ShowRightMenu(index.isValid() ? m_model.ItemOf(index) : nullptr, peer->ToScreen(place));
}

class CTreePeer : public TPeer<ITreePeer> {
public:
    CTreePeer(CCustomTree* tree, CTreeWidget* widget) : TPeer(tree, widget), m_shown(widget) {}
    ~CTreePeer() override
    {
        if (m_shown)
            m_shown->Forget();
    }

    void Invalidate(const CRect*) override { m_shown->viewport()->update(); }
    void TreeChanged() override { m_shown->Read(); }
    /// Looking for the one line would cost more than drawing the few that show.
    void ItemChanged(HTREEITEM) override { m_shown->viewport()->update(); }
    void SelectionChanged() override { m_shown->ReadSelection(); }
    void EnsureVisible(HTREEITEM item) override
    {
        if (!IsShownLevel(item))
            return;
        for (HTREEITEM above = item->parent; above && above->parent; above = above->parent)
            m_shown->expand(m_shown->Model().IndexOf(above));
        const QModelIndex index = m_shown->Model().IndexOf(item);
        m_shown->scrollTo(index);
        m_shown->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    }

private:
    QPointer<CTreeWidget> m_shown;
};

}

ITreePeer* CreateTreeView(CCustomTree* tree, QWidget* parent) { return new CTreePeer(tree, new CTreeWidget(tree, parent)); }
