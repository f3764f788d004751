#include "viewer/SelectionCommands.h"

#include <unordered_set>

#include "scene/3DScene.h"
#include "scene/Filter.h"
#include "tools/FourCC.h"
#include "viewer/FaceSelection.h"
#include "viewer/FrameViewer.h"
#include "windows/CommandMgr.h"

namespace {

constexpr unsigned int SELECT_NONE = FourCC("SLNN"), HIDE_SELECTION = FourCC("SWHD"), SELECT_FACES = FourCC("SLFC");

template <class VISIT> void ForEachNode(const C3DScene& scene, VISIT visit)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;)
        visit(*scene.GetNextNode(pos));
}

/// The nodes of a scene that have one of the ids.
template <class VISIT> void ForEachNode(const C3DScene& scene, const std::vector<unsigned int>& ids, VISIT visit)
{
    const std::unordered_set<unsigned int> wanted(ids.begin(), ids.end());
    ForEachNode(scene, [&](C3DSceneNode& node) {
        if (wanted.count(node.GetNodeID()))
            visit(node);
    });
}

}

// --- With the mouse --------------------------------------------------------------------------------------------------------------

C3DSelectCommand::C3DSelectCommand() : C3DViewerControl(FourCC("SELC"), true, ZONE_NONE, 9625, 9626) {}

void C3DSelectCommand::OnDrag(unsigned int state, const CPoint& point)
{
    const CCommandMgr& manager = *GetManager();
    if (!manager.IsClick() || manager.IsStaticClick())
        UpdateZone(point);
    else if (manager.IsSingleClick() == CLICK_LEFT)
        RotateDrag(state, point);
    else if (manager.IsSingleClick() == CLICK_RIGHT)
        ZoomDrag(state, point);
    else if (manager.IsDualClick())
        PanDrag(state, point);
}

// --- What they share -------------------------------------------------------------------------------------------------------------

void C3DSelectionCommand::TellSelection()
{
    if (Get3DFrameWnd())
        Get3DFrameWnd()->NodeSelectionChanged();
}

void C3DSelectionCommand::TellDisplay()
{
    if (Get3DFrameWnd())
        Get3DFrameWnd()->NodeDisplayChanged();
}

template <class COMMAND> COMMAND* C3DSelectionCommand::Find(unsigned int id) const
{
    return GetManager() ? dynamic_cast<COMMAND*>(GetManager()->GetCommandById(id)) : nullptr;
}

bool C3DSelectionCommand::AreFacesMeant(const C3DScene* scene) const
{
    C3DSelectFacesCommand* const faces = Find<C3DSelectFacesCommand>(SELECT_FACES);
    return faces && faces->AreFacesMeant(scene);
}

bool C3DSelectionCommand::HasSelection() const
{
    const C3DScene* const scene = GetFrameScene();
    return scene && (scene->IsNodeSelected() || AreFacesMeant(scene));
}

// --- Selecting -------------------------------------------------------------------------------------------------------------------

C3DSelectAll::C3DSelectAll() : C3DSelectionCommand(FourCC("SLAL")) {}

CommandResult C3DSelectAll::OnApplyCommand(C3DScene* scene)
{
    ForEachNode(*scene, [](C3DSceneNode& node) {
        if (!node.IsFlagSet(NODE_HIDDEN))
            node.SetFlag(NODE_SELECTED, true);
    });
    TellSelection();
    return COMMAND_DONE;
}

C3DSelectNone::C3DSelectNone() : C3DSelectionCommand(SELECT_NONE) {}

CommandResult C3DSelectNone::OnApplyCommand(C3DScene* scene)
{
    std::vector<unsigned int> selection;
    ForEachNode(*scene, [&](C3DSceneNode& node) {
        if (!node.IsFlagSet(NODE_SELECTED))
            return;
        selection.push_back(node.GetNodeID());
        node.SetFlag(NODE_SELECTED, false);
    });
    const bool unmarked = AreFacesMeant(scene) && ClearFaceMarks(*scene);
    if (selection.empty() && !unmarked)
        return COMMAND_DONE;
    if (!selection.empty())
        m_lastSelection = std::move(selection);
    TellSelection();
    return COMMAND_DONE;
}

C3DSelectInvert::C3DSelectInvert() : C3DSelectionCommand(FourCC("SLIN")) {}

CommandResult C3DSelectInvert::OnApplyCommand(C3DScene* scene)
{
    ForEachNode(*scene, [](C3DSceneNode& node) { node.SetFlag(NODE_SELECTED, !node.IsFlagSet(NODE_SELECTED)); });
    TellSelection();
    return COMMAND_DONE;
}

C3DReselect::C3DReselect() : C3DSelectionCommand(FourCC("SLRE")) {}

/// Null for none.
const std::vector<unsigned int>* C3DReselect::GetLastSelection() const
{
    const C3DSelectNone* const keeper = Find<C3DSelectNone>(SELECT_NONE);
    return keeper && !keeper->GetLastSelection().empty() ? &keeper->GetLastSelection() : nullptr;
}

void C3DReselect::UpdateState() { SetState(COMMAND_ENABLED, GetLastSelection() != nullptr); }

CommandResult C3DReselect::OnApplyCommand(C3DScene* scene)
{
    const std::vector<unsigned int>* const selection = GetLastSelection();
    if (!selection)
        return COMMAND_DONE;
    scene->SelectNone();
    ForEachNode(*scene, *selection, [](C3DSceneNode& node) { node.SetFlag(NODE_SELECTED, true); });
    TellSelection();
    return COMMAND_DONE;
}

// --- Hiding ----------------------------------------------------------------------------------------------------------------------

C3DShowAll::C3DShowAll() : C3DSelectionCommand(FourCC("SWAL")) {}

CommandResult C3DShowAll::OnApplyCommand(C3DScene* scene)
{
    ForEachNode(*scene, [](C3DSceneNode& node) { node.SetFlag(NODE_HIDDEN, false); });
    ShowAllFaces(*scene);
    TellDisplay();
    return COMMAND_DONE;
}

C3DShowHideSel::C3DShowHideSel() : C3DSelectionCommand(HIDE_SELECTION) {}

void C3DShowHideSel::UpdateState() { SetState(COMMAND_ENABLED, HasSelection()); }

CommandResult C3DShowHideSel::OnApplyCommand(C3DScene* scene)
{
    CLastHidden hidden;
    hidden.reselect = true;
    if (AreFacesMeant(scene))
        hidden.faces = HideFaces(*scene, false);
    else
        ForEachNode(*scene, [&](C3DSceneNode& node) {
            if (!node.IsFlagSet(NODE_SELECTED))
                return;
            hidden.nodes.push_back(node.GetNodeID());
            node.SetFlag(NODE_SELECTED, false);
            node.SetFlag(NODE_HIDDEN, true);
        });
    if (hidden.IsEmpty())
        return COMMAND_DONE;
    m_lastHidden = std::move(hidden);
    TellSelection();
    TellDisplay();
    return COMMAND_DONE;
}

C3DShowSelection::C3DShowSelection() : C3DSelectionCommand(FourCC("SWSL")) {}

void C3DShowSelection::UpdateState() { SetState(COMMAND_ENABLED, HasSelection()); }

CommandResult C3DShowSelection::OnApplyCommand(C3DScene* scene)
{
    C3DShowHideSel* const keeper = Find<C3DShowHideSel>(HIDE_SELECTION);
    if (!keeper)
        return COMMAND_DONE;
    CLastHidden hidden;
    if (AreFacesMeant(scene))
        hidden.faces = HideFaces(*scene, true);
    else
        ForEachNode(*scene, [&](C3DSceneNode& node) {
            if (node.IsFlagSet(NODE_SELECTED))
                return;
            hidden.nodes.push_back(node.GetNodeID());
            node.SetFlag(NODE_HIDDEN, true);
        });
    if (hidden.IsEmpty())
        return COMMAND_DONE;
    keeper->SetLastHidden(std::move(hidden));
    TellDisplay();
    return COMMAND_DONE;
}

C3DReshow::C3DReshow() : C3DSelectionCommand(FourCC("SWRE")) {}

void C3DReshow::UpdateState()
{
    const C3DShowHideSel* const keeper = Find<C3DShowHideSel>(HIDE_SELECTION);
    SetState(COMMAND_ENABLED, keeper && !keeper->GetLastHidden().IsEmpty());
}

CommandResult C3DReshow::OnApplyCommand(C3DScene* scene)
{
    const C3DShowHideSel* const keeper = Find<C3DShowHideSel>(HIDE_SELECTION);
    if (!keeper)
        return COMMAND_DONE;
    const CLastHidden& hidden = keeper->GetLastHidden();
    bool changed = ShowFaces(*scene, hidden.faces, hidden.reselect);
    ForEachNode(*scene, hidden.nodes, [&](C3DSceneNode& node) {
        if (!node.IsFlagSet(NODE_HIDDEN))
            return;
        changed = true;
        if (hidden.reselect)
            node.SetFlag(NODE_SELECTED, true);
        node.SetFlag(NODE_HIDDEN, false);
    });
    if (!changed)
        return COMMAND_DONE;
    if (hidden.reselect)
        TellSelection();
    TellDisplay();
    return COMMAND_DONE;
}

// --- Deleting --------------------------------------------------------------------------------------------------------------------

C3DDeleteNodeCommand::C3DDeleteNodeCommand() : C3DSelectionCommand(FourCC("DELN")) {}

void C3DDeleteNodeCommand::UpdateState() { SetState(COMMAND_ENABLED, HasSelection()); }

CommandResult C3DDeleteNodeCommand::OnApplyCommand(C3DScene* scene)
{
    unsigned int changes = CHANGED_NODES;
    if (AreFacesMeant(scene)) {
        DeleteMarkedFaces(*scene);
        changes |= CHANGED_POINTS_OF_SCENE | CHANGED_FACES_OF_SCENE;
    } else if (scene->IsNodeSelected()) {
        const C3DFilter selected(FILTER_UNSELECTED);
        scene->DeleteNodes(nullptr, &selected);
    } else
        return COMMAND_DONE;
    if (Get3DFrameWnd())
        Get3DFrameWnd()->SceneChanged(changes, {}, true);
    return COMMAND_DONE;
}
