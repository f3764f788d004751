#pragma once

#include "geometry/4x4Matrix.h"
#include "tools/Rect.h"
#include "viewer/3DCommand.h"

/// What a drag would do, bits.
enum ViewerZone : unsigned int {
    ZONE_HORIZONTAL = 1,    ///< rotation by the handles left and right of the ring
    ZONE_VERTICAL = 2,      ///< by those above and below it
    ZONE_FREE = ZONE_HORIZONTAL | ZONE_VERTICAL,
    ZONE_ROLL = 4,
    ZONE_ZOOM = 8,
    ZONE_PAN = 16,
    ZONE_NONE = 32,    ///< nothing is pressed
};

/// A command that takes the mouse in the view: drags turn, move and zoom it, a click picks nodes.
class ZEL_API C3DViewerControl : public C3DCommand {
public:
    ~C3DViewerControl() override;

    void OnGetFocus(int reason, CZelCommand* former, CommandResult result) override;
    void OnLooseFocus(int reason, CZelCommand* next) override;
    int SetCursor(const CPoint& point) override;
    int OnLButtonUp(unsigned int state, const CPoint& point) override;
    int OnLButtonDblClk(unsigned int state, const CPoint& point) override;
    /// The middle button moves the view in all of them.
    int OnMButtonDown(unsigned int state, const CPoint& point) override;
    void OnMouseMove(unsigned int state, const CPoint& point) override;
    void OnDraw(CDC* dc) override;

    unsigned int GetZone() const { return m_zone; }

protected:
    C3DViewerControl(unsigned int id, bool gizmo, unsigned int zone);

    // Drags, from the former mouse position to the point (ViewerControl.cpp)
    void RotateDrag(unsigned int state, const CPoint& point);
    void PanDrag(unsigned int state, const CPoint& point);
    void ZoomDrag(unsigned int state, const CPoint& point);
    /// Notes the view at the start of a drag.
    void SaveMatrix();
    /// Zone of a point of the ring.
    unsigned int GetPointZone(const CPoint& point) const;
    /// By the buttons that are down.
    void UpdateZone(const CPoint& point);
    /// Selects what lies under the point.
    void Pick(unsigned int state, const CPoint& point);

    unsigned int m_zone;
    const bool m_gizmoOn;
    bool m_lastCtrl = false;
    CPoint m_dragStart;
    C4x4TMatrix<float> m_savedMatrix;
};
