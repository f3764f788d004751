#pragma once

#include "scene/Forward.h"
#include "viewer/DocumentFileList.h"

class C3DFrameViewer;

/// The scenes that a frame has open.
class ZEL_API C3DFileList : public CDocumentFileList {
public:
    explicit C3DFileList(C3DFrameViewer* frame);
    ~C3DFileList() override;

    DocumentFileInfo* GetDocumentFileInfo(const CFileNameSpec& name) const override;
    void DeleteDocument(void* document) const override;
    /// A C3DScene. Reading shows its progress over `parent`, and can be cancelled there.
    void* ReadDocument(const DocumentFileInfo* info, unsigned int mode, CWnd* parent) const override;
    CLayerBitmap* GetDocumentBitmap(const DocumentFileInfo* info, const CSize& size, unsigned int mode, CWnd* parent) const override;
    /// A new scene, the caller's, of a file that is in no list; null, with the reason told as ReadDocument does.
    static C3DScene* ReadScene(const CFileNameSpec& name, unsigned int mode, CWnd* parent);
    /// The scene as the frame's view would show it, on white, at twice the size and reduced; the caller's. Null without frame, scene or driver.
    static CLayerBitmap* GetBitmapFromScene(C3DFrameViewer* frame, C3DScene* scene, CSize size);

private:
    C3DFrameViewer* m_frame;
};
