#pragma once

#include <QKeyCombination>
#include <Qt>

class QKeyEvent;

/// Number (VirtualKey) of the key of an event; 0 for none that has one. `state`: InputState of the keyboard, as a command's key counts it.
unsigned int GetVirtualKey(const QKeyEvent& event, unsigned int& state);

/// InputState of buttons and keys.
unsigned int GetInputState(Qt::MouseButtons buttons, Qt::KeyboardModifiers keys);

/// What Qt calls a key.
QKeyCombination GetQtKey(unsigned int key, unsigned int state);
