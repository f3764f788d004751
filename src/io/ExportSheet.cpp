#include "io/ExportSheet.h"

#include "files/FileExt.h"
#include "files/FileIo.h"
#include "io/3DParser.h"
#include "windows/WindowSystem.h"

bool ShowExportSheet(C3DParser& parser, CSceneExportOptions&)
{
    // The page has no controls yet: the user can agree or cancel.
    CFileExt format;
    if (parser.GetFileIo())
        fileGetExtensionInfo(parser.GetFileIo()->GetClass(), &format);
    CXTString<wchar_t> title(L"%s Saving Settings");
    title.Replace(L"%s", format.GetMainExtension());
    CDialogTable page;
    page.title = L"Options";
    return RunDialog(parser.GetParent(), title, {&page});
}
