#include "viewer/Panels.h"

C3DPanels::C3DPanels(CCustomFrameWnd* frame) : CCustomFramePanels(frame) {}

CCustomDockablePane* C3DPanels::CreatePanel(unsigned int id) { return GetPanel(id); }
