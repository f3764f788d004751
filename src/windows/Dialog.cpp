#include "windows/Dialog.h"

#include "windows/WindowSystem.h"

IDialogPeer::~IDialogPeer() = default;

CDialogTable::CDialogTable() = default;
CDialogTable::~CDialogTable() = default;
void CDialogTable::OnInit() {}
void CDialogTable::OnControl(unsigned int) {}
void CDialogTable::OnSliderEnd(unsigned int) {}
bool CDialogTable::OnKey(unsigned int, unsigned int, unsigned int) { return false; }
bool CDialogTable::OnOk() { return true; }
bool CDialogTable::OnApply() { return true; }
void CDialogTable::OnCancel() {}

CControl& CDialogTable::Add(ControlKind kind, unsigned int id, const CXTString<wchar_t>& text, bool sameRow)
{
    const int last = controls.empty() ? -1 : controls.back().row;
    CControl& control = controls.emplace_back();
    control.kind = kind;
    control.id = id;
    control.text = text;
    control.row = sameRow && last >= 0 ? last : last + 1;
    return control;
}

CControl* CDialogTable::Find(unsigned int id)
{
    for (CControl& control : controls)
        if (control.id == id)
            return &control;
    return nullptr;
}

void CDialogTable::Refresh()
{
    if (peer)
        peer->ControlsChanged();
}

bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages)
{
    for (CDialogTable* const page : pages)
        page->OnInit();
    if (GetWindowSystem().RunDialog(parent, title, pages))
        return true;
    for (CDialogTable* const page : pages)
        page->OnCancel();
    return false;
}
