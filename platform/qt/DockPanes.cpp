#include "DockPanes.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QMainWindow>
#include <QVBoxLayout>

#include <windows/Frame.h>

#include "Events.h"
#include "Icons.h"
#include "Peer.h"
#include "Text.h"

namespace {

// Around the content of a pane: says how large a pane is that was never placed.
class CPaneWidget : public QWidget {
public:
    explicit CPaneWidget(QSize size) : m_size(size) { (new QVBoxLayout(this))->setContentsMargins({}); }
    QSize sizeHint() const override { return m_size; }

private:
    QSize m_size;
};

// The pane's own events are those of the widget around its content.
class CPanePeer : public TPeer<IWindowPeer> {
public:
    CPanePeer(CCustomDockablePane* pane, QWidget* widget, QDockWidget* dock) : TPeer(pane, widget), m_dock(dock) {}
    void SetTitle(const CXTString<wchar_t>& title) override
    {
        if (m_dock)
            m_dock->setWindowTitle(ToQt(title));
    }

private:
    QPointer<QDockWidget> m_dock;
};

class CDock : public QDockWidget {
public:
    CDock(const QString& title, QWidget* parent, std::function<void(bool)> told) : QDockWidget(title, parent), m_told(std::move(told))
    {
        QObject::connect(toggleViewAction(), &QAction::triggered, this, m_told);
    }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        QDockWidget::closeEvent(event);
        m_told(false);
    }

private:
    std::function<void(bool)> m_told;
};

Qt::DockWidgetArea GetArea(DockSide side)
{
    switch (side) {
    case DOCK_RIGHT: return Qt::RightDockWidgetArea;
    case DOCK_TOP: return Qt::TopDockWidgetArea;
    case DOCK_BOTTOM: return Qt::BottomDockWidgetArea;
    default: return Qt::LeftDockWidgetArea;
    }
}

}

void CDockPanes::Attach(unsigned int id, CCustomDockablePane* pane, DockSide side, bool shown)
{
    if (m_docks.count(id))
        return;
    auto* const dock = new CDock(ToQt(pane->GetPaneTitle()), m_window, [this, id](bool on) {
        const CEventScope scope;
        m_docks[id].wanted = on;
        m_frame->OnPaneShown(id, on);
    });
    dock->setObjectName(QStringLiteral("pane%1").arg(id));
    dock->setWindowIcon(GetIcon(pane->GetIcon()));
    const CSize size = pane->GetDefaultSize();
    auto* const around = new CPaneWidget({size.cx, size.cy});
    dock->setWidget(around);
    if (!pane->GetParent())
        pane->SetParent(m_frame);
    if (!pane->HasPeer())
        pane->SetPeer(new CPanePeer(pane, around, dock));
    if (pane->CreateContent()) {
        QWidget* const widget = CPeer::Of(pane->GetContent())->GetWidget();
        around->layout()->addWidget(widget);
        around->setFocusProxy(widget);
        widget->show();
    }
    m_window->addDockWidget(GetArea(side), dock);
    m_docks[id] = {dock, shown};
    dock->setVisible(shown && !m_hidden);
}

void CDockPanes::Detach(unsigned int id)
{
    const auto found = m_docks.find(id);
    if (found == m_docks.end())
        return;
    QDockWidget* const dock = found->second.shown;
    m_docks.erase(found);
    m_window->removeDockWidget(dock);
    DeleteLater(dock);
}

void CDockPanes::Show(unsigned int id, bool on)
{
    const auto found = m_docks.find(id);
    if (found == m_docks.end())
        return;
    found->second.wanted = on;
    found->second.shown->setVisible(on && !m_hidden);
    if (on)
        found->second.shown->raise();    // of several in one place
}

bool CDockPanes::IsShown(unsigned int id) const
{
    const auto found = m_docks.find(id);
    return found != m_docks.end() && found->second.wanted;
}

void CDockPanes::Hide(bool on)
{
    m_hidden = on;
    for (const auto& [id, dock] : m_docks)
        dock.shown->setVisible(dock.wanted && !on);
}
