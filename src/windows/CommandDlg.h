#pragma once

#include "windows/Command.h"
#include "windows/Dialog.h"

/// Dialog of a command: its values are the command's parameters.
class ZEL_API CCommandDlg : public CDialogTable {
public:
    explicit CCommandDlg(CZelCommand* command);
    ~CCommandDlg() override;

    /// 1 when the user accepts: the command's parameters hold what was chosen. 0, with them as before, otherwise.
    int OpenDialog(CWnd* parent);
    /// Tells the command of a change (CZelCommand::OnUpdateFromDialog).
    void DialogChange();
    bool ValidateCommand();
    void CancelCommand();
    CZelCommand* GetCommand() const { return m_command; }

    bool OnOk() override;
    void OnCancel() override;

private:
    CZelCommand* m_command;
};
