#pragma once

#include <vector>

#include "viewer/3DCommand.h"
#include "viewer/CommandPopup.h"

/// The files that the user opened last, newest first, in a small text file of the user's settings. Programs that run side by side share it.
class ZEL_API CRecentFiles {
public:
    static constexpr std::size_t MOST_FILES = 10;

    /// Those that are still there.
    static std::vector<CXTString<wchar_t>> Get();
    /// Puts it first. False when it could not be kept.
    static bool Add(const CXTString<wchar_t>& path);
};

/// Popup of the recent files; applied, it opens the newest one that isn't shown.
class ZEL_API C3DRecentCommand : public C3DCommand {
public:
    C3DRecentCommand();

    CommandResult OnApplyCommand() override;
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int first) override;
    unsigned int GetPopupCmdState(unsigned int id) override;
    int DoPopupCmd(unsigned int id) override;

private:
    using C3DCommand::OnApplyCommand;
    CommandResult Open(const CXTString<wchar_t>& path);

    CCommandPopup m_popup{this};
    std::vector<CXTString<wchar_t>> m_files;    ///< of the popup
};
