#pragma once

#include <optional>
#include <vector>

#include "windows/Command.h"

class C3DFrameViewer;

/// The popup of a command: what each of its entries stands for. Filled anew each time it opens, with the numbers of the former time; the frame asks
/// for the states.
class CCommandPopup {
public:
    explicit CCommandPopup(CZelCommand* command) : m_command(command) {}

    /// Forgets the entries; their numbers are free again.
    void Clear();
    /// An entry for `value`. Nothing for a command that no frame has.
    void Add(CCustomMenu& menu, const CXTString<wchar_t>& text, int value, bool radio = false);
    /// An entry that starts another command of the frame; nothing when it isn't there.
    void AddCommand(CCustomMenu& menu, unsigned int commandID);
    /// Nothing for numbers that are none of this popup's own.
    std::optional<int> GetValue(unsigned int id) const;
    /// Identifier of the other command that an entry starts; 0 for other numbers.
    unsigned int GetCommandID(unsigned int id) const;

    /// Shows what OnPopupMenu of the command gives at a point of the screen; 1, or 0 when nothing shows.
    int Open(C3DFrameViewer* frame, const CPoint& screen) const;

private:
    struct Entry {
        unsigned int id;
        int value;
    };

    CZelCommand* m_command;
    std::vector<Entry> m_entries;
};
