#pragma once

// A window as this system sees it: a CWnd holds the behaviour, an IWindowPeer of the window system (windows/WindowSystem.h) shows it.

#include <vector>

#include "tools/Api.h"
#include "tools/Object.h"
#include "tools/Rect.h"
#include "tools/String.h"

class CDC;

/// Shapes of the mouse pointer. Those of navigation have the numbers of their resources.
enum MouseCursor {
    CURSOR_ARROW = 0,
    CURSOR_WAIT,
    CURSOR_CROSS,
    CURSOR_HAND,
    CURSOR_HELP,    ///< the next click asks what it hits
    CURSOR_ZOOM = 9013,
    CURSOR_PAN = 9080,
    CURSOR_TURN = 9087,           ///< about the screen's vertical axis
    CURSOR_TILT_OBJECT = 9088,    ///< about the scene's own x axis
    CURSOR_ORBIT = 9089,          ///< free rotation
    CURSOR_TILT = 9090,           ///< about the screen's horizontal axis
    CURSOR_ROLL_OBJECT = 9091,    ///< about the scene's own y axis
    CURSOR_ROLL = 9092,           ///< about the line of sight
    CURSOR_TURN_OBJECT = 9093,    ///< about the scene's own z axis
};

enum MouseButton { MOUSE_LEFT = 1, MOUSE_RIGHT = 2, MOUSE_MIDDLE = 4 };

/// Buttons and keys that are down during an event; the button of the event itself counts as the event leaves it.
enum InputState : unsigned int {
    INPUT_LEFT = 1,
    INPUT_RIGHT = 2,
    INPUT_SHIFT = 4,
    INPUT_CTRL = 8,
    INPUT_MIDDLE = 16,
    INPUT_ALT = 32,
};

/// What letting go of dragged files would do.
enum DropEffect { DROP_NONE, DROP_OPEN, DROP_ADD };

/// The window system's side of a window. All points and rectangles are in device pixels of the client area unless told otherwise.
class ZEL_API IWindowPeer {
public:
    virtual ~IWindowPeer();
    virtual void Invalidate(const CRect* area) = 0;    ///< null: all of it. Paints later, several requests at once
    virtual CRect GetClientRect() const = 0;           ///< left and top are 0
    /// Asks for OnTimer every so many milliseconds; a running timer of the id starts anew. Ticks that could not be delivered in time are dropped.
    virtual void SetTimer(unsigned int id, unsigned int milliseconds) = 0;
    virtual void KillTimer(unsigned int id) = 0;
    virtual void SetCapture(bool on) = 0;
    virtual void SetCursor(MouseCursor cursor) = 0;
    virtual void SetFocus() = 0;
    virtual void SetTitle(const CXTString<wchar_t>& title) = 0;
    virtual void Show(bool on) = 0;
    virtual void Enable(bool on) = 0;
    virtual CPoint ClientToScreen(const CPoint& point) const = 0;
    virtual CPoint ScreenToClient(const CPoint& point) const = 0;
    /// Asks the window to close once the event under way is done: CWnd::OnClose, and its end unless that refuses.
    virtual void PostClose() = 0;
    /// Calls CWnd::OnCommand with the number once the event under way is done.
    virtual void PostCommand(unsigned int id) = 0;
    /// Number of the X11 window, for a GL surface; null where there is none: the picture is then drawn off screen and handed to PresentPixels.
    virtual void* GetNativeHandle() const = 0;
    /// Shows a picture in the window: `height` lines from top to bottom of `width` pixels of four bytes (red, green, blue, unused). Copied.
    virtual void PresentPixels(const unsigned char* pixels, int width, int height) = 0;
};

/// A window. Without a peer it is a valid object that shows nothing: that is what an off-screen view is.
///
/// Events arrive on the thread that made the peer. Every point is in the window's own device pixels.
class ZEL_API CWnd : public CXObject {
public:
    CWnd();
    ~CWnd() override;    ///< the peer goes with it
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    const CXRuntimeClass* GetRuntimeClassDescriptor() const override;
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();

    // Life

    /// Once the peer is there, before anything else arrives; -1 refuses the window.
    virtual int OnCreate();
    /// The user wants to close the window; false keeps it open.
    virtual bool OnClose();
    /// The last event: the peer is still there.
    virtual void OnDestroy();
    virtual void OnActivate(bool active);
    virtual void OnEnable(bool enabled);

    // Picture

    virtual void OnPaint();
    /// Before OnPaint; true when the background is dealt with.
    virtual bool OnEraseBkgnd(CDC* dc);
    virtual void OnSize(int width, int height);
    virtual void OnTimer(unsigned int id);

    // Mouse and keys. `state`: InputState

    virtual void OnMouseMove(unsigned int state, const CPoint& point);
    /// A double click arrives as press, release, press with `doubleClick`, release.
    virtual void OnMouseButton(MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point);
    /// `delta`: 120 a notch, away from the user positive.
    virtual void OnMouseWheel(unsigned int state, short delta, const CPoint& point);
    virtual void OnMouseLeave();
    /// Another window has taken the mouse: a drag under way is over.
    virtual void OnCaptureLost();
    /// Sets the pointer's shape; false leaves the arrow.
    virtual bool OnSetCursor(const CPoint& point);
    /// A right click that nothing else used, or the menu key. `screen`: in pixels of the screen. True when a menu was shown.
    virtual bool OnContextMenu(const CPoint& screen);
    /// True when the key (VirtualKey) was used; otherwise the parent window gets it.
    virtual bool OnKey(unsigned int key, unsigned int state);
    virtual void OnFocus(bool on);
    /// A number that a menu, a bar or PostCommand sends.
    virtual void OnCommand(unsigned int id);

    // Files dragged over the window

    virtual DropEffect OnDragOver(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point);
    virtual void OnDropFiles(const std::vector<CXTString<wchar_t>>& files, unsigned int state, const CPoint& point);

    /// Takes the peer over and runs OnCreate; null drops the present one, after OnDestroy. False when OnCreate refused: there is no peer then.
    bool SetPeer(IWindowPeer* peer);
    IWindowPeer* GetPeer() const { return m_peer; }
    bool HasPeer() const { return m_peer != nullptr; }
    /// The window that this one stands in or over. Set before the peer.
    void SetParent(CWnd* parent) { m_parent = parent; }
    CWnd* GetParent() const { return m_parent; }

    // Nothing happens, and rectangles are empty, without a peer.
    void Invalidate(const CRect* area = nullptr);
    CRect GetClientRect() const;
    void SetTimer(unsigned int id, unsigned int milliseconds);
    void KillTimer(unsigned int id);
    void SetCapture();
    void ReleaseCapture();
    void SetCursor(MouseCursor cursor);
    void SetFocus();
    void SetTitle(const CXTString<wchar_t>& title);
    const CXTString<wchar_t>& GetTitle() const { return m_title; }
    void Show(bool on);
    void Enable(bool on);
    CPoint ClientToScreen(const CPoint& point) const;
    CPoint ScreenToClient(const CPoint& point) const;
    void PostClose();
    void PostCommand(unsigned int id);

private:
    IWindowPeer* m_peer = nullptr;
    CWnd* m_parent = nullptr;
    CXTString<wchar_t> m_title;
};
