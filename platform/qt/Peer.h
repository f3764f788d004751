#pragma once

#include <functional>

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <windows/Window.h>

class CFrameWndEx;

/// What all windows share: a widget, the window whose behaviour it shows, and the events that are the same for all kinds.
///
/// The peer owns its widget, unless Qt has destroyed it with a parent. It calls the window's handlers inside a CEventScope each.
class CPeer : public QObject {
public:
    ~CPeer() override;

    CWnd* GetWindow() const { return m_window; }
    QWidget* GetWidget() const { return m_widget; }
    /// Of a window; null without window or peer of this system.
    static CPeer* Of(const CWnd* window);
    /// Of a widget or the nearest one around it in its window; null for none.
    static CPeer* Around(const QWidget* widget);
    static QWidget* WidgetOf(const CWnd* window);

    /// Pixels of the screen a unit of Qt's.
    qreal GetScale() const;
    CPoint ToPixels(const QPointF& point) const;
    CPoint ToScreen(const QPointF& global) const;
    QPoint FromScreen(const CPoint& screen) const;

    /// Up the windows until one uses the key.
    bool SendKey(unsigned int key, unsigned int state);
    bool SendContextMenu(const CPoint& screen);

protected:
    CPeer(CWnd* window, QWidget* widget);
    bool eventFilter(QObject* object, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

    // Of IWindowPeer
    CRect ClientRect() const;
    void StartTimer(unsigned int id, unsigned int milliseconds);
    void StopTimer(unsigned int id);
    void Capture(bool on);
    CPoint ToScreenPoint(const CPoint& point) const;
    CPoint FromScreenPoint(const CPoint& point) const;
    void RequestClose();
    void RequestCommand(unsigned int id);

private:
    bool DragEvent(QEvent* event);
    void LoseCapture();

    CWnd* m_window;
    QPointer<QWidget> m_widget;
    struct Timer {
        int handle;
        bool running;
    };
    QHash<unsigned int, Timer> m_timers;
    bool m_captured = false;
};

void SetWidgetTitle(QWidget* widget, const CXTString<wchar_t>& title);
void SetWidgetCursor(QWidget* widget, MouseCursor cursor);

/// The peer of a kind of window.
template <class Interface> class TPeer : public Interface, public CPeer {
public:
    TPeer(CWnd* window, QWidget* widget) : CPeer(window, widget) {}

    void Invalidate(const CRect* area) override
    {
        if (!area)
            GetWidget()->update();
        else {
            const qreal scale = GetScale();
            GetWidget()->update(
                QRectF(area->left / scale, area->top / scale, area->Width() / scale, area->Height() / scale).toAlignedRect());
        }
    }
    CRect GetClientRect() const override { return ClientRect(); }
    void SetTimer(unsigned int id, unsigned int milliseconds) override { StartTimer(id, milliseconds); }
    void KillTimer(unsigned int id) override { StopTimer(id); }
    void SetCapture(bool on) override { Capture(on); }
    void SetCursor(MouseCursor cursor) override { SetWidgetCursor(GetWidget(), cursor); }
    void SetFocus() override { GetWidget()->setFocus(); }
    void SetTitle(const CXTString<wchar_t>& title) override { SetWidgetTitle(GetWidget(), title); }
    void Show(bool on) override { GetWidget()->setVisible(on); }
    void Enable(bool on) override { GetWidget()->setEnabled(on); }
    CPoint ClientToScreen(const CPoint& point) const override { return ToScreenPoint(point); }
    CPoint ScreenToClient(const CPoint& point) const override { return FromScreenPoint(point); }
    void PostClose() override { RequestClose(); }
    void PostCommand(unsigned int id) override { RequestCommand(id); }
    void* GetNativeHandle() const override { return nullptr; }
    void PresentPixels(const unsigned char*, int, int) override {}
};
