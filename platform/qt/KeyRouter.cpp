#include "KeyRouter.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>

#include <windows/Keys.h>

#include "DialogWindow.h"
#include "Events.h"
#include "FrameWindow.h"
#include "KeyNumbers.h"
#include "Peer.h"

namespace {

bool IsTextField(const QWidget& widget) { return widget.inputMethodQuery(Qt::ImEnabled).toBool(); }

// What moves, opens and marks in a tree or list.
bool IsMoving(unsigned int key, unsigned int state)
{
    if (state & (INPUT_CTRL | INPUT_ALT))
        return false;
    return (key >= VK_SPACE && key <= VK_DOWN) || key == VK_RETURN;
}

bool IsModifier(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta || key == Qt::Key_AltGr ||
           key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

// Windows that the user types into: the one with the focus, and no menu over it.
bool TakesKeys(const QObject* object)
{
    return object->isWidgetType() && !QApplication::activePopupWidget() &&
           (object == QApplication::focusWidget() || (!QApplication::focusWidget() && object == QApplication::activeWindow()));
}

}

CKeyRouter::CKeyRouter() { qApp->installEventFilter(this); }

bool CKeyRouter::IsDown(unsigned int key) const
{
    const Qt::KeyboardModifiers now = QGuiApplication::queryKeyboardModifiers();
    switch (key) {
    case VK_SHIFT: return now & Qt::ShiftModifier;
    case VK_CONTROL: return now & Qt::ControlModifier;
    case VK_MENU: return now & Qt::AltModifier;
    default: return m_down.count(key) != 0;
    }
}

void CKeyRouter::Note(const QKeyEvent& event)
{
    unsigned int state;
    const unsigned int key = GetVirtualKey(event, state);
    if (event.type() == QEvent::KeyPress)
        m_down.insert(key);
    else if (!event.isAutoRepeat())
        m_down.erase(key);
}

bool CKeyRouter::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ApplicationDeactivate: m_down.clear(); return false;
    case QEvent::KeyRelease:
    case QEvent::KeyPress:
        if (object->isWindowType())
            Note(*static_cast<QKeyEvent*>(event));
        if (event->type() == QEvent::KeyPress && TakesKeys(object))
            return Send(static_cast<QWidget*>(object), *static_cast<QKeyEvent*>(event));
        return false;
    case QEvent::ShortcutOverride: {
        // Qt's own shortcuts are the access keys of menus: a command's key goes before them, and OpenMenuByKey does their work.
        if (!TakesKeys(object) || IsTextField(*static_cast<QWidget*>(object)) || IsModifier(static_cast<QKeyEvent*>(event)->key()))
            return false;
        if (!qobject_cast<QMainWindow*>(static_cast<QWidget*>(object)->window()))
            return false;
        event->accept();
        return true;
    }
    default: return false;
    }
}

bool CKeyRouter::Send(QWidget* focus, const QKeyEvent& event)
{
    unsigned int state;
    const unsigned int key = GetVirtualKey(event, state);
    if (!key || IsModifier(event.key()))
        return false;
    if (SendDialogKey(focus->window(), key, state))
        return true;
    CPeer* const peer = CPeer::Around(focus);
    if (!peer || IsTextField(*focus))
        return false;
    if (qobject_cast<QAbstractItemView*>(peer->GetWidget())) {
        const CEventScope scope;
        if (peer->GetWindow()->OnKey(key, state))
            return true;
        CWnd* const around = peer->GetWindow()->GetParent();
        if (IsMoving(key, state) || !around)
            return false;
        CPeer* const next = CPeer::Of(around);
        if (next && next->SendKey(key, state))
            return true;
    } else if (peer->SendKey(key, state))
        return true;
    return state == INPUT_ALT && OpenMenuByKey(focus->window(), event.key());
}
