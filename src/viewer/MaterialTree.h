#pragma once

#include <unordered_set>

#include "viewer/BaseTree.h"

/// The materials of a frame's scene. A checked material shows; unchecking one hides all faces and curves of it.
class ZEL_API C3DMaterialTree : public C3DBaseTreeWnd {
public:
    explicit C3DMaterialTree(C3DFrameViewer* frame);

    /// False leaves a material out.
    virtual bool CanAddMaterial(unsigned int id);
    static unsigned int GetItemMaterial(HTREEITEM item);
    /// Null for none.
    HTREEITEM FindItem(unsigned int material) const;

    void OnMaterialsSelectAll();
    void OnMaterialsDeselectAll();
    void OnMaterialsInvert();
    void OnMaterialsHide();

    void InitializeControl() override;
    void CheckStateChange(HTREEITEM item, _TreeCheckState state) override;
    void DoubleClick(HTREEITEM item, unsigned int flags) override;
    void OnCommand(unsigned int id) override;
    void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data) override;

protected:
    unsigned int DoCheckStateChange() override;
    void FillRightMenu(CCustomMenu& menu) override;

private:
    bool ShowsMaterialsOf(C3DScene& scene);
    void Rebuild(C3DScene& scene);
    void MaterialChanged(unsigned int id);

    std::unordered_set<unsigned int> m_changed;    ///< materials of the checks that are under way
};
