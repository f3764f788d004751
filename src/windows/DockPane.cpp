#include "windows/DockPane.h"

CCustomDockablePane::CCustomDockablePane() = default;
CCustomDockablePane::~CCustomDockablePane() = default;

CSize CCustomDockablePane::GetDefaultSize() const { return {240, 300}; }
