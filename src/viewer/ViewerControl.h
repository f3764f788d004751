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

/// A command that takes the mouse in the view: drags turn, move and zoom it, a click picks nodes. In all of them the middle button moves the view.
class ZEL_API C3DViewerControl : public C3DCommand {
public:
    ~C3DViewerControl() override;

    void OnGetFocus(int reason, CZelCommand* former, CommandResult result) override;
    void OnLooseFocus(int reason, CZelCommand* next) override;
    int SetCursor(const CPoint& point) override;
    /// Nothing for the point where the mouse is already; else the middle button's drag, or what OnDrag does.
    void OnMouseMove(unsigned int state, const CPoint& point) override;
    int OnLButtonDown(unsigned int state, const CPoint& point) override;
    int OnRButtonDown(unsigned int state, const CPoint& point) override;
    int OnMButtonDown(unsigned int state, const CPoint& point) override;
    int OnLButtonUp(unsigned int state, const CPoint& point) override;
    int OnRButtonUp(unsigned int state, const CPoint& point) override;
    int OnMButtonUp(unsigned int state, const CPoint& point) override;
    int OnLButtonDblClk(unsigned int state, const CPoint& point) override;
    /// The ring about which the handles stand, over a picture that has time for it.
    void OnDraw(CDC* dc) override;
    int OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const override;

    unsigned int GetZone() const { return m_zone; }

protected:
    /// `gizmo`: has the ring, and a zone that follows buttons and mouse; otherwise it stays `zone`. Strings of the help on mouse and keys, 0 for none.
    C3DViewerControl(unsigned int id, bool gizmo, unsigned int zone, unsigned int mouseHelp = 0, unsigned int keyHelp = 0);

    /// The mouse has moved, with or without buttons.
    virtual void OnDrag(unsigned int state, const CPoint& point) = 0;

    /// From the press to the point; nothing unless the zone turns.
    void RotateDrag(unsigned int state, const CPoint& point);
    // From the former mouse position to the point
    void PanDrag(unsigned int state, const CPoint& point);
    void ZoomDrag(unsigned int state, const CPoint& point);
    /// Notes view and point at the start of a drag.
    void BeginDrag(unsigned int state, const CPoint& point);
    /// Zone of a point of the ring.
    unsigned int GetPointZone(const CPoint& point) const;
    /// By the buttons that are down, without those that are let go of.
    void UpdateZone(const CPoint& point, unsigned int released = 0);
    /// Selects what lies under the point.
    void Pick(unsigned int state, const CPoint& point);
    /// The scene that the view shows.
    C3DScene* GetViewScene() const;

    unsigned int m_zone;
    const bool m_gizmoOn;
    bool m_lastCtrl = false;
    CPoint m_dragStart;
    C4x4TMatrix<float> m_savedMatrix;

private:
    void GoOn(unsigned int state, const CPoint& point, unsigned int released);

    const unsigned int m_mouseHelp, m_keyHelp;
};
