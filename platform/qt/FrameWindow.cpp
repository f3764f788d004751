#include "FrameWindow.h"

#include <map>
#include <vector>

#include <QGuiApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>

#include <windows/Frame.h>

#include "DockPanes.h"
#include "Events.h"
#include "Icons.h"
#include "Menus.h"
#include "Peer.h"
#include "StatusPanes.h"
#include "Text.h"
#include "ToolButtons.h"

namespace {

class CFramePeer;
std::vector<CFramePeer*> g_frames;

class CFramePeer : public TPeer<IFramePeer> {
public:
    CFramePeer(CFrameWndEx* frame, QMainWindow* window);
    ~CFramePeer() override;

    void MenuChanged() override;
    void ToolbarsChanged() override { m_bars.Update(); }
    void StatusChanged() override { m_status.Update(); }
    void SetCentralWindow(CWnd* window) override;
    void AttachPane(unsigned int id, CCustomDockablePane* pane, DockSide side, bool shown) override
    {
        m_docks.Attach(id, pane, side, shown);
    }
    void DetachPane(unsigned int id) override { m_docks.Detach(id); }
    void ShowPane(unsigned int id, bool on) override { m_docks.Show(id, on); }
    bool IsPaneShown(unsigned int id) const override { return m_docks.IsShown(id); }
    void SetFullScreen(bool on) override;
    CWindowPlacement GetPlacement() const override;
    void SetPlacement(const CWindowPlacement& placement) override;
    void Show(bool on) override;

    void OnIdle() { m_frame->OnIdle(); }

private:
    struct Popup {
        CXTString<wchar_t> text;
        const CCustomMenu* menu;
        friend bool operator==(const Popup&, const Popup&) = default;
    };
    void FillMenuBar();
    void Choose(unsigned int id);

    CFrameWndEx* m_frame;
    QMainWindow* m_main;
    CToolButtons m_bars;
    CStatusPanes m_status;
    CDockPanes m_docks;
    std::vector<Popup> m_popups;    ///< that the menu bar has now
    bool m_fullScreen = false, m_maximized = false;
};

CFramePeer::CFramePeer(CFrameWndEx* frame, QMainWindow* window)
    : TPeer(frame, window), m_frame(frame), m_main(window), m_bars(frame, window), m_status(frame, window), m_docks(frame, window)
{
    g_frames.push_back(this);
    m_main->setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowNestedDocks | QMainWindow::AllowTabbedDocks);
    m_main->menuBar()->setNativeMenuBar(false);    // the frame hears when a popup opens
    m_main->menuBar()->hide();
}

CFramePeer::~CFramePeer() { std::erase(g_frames, this); }

// The menu bar. Its popups are filled when they open; here they are told apart from those that it has.

void CFramePeer::MenuChanged()
{
    std::vector<Popup> wanted;
    for (const CMenuItem& item : m_frame->GetMenuBar().items)
        wanted.push_back({item.text, item.popup.get()});
    if (wanted != m_popups) {
        m_popups = std::move(wanted);
        FillMenuBar();
        return;
    }
    for (QAction* const action : m_main->menuBar()->actions())
        if (QMenu* const open = action->menu(); open && open->isVisible())
            for (const CMenuItem& item : m_frame->GetMenuBar().items)
                if (item.popup && ToQt(item.text) == action->text())
                    RefreshMenu(*open, *item.popup);
}

void CFramePeer::FillMenuBar()
{
    QMenuBar& bar = *m_main->menuBar();
    for (QAction* const action : bar.actions()) {
        bar.removeAction(action);
        DeleteLater(action->menu() ? static_cast<QObject*>(action->menu()) : action);
    }
    for (const CMenuItem& item : m_frame->GetMenuBar().items) {
        if (!item.popup) {
            QAction* const action = bar.addAction(ToQt(item.text));
            QObject::connect(action, &QAction::triggered, action, [this, id = item.id] { Choose(id); });
            continue;
        }
        QMenu* const popup = bar.addMenu(ToQt(item.text));
        CCustomMenu* const menu = item.popup.get();
        QObject::connect(popup, &QMenu::aboutToShow, popup, [this, popup, menu] {
            const CEventScope scope;
            m_frame->OnInitMenuPopup(*menu);
            FillMenu(*popup, *menu, m_frame, [this](unsigned int id) { Choose(id); });
        });
        QObject::connect(popup, &QMenu::aboutToHide, popup, [this] {
            const CEventScope scope;
            m_frame->OnMenuSelect(0);
        });
    }
    bar.setVisible(!m_fullScreen && !m_frame->GetMenuBar().IsEmpty());
}

void CFramePeer::Choose(unsigned int id)
{
    PostEvent(this, [this, id] { m_frame->OnCommand(id); });    // when the menu has gone
}

// The middle

void CFramePeer::SetCentralWindow(CWnd* window)
{
    if (QWidget* const former = m_main->takeCentralWidget())
        former->hide();
    QWidget* const widget = window && CPeer::Of(window) ? CPeer::Of(window)->GetWidget() : nullptr;
    if (!widget)
        return;
    m_main->setCentralWidget(widget);
    widget->show();
    widget->setFocus();
}

// Full screen, and the place on the screen

void CFramePeer::SetFullScreen(bool on)
{
    if (on == m_fullScreen)
        return;
    m_fullScreen = on;
    m_bars.Hide(on);
    m_docks.Hide(on);
    m_status.Hide(on);
    m_main->menuBar()->setVisible(!on && !m_frame->GetMenuBar().IsEmpty());
    if (on) {
        m_maximized = m_main->isMaximized();
        m_main->showFullScreen();
    } else if (m_maximized)
        m_main->showMaximized();
    else
        m_main->showNormal();
    if (m_main->centralWidget())
        m_main->centralWidget()->setFocus();
}

CWindowPlacement CFramePeer::GetPlacement() const
{
    CWindowPlacement placement;
    const QRect place = m_main->normalGeometry().isEmpty() ? m_main->geometry() : m_main->normalGeometry();
    const CPoint first = ToScreen(place.topLeft()), last = ToScreen(place.topLeft() + QPoint(place.width(), place.height()));
    placement.rect = {first.x, first.y, last.x, last.y};
    placement.maximized = m_fullScreen ? m_maximized : m_main->isMaximized();
    return placement;
}

// A place that no screen shows any more is moved to where its title can be reached.
void CFramePeer::SetPlacement(const CWindowPlacement& placement)
{
    constexpr int LEAST = 200;
    if (placement.rect.Width() > 0 && placement.rect.Height() > 0) {
        QRect place(FromScreen({placement.rect.left, placement.rect.top}),
                    FromScreen({placement.rect.right, placement.rect.bottom}) - QPoint(1, 1));
        if (QGuiApplication::platformName() != QStringLiteral("offscreen")) {    // where no screen limits a picture
            const QScreen* screen = QGuiApplication::screenAt(place.center());
            const QRect room = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
            place.setSize(place.size().expandedTo({LEAST, LEAST}).boundedTo(room.size()));
            place.moveLeft(std::clamp(place.left(), room.left(), room.left() + room.width() - place.width()));
            place.moveTop(std::clamp(place.top(), room.top(), room.top() + room.height() - place.height()));
        }
        m_main->setGeometry(place);
    }
    if (placement.maximized)
        m_main->setWindowState(m_main->windowState() | Qt::WindowMaximized);
}

void CFramePeer::Show(bool on)
{
    m_main->setVisible(on);
    if (!on)
        return;
    m_main->raise();
    m_main->activateWindow();
    if (m_main->centralWidget())
        m_main->centralWidget()->setFocus();
}

class CMainWindow : public QMainWindow {
public:
    explicit CMainWindow(QWidget* parent) : QMainWindow(parent, Qt::Window)
    {
        const QRect room = screen()->availableGeometry();
        resize(room.width() * 3 / 4, room.height() * 3 / 4);
        setWindowIcon(GetIcon(PROGRAM_ICON));
    }
};

}

IFramePeer* CreateFrameWindow(CFrameWndEx* frame, QWidget* parent) { return new CFramePeer(frame, new CMainWindow(parent)); }

void TellFramesIdle()
{
    for (CFramePeer* const frame : std::vector<CFramePeer*>(g_frames))
        if (std::find(g_frames.begin(), g_frames.end(), frame) != g_frames.end())
            frame->OnIdle();
}

int GetFrameCount() { return static_cast<int>(g_frames.size()); }

bool OpenMenuByKey(QWidget* window, int key)
{
    auto* const frame = qobject_cast<QMainWindow*>(window);
    if (!frame || !frame->menuBar()->isVisible())
        return false;
    for (QAction* const action : frame->menuBar()->actions()) {
        const QString text = action->text();
        const qsizetype mark = text.indexOf(QLatin1Char('&'));
        if (mark < 0 || mark + 1 >= text.size() || text[mark + 1].toUpper().unicode() != key)
            continue;
        frame->menuBar()->setActiveAction(action);
        return true;
    }
    return false;
}
