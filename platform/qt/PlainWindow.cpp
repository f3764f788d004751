#include "PlainWindow.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <QWheelEvent>

#include "Events.h"
#include "Icons.h"
#include "KeyNumbers.h"

namespace {

class CPlainPeer;

// On X11 the widget becomes a native window once GL asks for one; until then, and everywhere else, it paints the picture that it was given.
class CPlainWidget : public QWidget {
public:
    CPlainWidget(CWnd* window, QWidget* parent) : QWidget(parent), m_window(window)
    {
        setMouseTracking(true);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

    void SetPeer(CPlainPeer* peer) { m_peer = peer; }
    void Forget() { m_window = nullptr; }
    bool BecomeNative();
    void SetPicture(QImage picture);
    QPaintEngine* paintEngine() const override { return m_native ? nullptr : QWidget::paintEngine(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override { Button(*event, true, false); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { Button(*event, true, true); }
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void Button(QMouseEvent& event, bool down, bool doubleClick);
    void TellSize();

    CWnd* m_window;
    CPlainPeer* m_peer = nullptr;
    bool m_native = false, m_painting = false;
    QImage m_picture;
    int m_wheel = 0;
    QPoint m_rightPress;
    bool m_rightClick = false;    ///< the right button alone is down and has not moved
};

class CPlainPeer : public TPeer<IWindowPeer> {
public:
    CPlainPeer(CWnd* window, CPlainWidget* widget) : TPeer(window, widget), m_plain(widget) { widget->SetPeer(this); }
    ~CPlainPeer() override
    {
        if (m_plain)
            m_plain->Forget();
    }

    void* GetNativeHandle() const override { return m_plain->BecomeNative() ? reinterpret_cast<void*>(m_plain->winId()) : nullptr; }
    void PresentPixels(const unsigned char* pixels, int width, int height) override
    {
        m_plain->SetPicture(QImage(pixels, width, height, 4 * width, QImage::Format_RGBX8888).copy());
    }

private:
    QPointer<CPlainWidget> m_plain;
};

bool CPlainWidget::BecomeNative()
{
    if (m_native || QGuiApplication::platformName() != QLatin1String("xcb"))
        return m_native;
    m_native = true;
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_PaintOnScreen);
    setAttribute(Qt::WA_NoSystemBackground);
    return true;
}

void CPlainWidget::SetPicture(QImage picture)
{
    m_picture = std::move(picture);
    if (!m_painting)
        update();
}

bool CPlainWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal)
        TellSize();
    return QWidget::event(event);
}

void CPlainWidget::paintEvent(QPaintEvent*)
{
    m_painting = true;
    if (m_window) {
        const CEventScope scope(CEventScope::QUIET);
        m_window->OnEraseBkgnd(nullptr);
        m_window->OnPaint();
    }
    m_painting = false;
    if (m_native)
        return;
    QPainter painter(this);
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    if (m_picture.deviceIndependentSize().toSize() != size())
        painter.fillRect(rect(), palette().window());
    painter.drawImage(0, 0, m_picture);
}

void CPlainWidget::resizeEvent(QResizeEvent*) { TellSize(); }

void CPlainWidget::TellSize()
{
    if (!m_window)
        return;
    const CEventScope scope(CEventScope::QUIET);
    const CRect client = m_window->GetClientRect();
    m_window->OnSize(client.Width(), client.Height());
}

void CPlainWidget::Button(QMouseEvent& event, bool down, bool doubleClick)
{
    const MouseButton button = event.button() == Qt::LeftButton     ? MOUSE_LEFT
                               : event.button() == Qt::RightButton  ? MOUSE_RIGHT
                               : event.button() == Qt::MiddleButton ? MOUSE_MIDDLE
                                                                    : MouseButton();
    if (!button || !m_window)
        return;
    if (down) {
        m_rightClick = event.buttons() == Qt::RightButton;
        m_rightPress = event.position().toPoint();
    }
    const CEventScope scope;
    m_window->OnMouseButton(button, down, doubleClick, GetInputState(event.buttons(), event.modifiers()),
                            m_peer->ToPixels(event.position()));
}

void CPlainWidget::mouseReleaseEvent(QMouseEvent* event)
{
    const CEventScope scope;
    const bool wantsMenu = m_rightClick && event->button() == Qt::RightButton;
    const CPoint screen = m_window ? m_peer->ToScreen(event->globalPosition()) : CPoint();
    Button(*event, false, false);
    m_rightClick = false;
    if (wantsMenu && m_window)
        m_peer->SendContextMenu(screen);
}

void CPlainWidget::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->position().toPoint() - m_rightPress).manhattanLength() >= QGuiApplication::styleHints()->startDragDistance())
        m_rightClick = false;
    if (!m_window)
        return;
    const CEventScope scope(CEventScope::QUIET);
    const CPoint point = m_peer->ToPixels(event->position());
    m_window->OnMouseMove(GetInputState(event->buttons(), event->modifiers()), point);
    if (m_window && !m_window->OnSetCursor(point))
        unsetCursor();
}

// Fine wheels and touch pads send parts of a notch.
void CPlainWidget::wheelEvent(QWheelEvent* event)
{
    constexpr int NOTCH = 120;
    const QPoint delta = event->angleDelta();
    const int turn = delta.y() ? delta.y() : delta.x();    // Alt turns the wheel aside
    if ((turn > 0) != (m_wheel > 0))
        m_wheel = 0;
    m_wheel += turn;
    const int notches = m_wheel / NOTCH;
    m_wheel %= NOTCH;
    event->accept();
    if (!notches || !m_window)
        return;
    const CEventScope scope;
    m_window->OnMouseWheel(GetInputState(event->buttons(), event->modifiers()), static_cast<short>(notches * NOTCH),
                           m_peer->ToPixels(event->position()));
}

void CPlainWidget::leaveEvent(QEvent*)
{
    if (!m_window)
        return;
    const CEventScope scope(CEventScope::QUIET);
    m_window->OnMouseLeave();
}

// By the menu key; a right click opens the menu when the button goes up.
void CPlainWidget::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard && m_window)
        m_peer->SendContextMenu(m_peer->ToScreen(mapToGlobal(rect().center())));
}

}

IWindowPeer* CreatePlainPeer(CWnd* window, QWidget* parent) { return new CPlainPeer(window, new CPlainWidget(window, parent)); }
