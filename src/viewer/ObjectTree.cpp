#include "viewer/ObjectTree.h"

#include "render/GLViewSettings.h"
#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "viewer/FrameViewer.h"
#include "viewer/TreeMenu.h"
#include "windows/Keys.h"
#include "windows/WindowSystem.h"

namespace {

constexpr unsigned int ICON_CURVE = 9008, ICON_OBJECT = 9010, ICON_FOLDER = 9012;
constexpr unsigned int HITS_OF_ENTRY = TREEHIT_ICON | TREEHIT_LABEL | TREEHIT_CHECK;

/// Calls `visit` for each node of a scene but the root.
template <class VISIT> void ForNodes(const C3DScene& scene, VISIT visit)
{
    const C3DSceneNode* const root = scene.GetRoot();
    for (C3DSceneNode* node = NextInBranch(root, root); node; node = NextInBranch(node, root))
        visit(*node);
}

_TreeCheckState StateOf(const C3DSceneNode& node) { return node.IsFlagSet(NODE_HIDDEN) ? TREECHECK_UNCHECKED : TREECHECK_CHECKED; }

}

/// What an entry stands for. The node may be gone already: it is compared, never followed.
struct C3DObjectTree::ItemData {
    ItemKind kind = ITEM_NODE;
    const C3DSceneNode* node = nullptr;
    unsigned int value = 0;     ///< of a custom entry
    unsigned int nodeID = 0;    ///< another node may come to stand at the address of one that is gone
    unsigned int objectKind = 0;
};

C3DObjectTree::C3DObjectTree(C3DFrameViewer* frame) : C3DBaseTreeWnd(frame) {}
C3DObjectTree::~C3DObjectTree() { DeleteAllItems(); }

void C3DObjectTree::InitializeControl() { SetOpenFolderIcon(ICON_FOLDER); }
bool C3DObjectTree::CanAddNode(C3DSceneNode*) { return true; }

// Entries

C3DObjectTree::ItemData* C3DObjectTree::DataOf(HTREEITEM item) { return item ? static_cast<ItemData*>(item->data) : nullptr; }

void C3DObjectTree::SetItemNodeData(HTREEITEM item, C3DSceneNode* node)
{
    item->data = new ItemData{ITEM_NODE, node, 0, node->GetNodeID(), node->GetObjectKindOf()};
    m_items[node] = item;
}

void C3DObjectTree::DeleteItemNodeData(HTREEITEM item)
{
    ItemData* const data = DataOf(item);
    if (!data)
        return;
    if (const auto known = m_items.find(data->node); known != m_items.end() && known->second == item)
        m_items.erase(known);
    delete data;
    item->data = nullptr;
}

void C3DObjectTree::DeleteItemData(HTREEITEM item) { DeleteItemNodeData(item); }

HTREEITEM C3DObjectTree::AddCustomItem(const CXTString<wchar_t>& name, unsigned int value, _TreeCheckState state)
{
    const HTREEITEM item = InsertItem(name, new ItemData{ITEM_CUSTOM, nullptr, value, 0, 0}, nullptr);
    SetCheck(item, state, false);
    return item;
}

C3DObjectTree::ItemKind C3DObjectTree::GetItemKind(HTREEITEM item) const
{
    const ItemData* const data = DataOf(item);
    return data ? data->kind : ITEM_CUSTOM;
}

unsigned int C3DObjectTree::GetCustomValue(HTREEITEM item) const
{
    const ItemData* const data = DataOf(item);
    return data ? data->value : 0;
}

C3DSceneNode* C3DObjectTree::GetItemNode(HTREEITEM item) const
{
    C3DSceneNode* found = nullptr;
    if (const ItemData* const data = DataOf(item); data && data->kind == ITEM_NODE && GetScene())
        ForNodes(*GetScene(), [&](C3DSceneNode& node) {
            if (&node == data->node && node.GetNodeID() == data->nodeID)
                found = &node;
        });
    return found;
}

HTREEITEM C3DObjectTree::FindItem(const C3DSceneNode* node) const
{
    const auto found = m_items.find(node);
    return found != m_items.end() && DataOf(found->second)->nodeID == node->GetNodeID() ? found->second : nullptr;
}

bool C3DObjectTree::IsGroup(HTREEITEM item) const
{
    const ItemData* const data = DataOf(item);
    return data && data->objectKind & OBJECT_GROUP;
}

unsigned int C3DObjectTree::ReplaceIcon(HTREEITEM item) const
{
    const ItemData* const data = DataOf(item);
    if (data && data->objectKind & (OBJECT_POLYGONAL | OBJECT_PATCH))
        return ICON_OBJECT;
    return data && data->objectKind & OBJECT_CURVE ? ICON_CURVE : C3DBaseTreeWnd::ReplaceIcon(item);
}

// Following the scene

void C3DObjectTree::SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data)
{
    const bool sameScene = scene == GetScene() && !(what & CHANGED_SCENE);
    C3DBaseTreeWnd::SceneChanged(scene, what, data);
    if (!scene)
        DetachTree();
    else if (what & (CHANGED_SCENE | CHANGED_NODES) && data.IsNull())
        Rebuild(sameScene);
    else if (what & CHANGED_NODES && data.node)
        NodeChanged(data.node);
}

void C3DObjectTree::Rebuild(bool sameScene)
{
    LockTree();
    std::unordered_set<unsigned int> open;
    for (HTREEITEM item = GetNextItem(GetRoot()); item && sameScene; item = GetNextItem(item))
        if (item->open && GetItemKind(item) == ITEM_NODE)
            open.insert(DataOf(item)->nodeID);
    DetachTree();
    AttachTree(*GetScene());
    UpdateTreeCheckState(nullptr);
    if (sameScene)
        OpenAgain(open);
    else
        OpenOnlyChildren();
    UnlockTree();
}

void C3DObjectTree::DetachTree()
{
    LockTree();
    const auto& first = GetRoot()->children;
    for (std::size_t i = first.size(); i-- > 0;)
        if (GetItemKind(first[i].get()) == ITEM_NODE)
            DeleteItem(first[i].get());
    m_items.clear();
    UnlockTree();
}

void C3DObjectTree::AttachTree(C3DScene& scene)
{
    const C3DSceneNode* const root = scene.GetRoot();
    HTREEITEM above = nullptr;
    for (C3DSceneNode* node = scene.GetChildNode(nullptr); node;) {
        const HTREEITEM item = CanAddNode(node) ? AddNodeItem(node, above) : nullptr;
        if (C3DSceneNode* const child = scene.GetChildNode(node); item && child) {
            above = item;
            node = child;
            continue;
        }
        while (node != root && !scene.GetRightNode(node)) {
            node = node->GetParent();
            above = above ? above->parent : nullptr;
        }
        node = node == root ? nullptr : scene.GetRightNode(node);
    }
}

HTREEITEM C3DObjectTree::AddNodeItem(C3DSceneNode* node, HTREEITEM parent)
{
    const HTREEITEM item = InsertItem(node->GetName(), nullptr, parent);
    SetItemNodeData(item, node);
    item->check = StateOf(*node);
    item->selected = node->IsFlagSet(NODE_SELECTED);
    return item;
}

void C3DObjectTree::OpenAgain(const std::unordered_set<unsigned int>& nodes)
{
    for (HTREEITEM item = GetNextItem(GetRoot()); item; item = GetNextItem(item))
        item->open = GetItemKind(item) == ITEM_NODE && nodes.count(DataOf(item)->nodeID);
}

// A new scene shows at least where its tree begins to part.
void C3DObjectTree::OpenOnlyChildren()
{
    for (HTREEITEM item = GetRoot(); item->children.size() == 1;) {
        item = item->children.front().get();
        item->open = true;
    }
}

void C3DObjectTree::NodeChanged(C3DSceneNode* node)
{
    bool isThere = false;
    ForNodes(*GetScene(), [&](const C3DSceneNode& other) { isThere |= &other == node; });
    const HTREEITEM item = isThere ? FindItem(node) : nullptr;
    const ItemData* const above = item ? DataOf(item->parent) : nullptr;
    if (!item || (above ? above->node : GetScene()->GetRoot()) != node->GetParent()) {
        Rebuild(true);    // it has come, gone, or moved
        return;
    }
    LockTree();
    DataOf(item)->objectKind = node->GetObjectKindOf();
    SetItemText(item, node->GetName());
    SelectItem(item, node->IsFlagSet(NODE_SELECTED), false);
    SetCheck(item, StateOf(*node), false);
    UpdateTreeCheckState(nullptr);
    UnlockTree();
}

void C3DObjectTree::OnDestroy()
{
    DetachTree();
    C3DBaseTreeWnd::OnDestroy();
}

// Checks

void C3DObjectTree::CheckStateChange(HTREEITEM item, _TreeCheckState state)
{
    if (GetItemKind(item) != ITEM_NODE)
        return;
    BeginCheckStateChange();
    m_hidden[DataOf(item)->node] = state == TREECHECK_UNCHECKED;
    EndCheckStateChange();
}

unsigned int C3DObjectTree::DoCheckStateChange()
{
    if (GetScene())
        ForNodes(*GetScene(), [&](C3DSceneNode& node) {
            if (const auto wanted = m_hidden.find(&node); wanted != m_hidden.end() && FindItem(&node))
                node.SetFlag(NODE_HIDDEN, wanted->second);
        });
    m_hidden.clear();
    UpdateTreeCheckState(nullptr);
    return GLSET_FIT_ALT;
}

void C3DObjectTree::UserCheckItem(HTREEITEM item, _TreeCheckState state)
{
    if (!item || GetItemKind(item) == ITEM_CUSTOM || IsGroup(item) || item->children.empty()) {
        C3DBaseTreeWnd::UserCheckItem(item, state);
        return;
    }
    BeginCheckStateChange();
    const _TreeCheckState opposite = IsCheck(item) ? TREECHECK_UNCHECKED : TREECHECK_CHECKED;
    if (CanChangeCheckState(item, opposite))
        SetCheck(item, opposite, true);
    EndCheckStateChange();
}

// From the leaves up, as groups hold groups.
void C3DObjectTree::UpdateTreeCheckState(HTREEITEM item)
{
    const HTREEITEM top = item ? item : GetRoot();
    std::vector<HTREEITEM> groups;
    HTREEITEM behind = top;    // the first entry that is not below
    while (behind->parent && static_cast<std::size_t>(behind->index) + 1 == behind->parent->children.size())
        behind = behind->parent;
    behind = behind->parent ? behind->parent->children[static_cast<std::size_t>(behind->index) + 1].get() : nullptr;
    for (HTREEITEM below = top; below && below != behind; below = GetNextItem(below))
        if (IsGroup(below) && !below->children.empty())
            groups.push_back(below);
    LockTree();
    for (auto group = groups.rbegin(); group != groups.rend(); group++)
        SetCheck(*group, GetCheckLevelState(*group), false);
    UnlockTree();
}

void C3DObjectTree::NodeDisplayChanged()
{
    if (IsChangingChecks() || !GetScene())
        return;
    ReadChecks();
}

void C3DObjectTree::ReadChecks()
{
    LockTree();
    ForNodes(*GetScene(), [&](const C3DSceneNode& node) { SetCheck(FindItem(&node), StateOf(node), false); });
    UpdateTreeCheckState(nullptr);
    UnlockTree();
}

// Selection

void C3DObjectTree::NodeSelectionChanged()
{
    if (m_selecting || !GetScene())
        return;
    std::vector<HTREEITEM> selected;
    HTREEITEM fresh = nullptr;
    ForNodes(*GetScene(), [&](const C3DSceneNode& node) {
        const HTREEITEM item = node.IsFlagSet(NODE_SELECTED) ? FindItem(&node) : nullptr;
        if (!item)
            return;
        if (!fresh && !item->selected)
            fresh = item;
        selected.push_back(item);
    });
    SelectItems(selected);
    ScrollTo(fresh);
}

void C3DObjectTree::SelectionChange(HTREEITEM item, int action)
{
    if (!GetScene() || m_selecting || action == 0)
        return;
    if (GetWindowSystem().IsKeyDown(VK_MENU))
        SelectBelow(item);
    SelectInScene();
}

void C3DObjectTree::OnMultiSelectionChanged()
{
    if (!GetScene() || m_selecting)
        return;
    if (GetWindowSystem().IsKeyDown(VK_MENU))
        SelectBelow(nullptr);
    SelectInScene();
}

// What is below the entry takes its state; null: what is below selected ones is selected. Parents come before what is below them.
void C3DObjectTree::SelectBelow(HTREEITEM item)
{
    const bool state = !item || item->selected;
    std::vector<HTREEITEM> selected;
    std::unordered_set<HTREEITEM> leaders{item};    // those whose children follow
    for (HTREEITEM next = GetNextItem(GetRoot()); next; next = GetNextItem(next)) {
        const bool follows = leaders.count(next->parent) > 0, on = follows ? state : next->selected;
        if (follows || (!item && on))
            leaders.insert(next);
        if (on)
            selected.push_back(next);
    }
    SelectItems(selected);
}

void C3DObjectTree::SelectInScene()
{
    m_selecting = true;
    C3DScene& scene = *GetScene();
    scene.SelectNone();
    ForNodes(scene, [&](C3DSceneNode& node) {
        if (const HTREEITEM item = FindItem(&node); item && item->selected)
            scene.Select(&node, C3DScene::SELECT_ADD);
    });
    if (GetFrame())
        GetFrame()->NodeSelectionChanged();
    m_selecting = false;
}

void C3DObjectTree::DoubleClick(HTREEITEM item, unsigned int flags)
{
    C3DSceneNode* const node = flags & HITS_OF_ENTRY ? GetItemNode(item) : nullptr;
    if (node && GetFrame())
        GetFrame()->ShowProperties(node);
}

// Menu

namespace {

enum ObjectsCommand : unsigned int {
    DISPLAY_ALL = 48009,
    DISPLAY_INVERT = 48010,
    DISPLAY_NONE = 48011,
    DISPLAY_SELECTION = 48012,
    CLOSE = 48013,
    SELECT_ALL = 48015,
    SELECT_INVERT = 48016,
    SELECT_NONE = 48017,
};

}

void C3DObjectTree::FillRightMenu(CCustomMenu& menu)
{
    const bool any = GetCount() > 0, isSelected = GetScene() && GetScene()->IsNodeSelected();
    FillTreeMenu(menu, {{TREETEXT_SELECTION, TREETEXT_SELECT_ALL_OBJECTS, SELECT_ALL, any},
                        {TREETEXT_SELECTION, TREETEXT_SELECT_NO_OBJECT, SELECT_NONE, any},
                        {TREETEXT_SELECTION, TREETEXT_INVERT_OBJECTS, SELECT_INVERT, any},
                        {TREETEXT_DISPLAY, TREETEXT_DISPLAY_SELECTION, DISPLAY_SELECTION, isSelected},
                        {TREETEXT_DISPLAY, TREETEXT_DISPLAY_ALL, DISPLAY_ALL, any},
                        {TREETEXT_DISPLAY, TREETEXT_DISPLAY_NONE, DISPLAY_NONE, any},
                        {TREETEXT_DISPLAY, TREETEXT_INVERT_DISPLAY, DISPLAY_INVERT, any},
                        {TREETEXT_NONE, TREETEXT_CLOSE_OBJECTS, CLOSE, true}});
}

void C3DObjectTree::OnCommand(unsigned int id)
{
    switch (id) {
    case SELECT_ALL: OnObjectsSelectAll(); break;
    case SELECT_NONE: OnObjectsSelectNone(); break;
    case SELECT_INVERT: OnObjectsSelectInvert(); break;
    case DISPLAY_SELECTION: OnObjectsDisplaySelection(); break;
    case DISPLAY_ALL: OnObjectsDisplayAll(); break;
    case DISPLAY_NONE: OnObjectsDisplayNone(); break;
    case DISPLAY_INVERT: OnObjectsDisplayInvert(); break;
    case CLOSE: OnObjectsHide(); break;
    default: C3DBaseTreeWnd::OnCommand(id);
    }
}

void C3DObjectTree::OnObjectsSelectAll() { SelectAll(true); }
void C3DObjectTree::OnObjectsSelectNone() { SelectAll(false); }
void C3DObjectTree::OnObjectsSelectInvert() { InvertSelection(); }
void C3DObjectTree::OnObjectsDisplayAll() { CheckAll(TREECHECK_CHECKED, true); }
void C3DObjectTree::OnObjectsDisplayNone() { CheckAll(TREECHECK_UNCHECKED, true); }
void C3DObjectTree::OnObjectsDisplayInvert() { InvertCheck(true); }

void C3DObjectTree::OnObjectsDisplaySelection()
{
    if (!GetScene() || !GetScene()->IsNodeSelected())
        return;
    LockTree();
    BeginCheckStateChange();
    CheckAll(TREECHECK_UNCHECKED, true);
    ForNodes(*GetScene(), [&](const C3DSceneNode& node) {
        const HTREEITEM item = node.IsFlagSet(NODE_SELECTED) ? FindItem(&node) : nullptr;
        if (item && !IsCheck(item))    // else what is above has brought it along
            UserCheckItem(item, TREECHECK_CHECKED);
    });
    EndCheckStateChange();
    UnlockTree();
}

void C3DObjectTree::OnObjectsHide()
{
    if (GetFrame())
        GetFrame()->ShowObjects(LEFTBAR_TOGGLE);
}
