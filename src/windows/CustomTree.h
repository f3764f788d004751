#pragma once

#include <memory>
#include <vector>

#include "windows/Menu.h"
#include "windows/Window.h"

enum _TreeCheckState { TREECHECK_NONE = 0, TREECHECK_CHECKED = 1, TREECHECK_UNCHECKED = 2, TREECHECK_MIXED = 3 };

/// Where a click of a tree lies, bits.
enum TreeHit : unsigned int {
    TREEHIT_ICON = 2,
    TREEHIT_LABEL = 4,
    TREEHIT_INDENT = 8,
    TREEHIT_BUTTON = 16,    ///< that opens and closes
    TREEHIT_RIGHT = 32,     ///< of the label
    TREEHIT_CHECK = 64,
};

/// An entry of a tree. Its fields are read by the window system and changed through the tree alone.
struct CTreeItem {
    CXTString<wchar_t> text;
    void* data = nullptr;
    unsigned int icon = 0;    ///< resource number; 0: the tree's folder
    _TreeCheckState check = TREECHECK_NONE;
    bool selected = false, open = false;
    CTreeItem* parent = nullptr;    ///< the tree's root, which is not shown, for those of the first level
    int index = 0;                  ///< among the parent's children
    std::vector<std::unique_ptr<CTreeItem>> children;
    CTreeItem() = default;
    CTreeItem(const CTreeItem&) = delete;
    CTreeItem& operator=(const CTreeItem&) = delete;
};
using HTREEITEM = CTreeItem*;

/// The window system's side of a tree. Only what is on screen is read.
class ZEL_API ITreePeer : public IWindowPeer {
public:
    virtual void TreeChanged() = 0;    ///< anything; everything is to be read again
    virtual void ItemChanged(HTREEITEM item) = 0;
    virtual void SelectionChanged() = 0;
    virtual void EnsureVisible(HTREEITEM item) = 0;
};

/// A tree of entries with check boxes, icons and several selected. Holds the entries; the window system shows them.
class ZEL_API CCustomTree : public CWnd {
public:
    CCustomTree();
    ~CCustomTree() override;

    /// Bits of SetMode.
    enum Mode : unsigned int { TREE_CHECKS = 8, TREE_SEVERAL = 16, TREE_OPEN_FOLDERS = 512, TREE_LINES = 32 };
    void SetMode(unsigned int mode) { m_mode = mode; }
    unsigned int GetMode() const { return m_mode; }
    void SetOpenFolderIcon(unsigned int icon) { m_folderIcon = icon; }
    unsigned int GetFolderIcon() const { return m_folderIcon; }

    /// In the tree's window: a peer in `parent`; false without a screen.
    bool Create(CWnd* parent);
    virtual void InitializeControl();

    // Entries. Null as parent: the first level

    HTREEITEM GetRoot() const { return m_root.get(); }
    HTREEITEM InsertItem(const CXTString<wchar_t>& text, void* data, HTREEITEM parent, unsigned int icon = 0);
    /// With all below it; DeleteItemData runs for each.
    void DeleteItem(HTREEITEM item);
    void DeleteAllItems();
    void SetItemText(HTREEITEM item, const CXTString<wchar_t>& text);
    /// The next one in the order of reading, below it first; null after the last. The root begins.
    HTREEITEM GetNextItem(HTREEITEM item) const;
    HTREEITEM FindItemByData(const void* data) const;
    std::size_t GetCount() const { return m_count; }
    /// Between the two the window is told nothing; the end tells it once. Counted.
    void LockTree();
    void UnlockTree();

    // Checks

    bool IsCheck(HTREEITEM item) const { return item && item->check == TREECHECK_CHECKED; }
    /// Without telling CheckStateChange unless `tell`.
    void SetCheck(HTREEITEM item, _TreeCheckState state, bool tell);
    /// All entries, between BeginCheckStateChange and EndCheckStateChange when told.
    void CheckAll(_TreeCheckState state, bool tell);
    void InvertCheck(bool tell);
    /// Checked, unchecked or mixed, by the entries below; none without any.
    _TreeCheckState GetCheckLevelState(HTREEITEM item) const;

    // Selection

    void SelectItem(HTREEITEM item, bool on, bool tell);
    /// These and no others, without telling SelectionChange.
    void SelectItems(const std::vector<HTREEITEM>& items);
    void SelectAll(bool on);
    void InvertSelection();
    std::vector<HTREEITEM> GetSelectedItems() const;
    void ScrollTo(HTREEITEM item);

    // What a derived tree answers or hears

    virtual bool CanChangeCheckState(HTREEITEM item, _TreeCheckState state);
    virtual void BeginCheckStateChange();
    virtual void EndCheckStateChange();
    virtual void CheckStateChange(HTREEITEM item, _TreeCheckState state);
    /// The user clicked the box: the entry and all below it take the opposite state here.
    virtual void UserCheckItem(HTREEITEM item, _TreeCheckState state);
    /// One entry's selection changed by the user; `action` is not 0.
    virtual void SelectionChange(HTREEITEM item, int action);
    /// Several have.
    virtual void OnMultiSelectionChanged();
    virtual void DoubleClick(HTREEITEM item, unsigned int flags);
    /// Resource number of what is shown before the text.
    virtual unsigned int ReplaceIcon(HTREEITEM item) const;
    virtual void DeleteItemData(HTREEITEM item);
    /// The menu of a right click, at `screen`.
    virtual void ShowRightMenu(HTREEITEM item, const CPoint& screen);

    // What the window system sends

    void UserSelect(const std::vector<HTREEITEM>& items);
    void UserOpen(HTREEITEM item, bool open);
    void UserCheck(HTREEITEM item);

private:
    /// What the window is to be told, bits.
    enum News : unsigned int { NEWS_TREE = 1, NEWS_ITEMS = 2, NEWS_SELECTION = 4 };
    void Tell(unsigned int news);
    void TellItem(HTREEITEM item);
    /// Selects these and no others; those that changed.
    std::vector<HTREEITEM> ChangeSelection(const std::vector<HTREEITEM>& items);

    std::unique_ptr<CTreeItem> m_root;
    std::size_t m_count = 0;
    unsigned int m_mode = 0, m_folderIcon = 0;
    unsigned int m_news = 0;    ///< that the window is told once it is unlocked
    int m_locks = 0;
    bool m_multiSelecting = false;
};
