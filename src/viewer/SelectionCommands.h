#pragma once

#include <vector>

#include "viewer/MarkedFaces.h"
#include "viewer/ViewerControl.h"

class C3DSelectFacesCommand;

// Commands that select, hide and delete nodes, or the marked faces when these are meant (C3DSelectFacesCommand::AreFacesMeant). Nodes are kept by
// their ids, so that those that are deleted in between are passed over.

/// A click picks; drags turn (left), zoom (right) and move (both).
class ZEL_API C3DSelectCommand : public C3DViewerControl {
public:
    C3DSelectCommand();

protected:
    void OnDrag(unsigned int state, const CPoint& point) override;
};

/// On what is selected in the frame's scene.
class ZEL_API C3DSelectionCommand : public C3DCommand {
protected:
    explicit C3DSelectionCommand(unsigned int id) : C3DCommand(id) {}

    void TellSelection();
    void TellDisplay();
    /// Another command of the manager; null when it isn't there.
    template <class COMMAND> COMMAND* Find(unsigned int id) const;
    bool AreFacesMeant(const C3DScene* scene) const;
    /// A node is selected, or faces are meant.
    bool HasSelection() const;
};

/// Nodes that are not hidden.
class ZEL_API C3DSelectAll : public C3DSelectionCommand {
public:
    C3DSelectAll();
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};

/// Takes marks from faces too.
class ZEL_API C3DSelectNone : public C3DSelectionCommand {
public:
    C3DSelectNone();
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;

    /// Ids of the nodes that were selected when something last was.
    const std::vector<unsigned int>& GetLastSelection() const { return m_lastSelection; }

private:
    std::vector<unsigned int> m_lastSelection;
};

/// Hidden nodes too.
class ZEL_API C3DSelectInvert : public C3DSelectionCommand {
public:
    C3DSelectInvert();
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};

/// What C3DSelectNone has kept.
class ZEL_API C3DReselect : public C3DSelectionCommand {
public:
    C3DReselect();
    void UpdateState() override;
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;

private:
    const std::vector<unsigned int>* GetLastSelection() const;
};

class ZEL_API C3DShowAll : public C3DSelectionCommand {
public:
    C3DShowAll();
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};

/// What a command has hidden.
struct CLastHidden {
    std::vector<unsigned int> nodes;    ///< ids
    std::vector<CFaceSet> faces;        ///< in place of nodes
    bool reselect = false;              ///< it was selected
    bool IsEmpty() const { return nodes.empty() && faces.empty(); }
};

class ZEL_API C3DShowHideSel : public C3DSelectionCommand {
public:
    C3DShowHideSel();
    void UpdateState() override;
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;

    const CLastHidden& GetLastHidden() const { return m_lastHidden; }
    void SetLastHidden(CLastHidden hidden) { m_lastHidden = std::move(hidden); }

private:
    CLastHidden m_lastHidden;
};

/// Hides all but the selection.
class ZEL_API C3DShowSelection : public C3DSelectionCommand {
public:
    C3DShowSelection();
    void UpdateState() override;
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};

/// What C3DShowHideSel or C3DShowSelection has hidden last.
class ZEL_API C3DReshow : public C3DSelectionCommand {
public:
    C3DReshow();
    void UpdateState() override;
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};

class ZEL_API C3DDeleteNodeCommand : public C3DSelectionCommand {
public:
    C3DDeleteNodeCommand();
    void UpdateState() override;
    CommandResult OnApplyCommand(C3DScene* scene) override;
    using C3DCommand::OnApplyCommand;
};
