#pragma once

#include <unordered_map>
#include <unordered_set>

#include "viewer/BaseTree.h"

/// The nodes of a frame's scene. A checked node shows; what is selected here is selected in the scene, and the other way round.
///
/// Entries of groups show the state of what is directly below them. No entry leads to a node that is gone: between the end of a node and the news of
/// it its entry does nothing.
class ZEL_API C3DObjectTree : public C3DBaseTreeWnd {
public:
    explicit C3DObjectTree(C3DFrameViewer* frame);
    ~C3DObjectTree() override;

    enum ItemKind : unsigned int { ITEM_NODE = 0, ITEM_CUSTOM = 1 };

    /// False leaves a node out, with what is below it.
    virtual bool CanAddNode(C3DSceneNode* node);
    /// An entry of the host's own on the first level; it stays when the scene changes.
    HTREEITEM AddCustomItem(const CXTString<wchar_t>& name, unsigned int value, _TreeCheckState state);
    ItemKind GetItemKind(HTREEITEM item) const;
    unsigned int GetCustomValue(HTREEITEM item) const;
    /// Null for custom entries, and when the node is gone. Linear in the scene.
    C3DSceneNode* GetItemNode(HTREEITEM item) const;
    /// Null for none.
    HTREEITEM FindItem(const C3DSceneNode* node) const;
    /// Of groups below (null: all), by what is below them.
    void UpdateTreeCheckState(HTREEITEM item);

    void OnObjectsSelectAll();
    void OnObjectsSelectNone();
    void OnObjectsSelectInvert();
    void OnObjectsDisplaySelection();
    void OnObjectsDisplayAll();
    void OnObjectsDisplayNone();
    void OnObjectsDisplayInvert();
    void OnObjectsHide();

    void InitializeControl() override;
    void CheckStateChange(HTREEITEM item, _TreeCheckState state) override;
    /// Of a node with others below it that is no group only its own state changes.
    void UserCheckItem(HTREEITEM item, _TreeCheckState state) override;
    /// With Alt what is below goes along.
    void SelectionChange(HTREEITEM item, int action) override;
    void OnMultiSelectionChanged() override;
    void DoubleClick(HTREEITEM item, unsigned int flags) override;
    unsigned int ReplaceIcon(HTREEITEM item) const override;
    void DeleteItemData(HTREEITEM item) override;
    void OnCommand(unsigned int id) override;
    void OnDestroy() override;
    void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data) override;
    void NodeSelectionChanged() override;
    void NodeDisplayChanged() override;

protected:
    unsigned int DoCheckStateChange() override;
    void FillRightMenu(CCustomMenu& menu) override;

private:
    struct ItemData;
    static ItemData* DataOf(HTREEITEM item);
    void SetItemNodeData(HTREEITEM item, C3DSceneNode* node);
    void DeleteItemNodeData(HTREEITEM item);
    bool IsGroup(HTREEITEM item) const;

    void Rebuild(bool sameScene);
    void AttachTree(C3DScene& scene);
    void DetachTree();
    HTREEITEM AddNodeItem(C3DSceneNode* node, HTREEITEM parent);
    void NodeChanged(C3DSceneNode* node);
    void OpenAgain(const std::unordered_set<unsigned int>& nodes);
    void OpenOnlyChildren();
    void ReadChecks();
    void SelectBelow(HTREEITEM item);
    void SelectInScene();

    std::unordered_map<const C3DSceneNode*, HTREEITEM> m_items;
    std::unordered_map<const C3DSceneNode*, bool> m_hidden;    ///< what the checks that are under way want
    bool m_selecting = false;                                  ///< the selection goes from here to the scene
};
