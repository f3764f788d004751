#pragma once

/// Numbers of keys in CWnd::OnKey and CCommandAccess. Letters and digits of the main block have their capital character ('A', '0').
enum VirtualKey : unsigned int {
    VK_BACK = 0x08,
    VK_TAB = 0x09,
    VK_RETURN = 0x0D,
    VK_ESCAPE = 0x1B,
    VK_SPACE = 0x20,
    VK_PRIOR = 0x21,    ///< page up
    VK_NEXT = 0x22,     ///< page down
    VK_END = 0x23,
    VK_HOME = 0x24,
    VK_LEFT = 0x25,
    VK_UP = 0x26,
    VK_RIGHT = 0x27,
    VK_DOWN = 0x28,
    VK_INSERT = 0x2D,
    VK_DELETE = 0x2E,
    VK_NUMPAD0 = 0x60,    ///< to VK_NUMPAD0 + 9, whether the numeric block gives digits or not
    VK_NUMPAD9 = 0x69,
    VK_MULTIPLY = 0x6A,    ///< of the numeric block, as the next ones
    VK_ADD = 0x6B,
    VK_SUBTRACT = 0x6D,
    VK_DECIMAL = 0x6E,
    VK_DIVIDE = 0x6F,
    VK_F1 = 0x70,
    VK_F24 = 0x87,
    // For IWindowSystem::IsKeyDown alone.
    VK_SHIFT = 0x10,
    VK_CONTROL = 0x11,
    VK_MENU = 0x12,    ///< Alt
};
