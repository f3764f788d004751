// The steps around a parser that are in force now: the up axis on the way in, nothing on the way out: the
// scene goes to the parser as it stands. Each further step joins these functions in its place.

#include "io/Checkout.h"

#include "io/3DParser.h"
#include "scene/3DScene.h"
#include "tools/FileExt.h"
#include "tools/FileIo.h"
#include "tools/Window.h"

void CheckoutImport(C3DScene& scene, CSceneImportOptions& options)
{
    if (options.flags & IMPORT_NO_CHECKOUT)
        return;
    if (scene.OrientScene(options.upAxis, true))
        options.AddLogInfo(IoLogInfo::INFORMATION, L"Change scene orientation");
}

C3DScene* InitExport(C3DScene& scene, CSceneExportOptions& options)
{
    options.exportScene = nullptr;
    return &scene;
}

void ReleaseExport(CSceneExportOptions& options)
{
    DeleteMe(options.exportScene);
    options.exportScene = nullptr;
}

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
