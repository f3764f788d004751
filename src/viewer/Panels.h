#pragma once

#include "windows/Frame.h"

/// Numbers of the viewer's panels.
enum PanelId : unsigned int { PANEL_SCENES = 0, PANEL_MATERIALS = 1, PANEL_OBJECTS = 2 };

class C3DBaseTreeWnd;
class C3DFrameViewer;

/// The panels of a C3DFrameViewer.
class ZEL_API C3DPanels : public CCustomFramePanels {
public:
    explicit C3DPanels(C3DFrameViewer* frame);
    /// The lists of materials and of objects are docked at the right, shown unless they were closed when the frame last ended. Null for a number
    /// that nothing is known of.
    CCustomDockablePane* CreatePanel(unsigned int id) override;
    /// The list in a panel; null when the panel isn't there.
    C3DBaseTreeWnd* GetTree(unsigned int id) const;
    /// Which lists are shown goes into the profile.
    void SaveShown() const;

private:
    C3DFrameViewer* m_frame;
};
