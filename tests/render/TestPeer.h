#pragma once

#include "windows/Window.h"

/// Stands for the toolkit's side of a window.
class CTestPeer : public IWindowPeer {
public:
    int invalidated = 0;
    unsigned int timer = 0, period = 0;

    void Invalidate(const CRect*) override { invalidated++; }
    CRect GetClientRect() const override { return {0, 0, 64, 64}; }
    void SetTimer(unsigned int id, unsigned int milliseconds) override
    {
        timer = id;
        period = milliseconds;
    }
    void KillTimer(unsigned int) override { timer = 0; }
    void SetCapture(bool) override {}
    void SetCursor(MouseCursor) override {}
    void SetFocus() override {}
    void SetTitle(const CXTString<wchar_t>&) override {}
    void Show(bool) override {}
    void Enable(bool) override {}
    CPoint ClientToScreen(const CPoint& point) const override { return point; }
    CPoint ScreenToClient(const CPoint& point) const override { return point; }
    void PostClose() override {}
    void PostCommand(unsigned int) override {}
    void* GetNativeHandle() const override { return const_cast<CTestPeer*>(this); }
    void PresentPixels(const unsigned char*, int, int) override {}
};
