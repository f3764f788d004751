#include "viewer/3DFileList.h"

#include <algorithm>

#include "images/LayerBitmap.h"
#include "io/3DIo.h"
#include "render/SceneBitmap.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/CaughtException.h"
#include "viewer/FrameViewer.h"
#include "viewer/LateProgress.h"
#include "viewer/Texts.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

// What is read is what is shown; a former document is kept by whoever shows it.
constexpr int KEPT_SCENES = 1;

// Why a file could not be read: what came of it, then what its parser had to say.
Text GetReason(const C3DIo& io, const CSceneImportOptions& options)
{
    constexpr std::size_t MOST_LINES = 8;
    const Text result = io.GetResultText();
    std::vector<Text> lines;
    if (!result.IsEmpty())
        lines.push_back(result);
    for (const IoLogInfo& line : options.GetLog())
        if (line.level != IoLogInfo::INFORMATION && lines.size() < MOST_LINES &&
            std::find(lines.begin(), lines.end(), line.text) == lines.end())
            lines.push_back(line.text);
    Text reason;
    for (const Text& line : lines)
        reason += (reason.IsEmpty() ? Text() : Text(L"\n")) + line;
    return reason;
}

}

C3DFileList::C3DFileList(C3DFrameViewer* frame) : CDocumentFileList(KEPT_SCENES), m_frame(frame) {}

C3DFileList::~C3DFileList() { ClearCache(); }

DocumentFileInfo* C3DFileList::GetDocumentFileInfo(const CFileNameSpec& name) const { return new DocumentFileInfo{name}; }

void C3DFileList::DeleteDocument(void* document) const
{
    if (document)
        DeleteMe(static_cast<C3DScene*>(document));
}

void* C3DFileList::ReadDocument(const DocumentFileInfo* info, unsigned int mode, CWnd* parent) const
{
    const Text& path = info->name.GetFullName();
    if (void* const known = FindInCache(path))
        return known;
    const std::lock_guard guard(GetLock());
    C3DScene* const scene = ReadScene(info->name, mode, parent);
    if (scene)
        AddDocumentToCache(path, scene);
    return scene;
}

C3DScene* C3DFileList::ReadScene(const CFileNameSpec& name, unsigned int mode, CWnd* parent)
{
    const bool silent = mode & READMODE_SILENT, asks = mode & READMODE_ASK && !silent;
    // Unless the user is asked for options, what there is to tell waits until the progress window is gone.
    C3DIo io(name, FILEIO_READ | (asks ? 0u : FILEIO_SILENT), parent);
    CSceneImportOptions options;
    C3DScene* scene = nullptr;
    {
        const CLateProgress progress(parent, FormatText(TEXT_READING, name.GetFileName()));
        CatchAll([&] { scene = asks ? io.Read(true, nullptr) : io.Read(false, &options); });    // the log holds what was thrown
    }
    const bool untold = !asks || io.GetLastResult() == IORESULT_NO_PARSER;
    if (!scene && !silent && untold && io.GetLastResult() != IORESULT_CANCELLED)
        GetWindowSystem().ShowMessage(parent, name.GetFileName(), GetReason(io, options), MESSAGE_OK);
    return scene;
}

CLayerBitmap* C3DFileList::GetDocumentBitmap(const DocumentFileInfo* info, const CSize& size, unsigned int mode, CWnd* parent) const
{
    return GetBitmapFromScene(m_frame, static_cast<C3DScene*>(ReadDocument(info, mode, parent)), size);
}

CLayerBitmap* C3DFileList::GetBitmapFromScene(C3DFrameViewer* frame, C3DScene* scene, CSize size)
{
    if (!frame || !scene || !frame->Get3DView())
        return nullptr;
    return ::GetBitmapFromScene(scene, *frame->Get3DView()->GetViewSettings(), size);
}
