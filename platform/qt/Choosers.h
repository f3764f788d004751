#pragma once

#include <QString>

#include <windows/WindowSystem.h>

class QWidget;

bool ChooseFilesWindow(QWidget* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen);
bool ChooseFoldersWindow(QWidget* parent, const QString& title, bool several, std::vector<CXTString<wchar_t>>& folders);
/// Lines with tabs become a table with the help mark-up; any other text stands as it is.
void ShowReportWindow(QWidget* parent, const QString& title, const CXTString<wchar_t>& text);
MessageAnswer ShowMessageWindow(QWidget* parent, const QString& title, const CXTString<wchar_t>& text, MessageButtons buttons);
