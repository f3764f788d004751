#pragma once

#include "files/FileExt.h"
#include "tools/CustomData.h"
#include "windows/Dialog.h"

/// Lets the user choose a file format among those of some families, and edit the settings of each.
class ZEL_API CDlgFormatSelection : public CDialogTable {
public:
    enum Control : unsigned int { CONTROL_FORMATS = 1, CONTROL_PROPERTIES = 2 };

    /// `reading` lists the formats that can be read, else those that can be written.
    CDlgFormatSelection(CWnd* parent, unsigned int kind, bool reading);
    ~CDlgFormatSelection() override;

    void OnInit() override;
    void OnControl(unsigned int id) override;
    /// Edits the settings of the current format. Formats without settings of their own: nothing.
    virtual void ShowFormatProperty(int reading, CCustomData& data);

    /// True on OK.
    bool DoModal();
    /// 0 for none.
    unsigned int GetCurrentClass() const { return m_class; }
    /// The class that the dialog starts with.
    void SetCurrentClass(unsigned int fileClass) { m_class = fileClass; }
    CWnd* GetParent() const { return m_parent; }
    /// Settings: a bag under each class.
    CCustomData& GetFormatData() { return m_data; }

private:
    CWnd* m_parent;
    bool m_reading;
    std::vector<CFileExt> m_formats;
    unsigned int m_class = 0;
    CCustomData m_data;
};
