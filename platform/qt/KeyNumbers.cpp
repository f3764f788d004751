#include "KeyNumbers.h"

#include <QKeyEvent>

#include <iterator>
#include <string>

#include <windows/Keys.h>
#include <windows/Window.h>

namespace {

struct KeyPair {
    int qt;
    unsigned int key;
};

constexpr KeyPair KEYS[] = {
    {Qt::Key_Backspace, VK_BACK}, {Qt::Key_Tab, VK_TAB},       {Qt::Key_Backtab, VK_TAB},     {Qt::Key_Return, VK_RETURN},
    {Qt::Key_Enter, VK_RETURN},   {Qt::Key_Escape, VK_ESCAPE}, {Qt::Key_Space, VK_SPACE},     {Qt::Key_PageUp, VK_PRIOR},
    {Qt::Key_PageDown, VK_NEXT},  {Qt::Key_End, VK_END},       {Qt::Key_Home, VK_HOME},       {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},          {Qt::Key_Right, VK_RIGHT},   {Qt::Key_Down, VK_DOWN},       {Qt::Key_Insert, VK_INSERT},
    {Qt::Key_Delete, VK_DELETE},  {Qt::Key_Shift, VK_SHIFT},   {Qt::Key_Control, VK_CONTROL}, {Qt::Key_Alt, VK_MENU},
};

// What the digits of the numeric block are while NumLock is off, or Shift is down: X turns them into these. Delete stays what it says.
constexpr KeyPair NUMERIC[] = {
    {Qt::Key_Insert, VK_NUMPAD0},   {Qt::Key_End, VK_NUMPAD0 + 1},    {Qt::Key_Down, VK_NUMPAD0 + 2},  {Qt::Key_PageDown, VK_NUMPAD0 + 3},
    {Qt::Key_Left, VK_NUMPAD0 + 4}, {Qt::Key_Clear, VK_NUMPAD0 + 5},  {Qt::Key_Right, VK_NUMPAD0 + 6}, {Qt::Key_Home, VK_NUMPAD0 + 7},
    {Qt::Key_Up, VK_NUMPAD0 + 8},   {Qt::Key_PageUp, VK_NUMPAD0 + 9}, {Qt::Key_Comma, VK_DECIMAL},     {Qt::Key_Period, VK_DECIMAL},
};

// Signs. Keyboards without numeric block have them too, there often with Shift, which then belongs to the sign.
constexpr KeyPair SIGNS[] = {
    {Qt::Key_Plus, VK_ADD},
    {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Asterisk, VK_MULTIPLY},
    {Qt::Key_Slash, VK_DIVIDE},
};

template <std::size_t COUNT> unsigned int Find(const KeyPair (&pairs)[COUNT], int qt)
{
    for (const KeyPair& pair : pairs)
        if (pair.qt == qt)
            return pair.key;
    return 0;
}

// By the place on the keyboard: letters of keyboards that write no Latin ones, and the row of digits, which some write with Shift.
unsigned int FindByPlace(unsigned int code)
{
    struct Row {
        unsigned int first;
        const char* keys;
    };
    constexpr Row ROWS[] = {{10, "1234567890"}, {24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};
    for (const Row& row : ROWS)
        if (code >= row.first && code < row.first + std::char_traits<char>::length(row.keys))
            return static_cast<unsigned char>(row.keys[code - row.first]);
    return 0;
}

}

unsigned int GetInputState(Qt::MouseButtons buttons, Qt::KeyboardModifiers keys)
{
    unsigned int state = 0;
    const auto add = [&](bool on, InputState bit) { state |= on ? static_cast<unsigned int>(bit) : 0; };
    add(buttons & Qt::LeftButton, INPUT_LEFT);
    add(buttons & Qt::RightButton, INPUT_RIGHT);
    add(buttons & Qt::MiddleButton, INPUT_MIDDLE);
    add(keys & Qt::ShiftModifier, INPUT_SHIFT);
    add(keys & Qt::ControlModifier, INPUT_CTRL);
    add(keys & Qt::AltModifier, INPUT_ALT);
    return state;
}

unsigned int GetVirtualKey(const QKeyEvent& event, unsigned int& state)
{
    const int key = event.key();
    state = GetInputState({}, event.modifiers());
    const bool numeric = event.modifiers() & Qt::KeypadModifier;
    if (numeric && key >= Qt::Key_0 && key <= Qt::Key_9)
        return VK_NUMPAD0 + (key - Qt::Key_0);
    if (numeric)
        if (const unsigned int found = Find(NUMERIC, key))
            return found;
    if (const unsigned int found = Find(SIGNS, key)) {
        if (!numeric)
            state &= ~INPUT_SHIFT;
        return found;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
        return key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return VK_F1 + (key - Qt::Key_F1);
    if (const unsigned int found = Find(KEYS, key))
        return found;
    return key < Qt::Key_Escape ? FindByPlace(event.nativeScanCode()) : 0;
}

QKeyCombination GetQtKey(unsigned int key, unsigned int state)
{
    Qt::KeyboardModifiers keys;
    keys.setFlag(Qt::ShiftModifier, state & INPUT_SHIFT);
    keys.setFlag(Qt::ControlModifier, state & INPUT_CTRL);
    keys.setFlag(Qt::AltModifier, state & INPUT_ALT);
    int qt = static_cast<int>(key);
    if (key >= VK_NUMPAD0 && key <= VK_DIVIDE) {
        keys |= Qt::KeypadModifier;
        qt = key <= VK_NUMPAD9 ? Qt::Key_0 + static_cast<int>(key - VK_NUMPAD0) : Qt::Key_Period;
        for (const KeyPair& sign : SIGNS)
            if (sign.key == key)
                qt = sign.qt;
    } else if (key >= VK_F1 && key <= VK_F24)
        qt = Qt::Key_F1 + static_cast<int>(key - VK_F1);
    else
        for (const KeyPair& pair : KEYS)
            if (pair.key == key) {
                qt = pair.qt;
                break;
            }
    return QKeyCombination(keys, static_cast<Qt::Key>(qt));
}
