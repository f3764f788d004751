#include "windows/CommandDlg.h"

#include "windows/WindowSystem.h"

CCommandDlg::CCommandDlg(CZelCommand* command) : m_command(command) {}
CCommandDlg::~CCommandDlg() = default;

int CCommandDlg::OpenDialog(CWnd* parent)
{
    CCustomData before;
    if (m_command)
        m_command->GetParameters(before);
    if (RunDialog(parent, title, {this}))
        return 1;
    if (m_command)
        m_command->SetParameters(before);
    return 0;
}

void CCommandDlg::DialogChange()
{
    if (m_command)
        m_command->OnUpdateFromDialog(0);
}

bool CCommandDlg::ValidateCommand() { return !m_command || m_command->OnValidateDialog(0) != 0; }

void CCommandDlg::CancelCommand()
{
    if (m_command)
        m_command->OnCancelDialog(0);
}

bool CCommandDlg::OnOk() { return ValidateCommand(); }

void CCommandDlg::OnCancel() { CancelCommand(); }
