#pragma once

#include <vector>

#include <QString>

class CDialogTable;
class QWidget;

/// Shows the pages until OK (true) or cancel.
bool RunDialogWindow(QWidget* parent, const QString& title, const std::vector<CDialogTable*>& pages);

/// The page whose control has the focus gets a key first; false when it has no use for it, or the window is no such dialog.
bool SendDialogKey(QWidget* window, unsigned int key, unsigned int state);
