#pragma once

#include "viewer/ViewerControl.h"

/// Marks faces: a click the one under the mouse, a band those that show in it (in pure wireframe all that reach into it).
///
/// What was marked before is marked no more, unless Ctrl is held: then faces are added, and those that are all marked already lose their marks.
class ZEL_API C3DSelectFacesCommand : public C3DViewerControl {
public:
    C3DSelectFacesCommand();

    /// Marks show from now on.
    void OnGetFocus(int reason, CZelCommand* former, CommandResult result) override;
    void OnLooseFocus(int reason, CZelCommand* next) override;
    int SetCursor(const CPoint& point) override;
    int OnLButtonDown(unsigned int state, const CPoint& point) override;
    int OnLButtonUp(unsigned int state, const CPoint& point) override;
    int OnLButtonDblClk(unsigned int state, const CPoint& point) override;
    void OnDraw(CDC* dc) override;

    /// Whether commands on what is selected mean the marked faces: there are some, and this is the current command or no node is selected.
    bool AreFacesMeant(const C3DScene* scene);

protected:
    void OnDrag(unsigned int state, const CPoint& point) override;

private:
    CRect GetBand() const;
    void MarkFaces(unsigned int state, bool click);

    bool m_dragging = false;
    CPoint m_first, m_second;    ///< corners
    bool m_mayHaveMarks = false;
};
