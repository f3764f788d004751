#pragma once

#include "files/DlgFormatSelection.h"

/// Format choice that knows the settings of scene formats.
class ZEL_API C3DDlgFormatSelection : public CDlgFormatSelection {
public:
    using CDlgFormatSelection::CDlgFormatSelection;
    ~C3DDlgFormatSelection() override;

    /// For a scene format its settings dialog, whose result is kept under the class; for others the base.
    void ShowFormatProperty(int reading, CCustomData& data) override;
};
