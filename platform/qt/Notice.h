#pragma once

#include <windows/Window.h>

class QWidget;

/// A bubble over a window, which stays so many milliseconds, or until it is closed. False when the user wants that one no more.
bool ShowNoticeBubble(QWidget* parent, unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title,
                      const CXTString<wchar_t>& text);
