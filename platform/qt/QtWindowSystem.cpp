#include "QtWindowSystem.h"

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QWindow>

#include <windows/CustomList.h>
#include <windows/CustomTree.h>
#include <windows/Frame.h>

#include "Choosers.h"
#include "DialogWindow.h"
#include "Events.h"
#include "FrameWindow.h"
#include "Icons.h"
#include "KeyNumbers.h"
#include "ListView.h"
#include "Menus.h"
#include "Notice.h"
#include "Peer.h"
#include "Pictures.h"
#include "PlainWindow.h"
#include "Progress.h"
#include "Questions.h"
#include "Text.h"
#include "TreeView.h"

// Exported by the toolkit for its own tests: a key as the system would send it, by access keys, through menus, dialogs and fields.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* window, ulong time, int key, Qt::KeyboardModifiers keys, const QString& text = {},
                                               bool repeat = false, ushort count = 1);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers keys, const QString& text = {},
                                    bool repeat = false, ushort count = 1);

CQtWindowSystem::CQtWindowSystem()
{
    SetIdleHandler([this] {
        TellFramesIdle();
        if (m_running && GetFrameCount() == 0 && !m_exitCode)
            Quit(0);
    });
}

// Windows

static QWidget* WidgetOf(const CWnd* window) { return CPeer::WidgetOf(window); }

// Dialogs stand over windows, not inside of panes.
static QWidget* DialogParent(const CWnd* parent)
{
    QWidget* const widget = WidgetOf(parent);
    return widget ? widget->window() : QApplication::activeWindow();
}

bool CQtWindowSystem::CreateWindowPeer(CWnd* window, CWnd* parent, const CXTString<wchar_t>& title, const CRect& rect)
{
    const CEventScope scope;
    if (parent && !window->GetParent())
        window->SetParent(parent);
    IWindowPeer* const made = CreatePlainPeer(window, WidgetOf(parent));
    QWidget* const widget = dynamic_cast<CPeer*>(made)->GetWidget();
    widget->setWindowTitle(ToQt(title));
    if (rect.Width() > 0 && rect.Height() > 0) {
        const qreal scale = widget->devicePixelRatioF();
        widget->setGeometry(QRectF(rect.left / scale, rect.top / scale, rect.Width() / scale, rect.Height() / scale).toRect());
    }
    if (!window->SetPeer(made))
        return false;
    if (CPeer::Of(parent) && !dynamic_cast<CFrameWndEx*>(parent))    // in a frame or a pane it shows once it has its place
        widget->show();
    return true;
}

bool CQtWindowSystem::CreateFramePeer(CFrameWndEx* frame, CWnd* parent, const CXTString<wchar_t>& title)
{
    const CEventScope scope;
    IFramePeer* const made = CreateFrameWindow(frame, WidgetOf(parent));
    made->SetTitle(title);
    return frame->SetPeer(made);
}

bool CQtWindowSystem::CreateTreePeer(CCustomTree* tree, CWnd* parent)
{
    const CEventScope scope;
    if (parent && !tree->GetParent())
        tree->SetParent(parent);
    return tree->SetPeer(CreateTreeView(tree, WidgetOf(parent)));
}

bool CQtWindowSystem::CreateListPeer(CCustomList* list, CWnd* parent)
{
    const CEventScope scope;
    if (parent && !list->GetParent())
        list->SetParent(parent);
    return list->SetPeer(CreateListView(list, WidgetOf(parent)));
}

// The loop

int CQtWindowSystem::Run()
{
    if (GetFrameCount() > 0 && !m_exitCode) {
        m_running = true;
        RunPostedEvents();
        QApplication::exec();
        m_running = false;
    }
    return std::exchange(m_exitCode, {}).value_or(0);
}

void CQtWindowSystem::Quit(int exitCode)
{
    m_exitCode = exitCode;
    QCoreApplication::exit(exitCode);
}

void CQtWindowSystem::PumpEvents()
{
    RunPostedEvents();
    if (!CEventScope::IsOpen())
        AskForIdle();    // what a program does by itself changes states too
    QCoreApplication::processEvents();
    RunPostedEvents();
}

bool CQtWindowSystem::IsKeyDown(unsigned int key) { return m_keys.IsDown(key); }

// Menus and questions

// The entries, a line each.
static CXTString<wchar_t> ToText(const CCustomMenu& menu)
{
    CXTString<wchar_t> text;
    for (const CMenuItem& item : menu.items)
        if (!item.separator)
            text += item.text + L"\n";
    return text;
}

static QAction* FindEntry(const QMenu& menu, const QString& text)
{
    for (QAction* const action : menu.actions()) {
        if (action->menu()) {
            if (QAction* const found = FindEntry(*action->menu(), text))
                return found;
        } else if (WithoutAccessKey(action->text().section(QLatin1Char('\t'), 0, 0)) == WithoutAccessKey(text))
            return action;
    }
    return nullptr;
}

unsigned int CQtWindowSystem::TrackPopup(CWnd* parent, CCustomMenu& menu, const CPoint& screen)
{
    const CEventScope scope;
    CFrameWndEx* frame = nullptr;
    for (CWnd* window = parent; window && !frame; window = window->GetParent())
        frame = dynamic_cast<CFrameWndEx*>(window);
    const CPeer* const peer = CPeer::Around(WidgetOf(parent));
    QMenu shown(WidgetOf(parent));
    unsigned int chosen = 0;
    FillMenu(shown, menu, frame, [&](unsigned int id) { chosen = id; });
    const COpenQuestion question(shown, {L"menu", {}, ToText(menu), {}}, [&](const QString& answer) {
        QAction* const entry = FindEntry(shown, answer);
        if (answer != QLatin1String("cancel") && (!entry || !entry->isEnabled()))
            return false;
        if (entry)
            chosen = entry->data().toUInt();
        shown.close();
        return true;
    });
    shown.exec(peer ? peer->FromScreen(screen) : QPoint(screen.x, screen.y));
    if (frame)
        frame->OnMenuSelect(0);
    return chosen;
}

MessageAnswer CQtWindowSystem::ShowMessage(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                                           MessageButtons buttons)
{
    return ShowMessageWindow(DialogParent(parent), ToQt(title), text, buttons);
}

bool CQtWindowSystem::ShowNotice(CWnd* parent, unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title,
                                 const CXTString<wchar_t>& text)
{
    return ShowNoticeBubble(DialogParent(parent), id, milliseconds, title, text);
}

void CQtWindowSystem::ShowReport(CWnd* parent, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text)
{
    ShowReportWindow(DialogParent(parent), ToQt(title), text);
}

bool CQtWindowSystem::ChooseFiles(CWnd* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen)
{
    return ChooseFilesWindow(DialogParent(parent), request, chosen);
}

bool CQtWindowSystem::ChooseFolders(CWnd* parent, const CXTString<wchar_t>& title, bool several, std::vector<CXTString<wchar_t>>& folders)
{
    return ChooseFoldersWindow(DialogParent(parent), ToQt(title), several, folders);
}

bool CQtWindowSystem::ChooseColor(CWnd* parent, CRGBColor& color)
{
    const CEventScope scope;
    QColorDialog dialog(QColor(color.red, color.green, color.blue), DialogParent(parent));
    const COpenQuestion question(dialog, {L"color", {}, {}, {}}, [&dialog](const QString& answer) {
        const bool ok = answer == QLatin1String("ok");
        if (ok || answer == QLatin1String("cancel"))
            ok ? dialog.accept() : dialog.reject();
        return !dialog.isVisible();
    });
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const QColor chosen = dialog.currentColor();
    color = CRGBColor(static_cast<unsigned char>(chosen.red()), static_cast<unsigned char>(chosen.green()),
                      static_cast<unsigned char>(chosen.blue()), color.alpha);
    return true;
}

bool CQtWindowSystem::RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages)
{
    return RunDialogWindow(DialogParent(parent), ToQt(title), pages);
}

void CQtWindowSystem::SetWaitCursor(bool on)
{
    if (on)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

IProgressSink* CQtWindowSystem::CreateProgress(CWnd* parent, const CXTString<wchar_t>& title)
{
    return CreateProgressWindow(DialogParent(parent), ToQt(title));
}

bool CQtWindowSystem::GetClipboardText(CXTString<wchar_t>& text)
{
    text = FromQt(QGuiApplication::clipboard()->text());
    return !text.IsEmpty();
}

bool CQtWindowSystem::SetClipboardText(const CXTString<wchar_t>& text)
{
    QGuiApplication::clipboard()->setText(ToQt(text));
    return true;
}

// For scripts

void CQtWindowSystem::SendKey(unsigned int key, unsigned int state)
{
    QWindow* window = QGuiApplication::focusWindow();
    if (QWidget* const popup = QApplication::activePopupWidget())
        window = popup->windowHandle();
    else if (QWidget* const modal = QApplication::activeModalWidget())
        window = modal->windowHandle();
    if (!window)
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && !window)
                window = widget->windowHandle();
    if (!window)
        return;
    const QPointer<QWindow> alive(window);
    if (QGuiApplication::focusWindow() != window) {    // it has just come up, or a dialog over it has gone
        window->requestActivate();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    if (!alive)
        return;
    const QKeyCombination qt = GetQtKey(key, state);
    const bool isText = !(state & (INPUT_CTRL | INPUT_ALT)) && qt.key() >= Qt::Key_Space && qt.key() <= Qt::Key_AsciiTilde;
    QString text = isText ? QString(QChar(qt.key())) : QString();
    if (!(state & INPUT_SHIFT))
        text = text.toLower();
    if (!qt_sendShortcutOverrideEvent(window, 0, qt.key(), qt.keyboardModifiers(), text) && alive)
        qt_handleKeyEvent(window, QEvent::KeyPress, qt.key(), qt.keyboardModifiers(), text);
    if (alive)
        qt_handleKeyEvent(window, QEvent::KeyRelease, qt.key(), qt.keyboardModifiers(), text);
}

// What GL has drawn into windows of their own is not among the toolkit's pixels: it comes from the screen.
static void AddNativePixels(QPainter& painter, QWidget& window)
{
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (!widget->testAttribute(Qt::WA_PaintOnScreen) || !widget->isVisible())
            continue;
        const QPixmap pixels = widget->screen()->grabWindow(widget->winId());
        painter.drawPixmap(QRect(widget->mapTo(&window, QPoint()), widget->size()), pixels);
    }
}

static bool StandsOver(const QWidget& over, const QWidget& window)
{
    for (const QWidget* parent = over.parentWidget(); parent; parent = parent->parentWidget())
        if (parent == &window)
            return true;
    return false;
}

Bitmap* CQtWindowSystem::GrabWindow(CWnd* window)
{
    QWidget* const widget = WidgetOf(window);
    if (!widget)
        return nullptr;
    QPixmap picture = widget->grab();
    QPainter painter(&picture);
    AddNativePixels(painter, *widget);
    for (QWidget* const over : QApplication::topLevelWidgets())    // dialogs and menus that stand over it
        if (over->isVisible() && over->windowType() != Qt::ToolTip && StandsOver(*over, *widget->window()))
            painter.drawPixmap(over->mapToGlobal(QPoint()) - widget->mapToGlobal(QPoint()), over->grab());
    painter.end();
    return FromQt(picture.toImage());
}

std::vector<CShownQuestion> CQtWindowSystem::GetShownQuestions() { return COpenQuestion::GetAll(); }

bool CQtWindowSystem::AnswerQuestion(const CXTString<wchar_t>& answer) { return COpenQuestion::AnswerLast(ToQt(answer)); }
