#pragma once

#include "windows/Frame.h"

/// Numbers of the viewer's panels.
enum PanelId : unsigned int { PANEL_SCENES = 0, PANEL_MATERIALS = 1, PANEL_OBJECTS = 2 };

/// The panels of a C3DFrameViewer. CreatePanel answers null for one whose window is not built into the library.
class ZEL_API C3DPanels : public CCustomFramePanels {
public:
    explicit C3DPanels(CCustomFrameWnd* frame);
    CCustomDockablePane* CreatePanel(unsigned int id) override;
};
