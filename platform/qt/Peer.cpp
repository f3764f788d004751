#include "Peer.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTimerEvent>
#include <QUrl>
#include <QWindow>

#include "Events.h"
#include "Icons.h"
#include "KeyNumbers.h"
#include "Text.h"

namespace {

QHash<const QObject*, CPeer*>& Peers()
{
    static QHash<const QObject*, CPeer*> peers;
    return peers;
}

}

CPeer::CPeer(CWnd* window, QWidget* widget) : m_window(window), m_widget(widget)
{
    Peers().insert(widget, this);
    widget->installEventFilter(this);
    widget->setAcceptDrops(true);
    QObject::connect(widget, &QObject::destroyed, this, [](QObject* gone) { Peers().remove(gone); });
}

CPeer::~CPeer()
{
    if (!m_widget)
        return;
    Peers().remove(m_widget);
    m_widget->removeEventFilter(this);
    m_widget->hide();
    DeleteLater(m_widget);
}

CPeer* CPeer::Of(const CWnd* window) { return window ? dynamic_cast<CPeer*>(window->GetPeer()) : nullptr; }

CPeer* CPeer::Around(const QWidget* widget)
{
    for (; widget; widget = widget->parentWidget())
        if (CPeer* const peer = Peers().value(widget); peer || widget->isWindow())
            return peer;
    return nullptr;
}

QWidget* CPeer::WidgetOf(const CWnd* window)
{
    for (; window; window = window->GetParent())
        if (const CPeer* const peer = Of(window))
            return peer->GetWidget();
    return nullptr;
}

// Points. Qt counts in units that a screen may show by several pixels each.

qreal CPeer::GetScale() const { return m_widget ? m_widget->devicePixelRatioF() : 1; }

CPoint CPeer::ToPixels(const QPointF& point) const
{
    const qreal scale = GetScale();
    return {qFloor(point.x() * scale), qFloor(point.y() * scale)};
}

CPoint CPeer::ToScreen(const QPointF& global) const { return ToPixels(global); }
QPoint CPeer::FromScreen(const CPoint& screen) const { return (QPointF(screen.x, screen.y) / GetScale()).toPoint(); }

CPoint CPeer::ToScreenPoint(const CPoint& point) const
{
    const CPoint origin = ToPixels(m_widget->mapToGlobal(QPointF()));
    return {point.x + origin.x, point.y + origin.y};
}

CPoint CPeer::FromScreenPoint(const CPoint& point) const
{
    const CPoint origin = ToPixels(m_widget->mapToGlobal(QPointF()));
    return {point.x - origin.x, point.y - origin.y};
}

CRect CPeer::ClientRect() const
{
    if (!m_widget)
        return {};
    const qreal scale = GetScale();
    return {0, 0, qRound(m_widget->width() * scale), qRound(m_widget->height() * scale)};
}

// Timers. Qt drops ticks that come while one waits; one that comes while its handler runs a loop of its own is dropped here.

void CPeer::StartTimer(unsigned int id, unsigned int milliseconds)
{
    StopTimer(id);
    m_timers.insert(id, {startTimer(static_cast<int>(std::max(milliseconds, 1u))), false});
}

void CPeer::StopTimer(unsigned int id)
{
    const auto found = m_timers.find(id);
    if (found == m_timers.end())
        return;
    killTimer(found->handle);
    m_timers.erase(found);
}

void CPeer::timerEvent(QTimerEvent* event)
{
    for (auto timer = m_timers.begin(); timer != m_timers.end(); ++timer) {
        if (timer->handle != event->timerId())
            continue;
        if (timer->running)
            return;
        timer->running = true;
        const unsigned int id = timer.key();
        const QPointer<CPeer> alive(this);
        {
            const CEventScope scope(CEventScope::QUIET);
            m_window->OnTimer(id);
        }
        if (!alive)
            return;
        const auto again = m_timers.find(id);
        if (again != m_timers.end())
            again->running = false;
        return;
    }
}

// The mouse. Qt keeps it with a window while a button is down; only without one it has to be taken.

void CPeer::Capture(bool on)
{
    if (on == m_captured)
        return;
    m_captured = on;
    if (on && QApplication::mouseButtons() == Qt::NoButton)
        m_widget->grabMouse();
    else if (!on && QWidget::mouseGrabber() == m_widget)
        m_widget->releaseMouse();
}

void CPeer::LoseCapture()
{
    if (!m_captured)
        return;
    Capture(false);
    const CEventScope scope;
    m_window->OnCaptureLost();
}

// Closing and commands, once the event under way is done.

void CPeer::RequestClose()
{
    PostEvent(this, [this] {
        if (m_window->OnClose())
            m_window->SetPeer(nullptr);    // and with it this object
    });
}

void CPeer::RequestCommand(unsigned int id)
{
    PostEvent(this, [this, id] { m_window->OnCommand(id); });
}

// Events

bool CPeer::SendKey(unsigned int key, unsigned int state)
{
    const CEventScope scope;
    for (CWnd* window = m_window; window; window = window->GetParent())
        if (window->OnKey(key, state))
            return true;
    return false;
}

bool CPeer::SendContextMenu(const CPoint& screen)
{
    const CEventScope scope;
    for (CWnd* window = m_window; window; window = window->GetParent())
        if (window->OnContextMenu(screen))
            return true;
    return false;
}

bool CPeer::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        const CEventScope scope;
        m_window->OnFocus(event->type() == QEvent::FocusIn);
        return false;
    }
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate: {
        if (event->type() == QEvent::WindowDeactivate)
            LoseCapture();
        const CEventScope scope;
        if (m_widget->isWindow())
            m_window->OnActivate(event->type() == QEvent::WindowActivate);
        return false;
    }
    case QEvent::Hide:
    case QEvent::WindowBlocked: LoseCapture(); return false;
    case QEvent::EnabledChange: {
        const CEventScope scope;
        m_window->OnEnable(m_widget->isEnabled());
        return false;
    }
    case QEvent::Close:
        if (!m_widget->isWindow())
            return false;
        RequestClose();
        event->ignore();
        return true;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: return DragEvent(event);
    default: return false;
    }
}

// Files that are dragged: the first window upwards that would do something with them gets them.
bool CPeer::DragEvent(QEvent* event)
{
    auto& drop = *static_cast<QDropEvent*>(event);
    std::vector<CXTString<wchar_t>> files;
    for (const QUrl& url : drop.mimeData()->urls())
        if (url.isLocalFile())
            files.push_back(FromQt(url.toLocalFile()));
    drop.ignore();
    if (files.empty())
        return false;
    const unsigned int state = GetInputState(drop.buttons(), drop.modifiers());
    const CPoint screen = ToScreenPoint(ToPixels(drop.position()));
    const CEventScope scope;
    for (CWnd* window = m_window; window; window = window->GetParent()) {
        const CPoint point = window->ScreenToClient(screen);
        if (window->OnDragOver(files, state, point) == DROP_NONE)
            continue;
        drop.setDropAction(Qt::CopyAction);
        drop.accept();
        if (event->type() == QEvent::Drop)
            PostEvent(this, [window, files, state, point] { window->OnDropFiles(files, state, point); });
        return true;
    }
    return true;
}

void SetWidgetTitle(QWidget* widget, const CXTString<wchar_t>& title) { widget->setWindowTitle(ToQt(title)); }

void SetWidgetCursor(QWidget* widget, MouseCursor cursor)
{
    if (cursor == CURSOR_ARROW)
        widget->unsetCursor();
    else
        widget->setCursor(GetCursor(cursor));
}
