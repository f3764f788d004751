#include "files/FileDialog.h"

#include "files/FileExt.h"
#include "tools/FilePath.h"
#include "windows/Window.h"

bool fileOpenFile(CWnd* parent, CXTString<wchar_t>& name, unsigned int kind, unsigned int filter)
{
    const CFileDialogRequest request{true, false, kind, filter, CFileNameSpec(name)};
    std::vector<CFileNameSpec> chosen;
    if (!GetWindowSystem().ChooseFiles(parent, request, chosen) || chosen.empty())
        return false;
    name = chosen.front().GetFullName();
    return true;
}

bool fileOpenFiles(CWnd* parent, CXArray<CXTString<wchar_t>>& names, unsigned int kind, unsigned int filter)
{
    names.RemoveAll();
    const CFileDialogRequest request{true, true, kind, filter, {}};
    std::vector<CFileNameSpec> chosen;
    if (!GetWindowSystem().ChooseFiles(parent, request, chosen))
        return false;
    for (const CFileNameSpec& file : chosen)
        names.Add(file.GetFullName());
    return !names.IsEmpty();
}

bool fileSaveFile(CWnd* parent, CFileNameSpec& name, unsigned int kind, unsigned int filter)
{
    const CFileDialogRequest request{false, false, kind, filter, name};
    std::vector<CFileNameSpec> chosen;
    if (!GetWindowSystem().ChooseFiles(parent, request, chosen) || chosen.empty() || chosen.front().IsEmpty())
        return false;
    name = chosen.front();
    // A format chosen in the dialog brings its extension with it.
    CFileExt format;
    if (fileGetExtensionInfo(name.GetGivenClass(), &format) && !format.HasExtension(name.GetExtension()))
        name.SetFullName(name.GetFullName() + format.GetMainExtension());
    return true;
}
