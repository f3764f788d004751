#include "files/FileDialog.h"

#include "files/FileExt.h"
#include "tools/FilePath.h"
#include "windows/WindowSystem.h"

static constexpr unsigned int STRING_ALL_FORMATS = 7433;

// All formats together first, then each.
static std::vector<CFileFilter> GetFilters(unsigned int kind, bool reading)
{
    std::vector<CFileFilter> filters;
    CFileFilter all;
    all.name.LoadStringW(STRING_ALL_FORMATS);
    for (const CFileExt& format : fileGetExtensions(kind, reading ? FILE_KIND_READ : FILE_KIND_WRITE)) {
        CFileFilter& filter = filters.emplace_back();
        filter.name = format.description;
        filter.fileClass = format.fileClass;
        for (const CXTString<wchar_t>& extension : format.extensions)
            filter.patterns.push_back(L"*" + extension);
        all.patterns.insert(all.patterns.end(), filter.patterns.begin(), filter.patterns.end());
    }
    if (filters.size() > 1 && reading)
        filters.insert(filters.begin(), std::move(all));
    return filters;
}

bool fileOpenFile(CWnd* parent, CXTString<wchar_t>& name, unsigned int kind, unsigned int filter)
{
    const CFileDialogRequest request{true, false, kind, filter, CFileNameSpec(name), {}, GetFilters(kind, true)};
    std::vector<CFileNameSpec> chosen;
    if (!GetWindowSystem().ChooseFiles(parent, request, chosen) || chosen.empty())
        return false;
    name = chosen.front().GetFullName();
    return true;
}

bool fileOpenFiles(CWnd* parent, CXArray<CXTString<wchar_t>>& names, unsigned int kind, unsigned int filter)
{
    names.RemoveAll();
    const CFileDialogRequest request{true, true, kind, filter, {}, {}, GetFilters(kind, true)};
    std::vector<CFileNameSpec> chosen;
    if (!GetWindowSystem().ChooseFiles(parent, request, chosen))
        return false;
    for (const CFileNameSpec& file : chosen)
        names.Add(file.GetFullName());
    return !names.IsEmpty();
}

bool fileSaveFile(CWnd* parent, CFileNameSpec& name, unsigned int kind, unsigned int filter)
{
    const CFileDialogRequest request{false, false, kind, filter, name, {}, GetFilters(kind, false)};
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
