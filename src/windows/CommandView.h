#pragma once

#include "windows/Window.h"

class CCommandMgr;

/// A window whose mouse, keys and overlay belong to the current command of a frame. Without manager it is a plain window.
class ZEL_API CCommandView : public CWnd {
public:
    CCommandView();
    ~CCommandView() override;

    void SetCommandMgr(CCommandMgr* manager) { m_manager = manager; }
    CCommandMgr* GetCommandMgr() const { return m_manager; }

    bool OnEraseBkgnd(CDC* dc) override;
    void OnMouseMove(unsigned int state, const CPoint& point) override;
    void OnMouseButton(MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point) override;
    /// What the command leaves goes to OnUnusedWheel.
    void OnMouseWheel(unsigned int state, short delta, const CPoint& point) override;
    void OnCaptureLost() override;
    bool OnSetCursor(const CPoint& point) override;
    bool OnKey(unsigned int key, unsigned int state) override;
    /// Over the finished picture, in the view's own context: the current command draws.
    virtual void OnDraw(CDC* dc);

protected:
    virtual void OnUnusedWheel(unsigned int state, short delta, const CPoint& point);

private:
    CCommandMgr* m_manager = nullptr;
};
