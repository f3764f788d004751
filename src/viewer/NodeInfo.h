#pragma once

// What there is to know of a node, or of the whole scene, in a sheet that changes nothing.

#include "scene/Forward.h"
#include "viewer/InfoPages.h"

class CNodeInfoChannels;

/// Page of name, kind, place and size.
class CNodeInfoDlg : public CDialogTable {
public:
    CNodeInfoDlg(const C3DScene* scene, const C3DSceneNode* node);
    void OnInit() override;
    void OnControl(unsigned int id) override;

private:
    void ShowMatrix();

    // Of the opening: the node may go while the page shows.
    std::vector<CTextTable::Row> m_placeInScene, m_placeInParent;
    CTextTable m_matrix, m_box;
};

/// Page of the materials that an object uses.
class CNodeInfoMaterials : public CDialogTable {
public:
    CNodeInfoMaterials(const C3DScene* scene, const C3DSceneNode* node);

private:
    CTextTable m_materials;
};

/// The sheet. A null node stands for the scene's root; without a scene all fields are empty.
class ZEL_API CNodeInfoSheet {
public:
    CNodeInfoSheet(C3DScene* scene, C3DSceneNode* node, CWnd* parent);
    ~CNodeInfoSheet();
    void DoModal();

private:
    CWnd* m_parent;
    CReference<C3DScene> m_scene;
    std::unique_ptr<CNodeInfoDlg> m_transformations;
    std::unique_ptr<CNodeInfoChannels> m_channels;
    std::unique_ptr<CNodeInfoMaterials> m_materials;
    std::unique_ptr<CNodeAdditionalData> m_additional;
};
