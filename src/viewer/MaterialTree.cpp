#include "viewer/MaterialTree.h"

#include <unordered_map>
#include <utility>

#include "render/GLViewSettings.h"
#include "render/RenderElement.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/Material.h"
#include "viewer/FrameViewer.h"
#include "viewer/TreeMenu.h"

namespace {

constexpr unsigned int ICON_MATERIAL = 9009;
constexpr unsigned int HITS_OF_ENTRY = TREEHIT_ICON | TREEHIT_LABEL | TREEHIT_CHECK;

void* DataOf(unsigned int material) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(material)); }

template <class VISIT> void ForMaterials(const C3DScene& scene, VISIT visit)
{
    for (unsigned int pos = scene.GetFirstMaterial(); pos != 0xFFFFFFFF;)
        if (C3DMaterial* const material = scene.GetNextMaterial(pos))
            visit(*material);
}

_TreeCheckState StateOf(const C3DMaterial& material)
{
    return material.IsFlagSet(MATERIAL_HIDDEN) ? TREECHECK_UNCHECKED : TREECHECK_CHECKED;
}

/// Whether a material is hidden, for those that changed.
using Hidden = std::unordered_map<unsigned int, bool>;

void ShowFaces(C3DGeomObject& object, const Hidden& hidden)
{
    if (!object.GetFaceList())
        return;
    const C3DFaceList& faces = *object.GetFaceList();
    const CFaceFlags flags(faces);
    auto state = hidden.end();
    unsigned int last = 0;
    bool changed = false;
    for (unsigned int face = 0, count = static_cast<unsigned int>(object.GetFaceNbr()); face < count; face++) {
        if (const unsigned int id = faces.GetFaceMaterial(face); face == 0 || id != last)
            state = hidden.find(last = id);
        if (state == hidden.end() || ((flags[face] & VIEW_FACE_HIDDEN) != 0) == state->second)
            continue;
        flags[face] ^= VIEW_FACE_HIDDEN;
        changed = true;
    }
    if (changed)
        object.Invalidate(CHANGE_OTHER, true);
}

}

C3DMaterialTree::C3DMaterialTree(C3DFrameViewer* frame) : C3DBaseTreeWnd(frame) {}

void C3DMaterialTree::InitializeControl() { SetOpenFolderIcon(ICON_MATERIAL); }
bool C3DMaterialTree::CanAddMaterial(unsigned int) { return true; }

unsigned int C3DMaterialTree::GetItemMaterial(HTREEITEM item)
{
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(item->data));
}

HTREEITEM C3DMaterialTree::FindItem(unsigned int material) const { return FindItemByData(DataOf(material)); }

// Following the scene

void C3DMaterialTree::SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data)
{
    const bool sameScene = scene == GetScene();
    C3DBaseTreeWnd::SceneChanged(scene, what, data);
    if (!scene)
        DeleteAllItems();
    else if (what & CHANGED_MATERIAL && data.material != 0xFFFFFFFF)
        MaterialChanged(data.material);
    else if (what & (CHANGED_SCENE | CHANGED_MATERIAL) && data.IsNull())
        Rebuild(*scene);
    else if (what & CHANGED_NODES && !(sameScene && ShowsMaterialsOf(*scene)))
        Rebuild(*scene);    // nodes bring materials along
}

bool C3DMaterialTree::ShowsMaterialsOf(C3DScene& scene)
{
    HTREEITEM item = GetNextItem(GetRoot());
    bool same = true;
    ForMaterials(scene, [&](const C3DMaterial& material) {
        if (!same || !CanAddMaterial(material.GetMaterialID()))
            return;
        same = item && GetItemMaterial(item) == material.GetMaterialID();
        item = GetNextItem(item);
    });
    return same && !item;
}

void C3DMaterialTree::Rebuild(C3DScene& scene)
{
    LockTree();
    DeleteAllItems();
    ForMaterials(scene, [&](const C3DMaterial& material) {
        if (CanAddMaterial(material.GetMaterialID()))
            SetCheck(InsertItem(material.GetName(), DataOf(material.GetMaterialID()), nullptr), StateOf(material), false);
    });
    UnlockTree();
}

void C3DMaterialTree::MaterialChanged(unsigned int id)
{
    const HTREEITEM item = FindItem(id);
    const C3DMaterial* const material = GetScene()->GetMaterialByID(id);
    if (!item || !material) {
        Rebuild(*GetScene());
        return;
    }
    SetItemText(item, material->GetName());
    SetCheck(item, StateOf(*material), false);
}

// Checks

void C3DMaterialTree::CheckStateChange(HTREEITEM item, _TreeCheckState state)
{
    C3DMaterial* const material = GetScene() ? GetScene()->GetMaterialByID(GetItemMaterial(item)) : nullptr;
    if (!material)
        return;
    BeginCheckStateChange();
    material->SetFlag(MATERIAL_HIDDEN, state == TREECHECK_UNCHECKED);
    m_changed.insert(material->GetMaterialID());
    EndCheckStateChange();
}

// Faces of the other materials keep what else has hidden them.
unsigned int C3DMaterialTree::DoCheckStateChange()
{
    const C3DScene* const scene = GetScene();
    Hidden hidden;
    for (const unsigned int id : std::exchange(m_changed, {}))
        if (const C3DMaterial* const material = scene ? scene->GetMaterialByID(id) : nullptr)
            hidden[id] = material->IsFlagSet(MATERIAL_HIDDEN);
    if (hidden.empty())
        return 0;
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_CURVE); pos;) {
        C3DGeomObject* object;
        C3DSceneNode* const node = scene->GetNextNode(object, pos);
        if (const C3DCurve* const curve = XDynamicCast<C3DCurve>(object))
            if (const auto state = hidden.find(curve->GetMaterialID()); state != hidden.end())
                node->SetFlag(NODE_HIDDEN, state->second);
    }
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_POLYGONAL | OBJECT_PATCH, ITER_UNIQUE_OBJECTS); pos;) {
        C3DGeomObject* object;
        scene->GetNextNode(object, pos);
        if (object)
            ShowFaces(*object, hidden);
    }
    return GetFrame()->IsSettingsFlagSet(SETTINGS3D_AUTO_FIT) ? GLSET_UPDATE | GLSET_FIT_ALT : +GLSET_UPDATE;
}

void C3DMaterialTree::DoubleClick(HTREEITEM item, unsigned int flags)
{
    const bool isHit = item && flags & HITS_OF_ENTRY;
    if (isHit && GetFrame() && GetScene() && GetScene()->GetMaterialByID(GetItemMaterial(item)))
        GetFrame()->ShowProperties(GetItemMaterial(item));
}

// Menu

namespace {

enum MaterialsCommand : unsigned int { SELECT_NONE = 48004, CLOSE = 48005, INVERT = 48006, SELECT_ALL = 48007 };

}

void C3DMaterialTree::FillRightMenu(CCustomMenu& menu)
{
    const bool any = GetCount() > 0;
    FillTreeMenu(menu, {{TREETEXT_SELECTION, TREETEXT_SELECT_ALL_MATERIALS, SELECT_ALL, any},
                        {TREETEXT_SELECTION, TREETEXT_SELECT_NO_MATERIAL, SELECT_NONE, any},
                        {TREETEXT_SELECTION, TREETEXT_INVERT_MATERIALS, INVERT, any},
                        {TREETEXT_NONE, TREETEXT_CLOSE_MATERIALS, CLOSE, true}});
}

void C3DMaterialTree::OnCommand(unsigned int id)
{
    switch (id) {
    case SELECT_ALL: OnMaterialsSelectAll(); break;
    case SELECT_NONE: OnMaterialsDeselectAll(); break;
    case INVERT: OnMaterialsInvert(); break;
    case CLOSE: OnMaterialsHide(); break;
    default: C3DBaseTreeWnd::OnCommand(id);
    }
}

void C3DMaterialTree::OnMaterialsSelectAll() { CheckAll(TREECHECK_CHECKED, true); }
void C3DMaterialTree::OnMaterialsDeselectAll() { CheckAll(TREECHECK_UNCHECKED, true); }
void C3DMaterialTree::OnMaterialsInvert() { InvertCheck(true); }

void C3DMaterialTree::OnMaterialsHide()
{
    if (GetFrame())
        GetFrame()->ShowMaterials(LEFTBAR_TOGGLE);
}
