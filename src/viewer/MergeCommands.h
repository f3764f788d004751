#pragma once

// Other scenes join the current one.

#include "viewer/3DCommand.h"

/// Merges files. Asks nothing when 'PATH' of the parameters (PARAM_PATH) names the file, or the folder.
class ZEL_API C3DMerge : public C3DCommand {
public:
    C3DMerge();
    void UpdateState() override;
    CommandResult OnApplyCommand() override;

protected:
    C3DMerge(unsigned int id, bool byFolder);

private:
    using C3DCommand::OnApplyCommand;
    /// False when the user chooses nothing. `folder`: where they come from, when they are those of folders.
    bool ChooseFiles(CXArray<CXTString<wchar_t>>& files, CXTString<wchar_t>& folder);
    bool ChooseFolders(CXArray<CXTString<wchar_t>>& files, CXTString<wchar_t>& folder);
    /// The scene that the files join: the current one, or a new one in its place; false when the user thinks better of it.
    bool PrepareTarget(const CXTString<wchar_t>& folder);
    void MergeFiles(const CXArray<CXTString<wchar_t>>& files);

    const bool m_byFolder;
};

/// Merges all 3D files of folders, into the current scene or into a new one.
class ZEL_API C3DMergeFolder : public C3DMerge {
public:
    C3DMergeFolder();
};
