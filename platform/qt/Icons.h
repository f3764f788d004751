#pragma once

#include <QCursor>
#include <QIcon>

#include <windows/Window.h>

/// Number of the program's own icon.
constexpr unsigned int PROGRAM_ICON = 9000;

/// Icon of a resource number, always in the colours of the palette in force; empty for a number without one.
QIcon GetIcon(unsigned int id);

QCursor GetCursor(MouseCursor cursor);
