#include "windows/CustomTree.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "windows/WindowSystem.h"

CCustomTree::CCustomTree() : m_root(std::make_unique<CTreeItem>()) { m_root->open = true; }

// Takes an entry's children away from the leaves up, without recursion: trees are as deep as scenes. Each is told before it goes.
template <class Told> static void RemoveBelow(CTreeItem& item, const Told& told)
{
    for (CTreeItem* last = &item;;) {
        while (!last->children.empty())
            last = last->children.back().get();
        if (last == &item)
            return;
        told(last);
        last = last->parent;
        last->children.pop_back();
    }
}

CCustomTree::~CCustomTree()
{
    RemoveBelow(*m_root, [](HTREEITEM) {});    // a derived tree, which could free the data, is gone
}

bool CCustomTree::Create(CWnd* parent)
{
    if (!GetWindowSystem().CreateTreePeer(this, parent))
        return false;
    InitializeControl();
    return true;
}

void CCustomTree::InitializeControl() {}

// Telling the window

void CCustomTree::LockTree() { m_locks++; }

void CCustomTree::UnlockTree()
{
    if (m_locks > 0 && --m_locks == 0)
        Tell(std::exchange(m_news, 0));
}

void CCustomTree::Tell(unsigned int news)
{
    if (m_locks > 0) {
        m_news |= news;
        return;
    }
    ITreePeer* const peer = dynamic_cast<ITreePeer*>(GetPeer());
    if (!peer)
        return;
    if (news & NEWS_TREE) {    // all of it
        peer->TreeChanged();
        return;
    }
    if (news & NEWS_ITEMS)
        peer->Invalidate(nullptr);
    if (news & NEWS_SELECTION)
        peer->SelectionChanged();
}

void CCustomTree::TellItem(HTREEITEM item)
{
    if (m_locks > 0)
        m_news |= NEWS_ITEMS;
    else if (ITreePeer* const peer = dynamic_cast<ITreePeer*>(GetPeer()))
        peer->ItemChanged(item);
}

// Entries

HTREEITEM CCustomTree::InsertItem(const CXTString<wchar_t>& text, void* data, HTREEITEM parent, unsigned int icon)
{
    CTreeItem& above = parent ? *parent : *m_root;
    CTreeItem& item = *above.children.emplace_back(std::make_unique<CTreeItem>());
    item.text = text;
    item.data = data;
    item.icon = icon;
    item.parent = &above;
    item.index = static_cast<int>(above.children.size()) - 1;
    item.check = m_mode & TREE_CHECKS ? TREECHECK_CHECKED : TREECHECK_NONE;
    m_count++;
    Tell(NEWS_TREE);
    return &item;
}

void CCustomTree::DeleteItem(HTREEITEM item)
{
    if (!item || item == m_root.get())
        return;
    RemoveBelow(*item, [this](HTREEITEM below) {
        DeleteItemData(below);
        m_count--;
    });
    DeleteItemData(item);
    m_count--;
    CTreeItem* const above = item->parent;
    const auto place = above->children.begin() + item->index;
    for (auto after = above->children.erase(place); after != above->children.end(); after++)
        (*after)->index--;
    Tell(NEWS_TREE);
}

void CCustomTree::DeleteAllItems()
{
    LockTree();
    while (!m_root->children.empty())
        DeleteItem(m_root->children.back().get());
    UnlockTree();
}

void CCustomTree::SetItemText(HTREEITEM item, const CXTString<wchar_t>& text)
{
    if (!item || item->text == text)
        return;
    item->text = text;
    TellItem(item);
}

HTREEITEM CCustomTree::GetNextItem(HTREEITEM item) const
{
    if (!item)
        return nullptr;
    if (!item->children.empty())
        return item->children.front().get();
    for (; item->parent; item = item->parent)
        if (const auto next = static_cast<std::size_t>(item->index) + 1; next < item->parent->children.size())
            return item->parent->children[next].get();
    return nullptr;
}

HTREEITEM CCustomTree::FindItemByData(const void* data) const
{
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        if (item->data == data)
            return item;
    return nullptr;
}

// Checks

void CCustomTree::SetCheck(HTREEITEM item, _TreeCheckState state, bool tell)
{
    if (!item || item->check == state)
        return;
    item->check = state;
    TellItem(item);
    if (tell)
        CheckStateChange(item, state);
}

void CCustomTree::CheckAll(_TreeCheckState state, bool tell)
{
    LockTree();
    if (tell)
        BeginCheckStateChange();
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        if (!tell || CanChangeCheckState(item, state))
            SetCheck(item, state, tell);
    if (tell)
        EndCheckStateChange();
    UnlockTree();
}

void CCustomTree::InvertCheck(bool tell)
{
    LockTree();
    if (tell)
        BeginCheckStateChange();
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item)) {
        const _TreeCheckState state = IsCheck(item) ? TREECHECK_UNCHECKED : TREECHECK_CHECKED;
        if (!tell || CanChangeCheckState(item, state))
            SetCheck(item, state, tell);
    }
    if (tell)
        EndCheckStateChange();
    UnlockTree();
}

_TreeCheckState CCustomTree::GetCheckLevelState(HTREEITEM item) const
{
    if (!item || item->children.empty())
        return TREECHECK_NONE;
    const _TreeCheckState first = item->children.front()->check;
    const bool same = std::all_of(item->children.begin(), item->children.end(), [&](const auto& child) { return child->check == first; });
    return same ? first : TREECHECK_MIXED;
}

// Selection

void CCustomTree::SelectItem(HTREEITEM item, bool on, bool tell)
{
    if (!item || item->selected == on)
        return;
    item->selected = on;
    Tell(NEWS_SELECTION);
    if (tell && !m_multiSelecting)
        SelectionChange(item, 1);
}

std::vector<HTREEITEM> CCustomTree::ChangeSelection(const std::vector<HTREEITEM>& items)
{
    const std::unordered_set<HTREEITEM> wanted(items.begin(), items.end());
    std::vector<HTREEITEM> changed;
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        if (item->selected != wanted.contains(item)) {
            item->selected = !item->selected;
            changed.push_back(item);
        }
    return changed;
}

void CCustomTree::SelectItems(const std::vector<HTREEITEM>& items)
{
    if (!ChangeSelection(items).empty())
        Tell(NEWS_SELECTION);
}

void CCustomTree::SelectAll(bool on)
{
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        item->selected = on;
    Tell(NEWS_SELECTION);
    OnMultiSelectionChanged();
}

void CCustomTree::InvertSelection()
{
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        item->selected = !item->selected;
    Tell(NEWS_SELECTION);
    OnMultiSelectionChanged();
}

std::vector<HTREEITEM> CCustomTree::GetSelectedItems() const
{
    std::vector<HTREEITEM> selected;
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        if (item->selected)
            selected.push_back(item);
    return selected;
}

void CCustomTree::ScrollTo(HTREEITEM item)
{
    for (HTREEITEM above = item ? item->parent : nullptr; above; above = above->parent)
        above->open = true;
    if (ITreePeer* const peer = dynamic_cast<ITreePeer*>(GetPeer()); peer && item)
        peer->EnsureVisible(item);
}

// What a derived tree answers or hears

bool CCustomTree::CanChangeCheckState(HTREEITEM, _TreeCheckState) { return true; }
void CCustomTree::BeginCheckStateChange() {}
void CCustomTree::EndCheckStateChange() {}
void CCustomTree::CheckStateChange(HTREEITEM, _TreeCheckState) {}

void CCustomTree::UserCheckItem(HTREEITEM item, _TreeCheckState state)
{
    LockTree();
    BeginCheckStateChange();
    std::vector<HTREEITEM> below{item};
    for (std::size_t i = 0; i < below.size(); i++) {
        if (CanChangeCheckState(below[i], state))
            SetCheck(below[i], state, true);
        for (const auto& child : below[i]->children)
            below.push_back(child.get());
    }
    EndCheckStateChange();
    UnlockTree();
}

void CCustomTree::SelectionChange(HTREEITEM, int) {}
void CCustomTree::OnMultiSelectionChanged() {}
void CCustomTree::DoubleClick(HTREEITEM, unsigned int) {}
unsigned int CCustomTree::ReplaceIcon(HTREEITEM item) const { return item && item->icon ? item->icon : m_folderIcon; }
void CCustomTree::DeleteItemData(HTREEITEM) {}
void CCustomTree::ShowRightMenu(HTREEITEM, const CPoint&) {}

// What the window system sends

void CCustomTree::UserSelect(const std::vector<HTREEITEM>& items)
{
    const std::vector<HTREEITEM> changed = ChangeSelection(items);
    if (changed.size() == 1)
        SelectionChange(changed.front(), 1);
    else if (!changed.empty())
        OnMultiSelectionChanged();
}

void CCustomTree::UserOpen(HTREEITEM item, bool open)
{
    if (item)
        item->open = open;
}

void CCustomTree::UserCheck(HTREEITEM item)
{
    if (item)
        UserCheckItem(item, IsCheck(item) ? TREECHECK_UNCHECKED : TREECHECK_CHECKED);
}
