#include "ToolButtons.h"

#include <QAction>
#include <QMainWindow>
#include <QMouseEvent>
#include <QStyleOptionToolButton>
#include <QToolBar>
#include <QToolButton>

#include <windows/Frame.h>

#include "Events.h"
#include "Icons.h"
#include "Peer.h"
#include "Text.h"

// What decides whether a bar can stay as it is.
struct CToolButtons::Shape {
    struct Button {
        unsigned int id, icon;
        bool hasMenu;
        friend bool operator==(const Button&, const Button&) = default;
    };
    bool large;
    std::vector<Button> buttons;
    friend bool operator==(const Shape&, const Shape&) = default;
};

struct CToolButtons::Bar {
    CCustomToolbar* list;
    QToolBar* shown;
    Shape shape;
    std::vector<QAction*> actions;    ///< one a button of the list
};

namespace {

constexpr int SMALL_ICON = 16, LARGE_ICON = 24;

// A bar that tells when the pointer leaves it.
class CBarWidget : public QToolBar {
public:
    CBarWidget(CFrameWndEx* frame, const QString& name, QWidget* parent) : QToolBar(name, parent), m_frame(frame) {}

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Leave) {
            const CEventScope scope(CEventScope::QUIET);
            m_frame->OnMenuSelect(0);
        }
        return QToolBar::event(event);
    }

private:
    CFrameWndEx* m_frame;
};

// A button whose arrow asks the frame for a menu.
class CArrowButton : public QToolButton {
public:
    CArrowButton(QWidget* parent, std::function<void(QPoint)> open) : QToolButton(parent), m_open(std::move(open))
    {
        setPopupMode(QToolButton::MenuButtonPopup);
        setFocusPolicy(Qt::NoFocus);
        setAutoRaise(true);
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        const QRect arrow = style()->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButtonMenu, this);
        if (event->button() == Qt::RightButton || (event->button() == Qt::LeftButton && arrow.contains(event->position().toPoint())))
            m_open(mapToGlobal(rect().bottomLeft() + QPoint(0, 1)));
        else
            QToolButton::mousePressEvent(event);
    }

private:
    std::function<void(QPoint)> m_open;
};

}

void CToolButtons::Update()
{
    const std::vector<CCustomToolbar*>& lists = m_frame->GetToolbars();
    bool same = lists.size() == m_bars.size();
    for (std::size_t i = 0; same && i < lists.size(); i++)
        same = m_bars[i]->list == lists[i];
    if (!same) {
        for (const auto& bar : m_bars) {
            m_window->removeToolBar(bar->shown);
            DeleteLater(bar->shown);
        }
        m_bars.clear();
        for (CCustomToolbar* const list : lists) {
            auto bar = std::make_shared<Bar>(Bar{list, new CBarWidget(m_frame, ToQt(list->GetName()), m_window), {}, {}});
            bar->shown->setObjectName(QStringLiteral("bar%1").arg(list->GetId()));
            m_window->addToolBar(bar->shown);
            QObject::connect(bar->shown->toggleViewAction(), &QAction::triggered, bar->shown, [list](bool on) { list->visible = on; });
            m_bars.push_back(std::move(bar));
        }
    }
    for (const auto& bar : m_bars) {
        Shape shape{bar->list->HasLargeIcons(), {}};
        for (const CToolbarButton& button : bar->list->buttons)
            shape.buttons.push_back({button.id, button.icon, button.hasMenu});
        if (!(shape == bar->shape)) {
            bar->shape = std::move(shape);
            Fill(*bar);
        }
        ShowStates(*bar);
        const bool visible = bar->list->visible && !bar->list->buttons.empty() && !m_hidden;
        if (bar->shown->isHidden() == visible)
            bar->shown->setVisible(visible);
    }
}

void CToolButtons::Hide(bool on)
{
    m_hidden = on;
    Update();
}

void CToolButtons::Fill(Bar& bar)
{
    for (QAction* const action : bar.shown->actions()) {
        bar.shown->removeAction(action);
        DeleteLater(action);
    }
    bar.actions.clear();
    const int side = bar.shape.large ? LARGE_ICON : SMALL_ICON;
    bar.shown->setIconSize({side, side});
    for (std::size_t i = 0; i < bar.list->buttons.size(); i++)
        AddButton(bar, i);
}

void CToolButtons::AddButton(Bar& bar, std::size_t index)
{
    const CToolbarButton& button = bar.list->buttons[index];
    const unsigned int id = button.id;
    if (!id) {
        bar.actions.push_back(bar.shown->addSeparator());
        return;
    }
    auto* const action = new QAction(GetIcon(button.icon), ToQt(button.text), bar.shown);
    action->setCheckable(true);
    QObject::connect(action, &QAction::triggered, bar.shown, [this, id] { Press(id); });
    QObject::connect(action, &QAction::hovered, bar.shown, [this, id] {
        const CEventScope scope(CEventScope::QUIET);
        m_frame->OnMenuSelect(id);
    });
    bar.actions.push_back(action);
    if (!button.hasMenu) {
        bar.shown->addAction(action);
        return;
    }
    auto* const arrow = new CArrowButton(bar.shown, [this, id](QPoint global) {
        PostEvent(m_window, [this, id, global] {
            if (const CPeer* const peer = CPeer::Of(m_frame))
                m_frame->OnToolbarMenu(id, peer->ToScreen(global));
        });
    });
    arrow->setDefaultAction(action);
    arrow->setIconSize(bar.shown->iconSize());
    bar.shown->addWidget(arrow);
}

// Qt has flipped the button's mark; what it shows is for the frame to say.
void CToolButtons::Press(unsigned int id)
{
    const CEventScope scope;
    for (const auto& bar : m_bars)
        ShowStates(*bar);
    PostEvent(m_window, [this, id] { m_frame->OnCommand(id); });
}

void CToolButtons::ShowStates(Bar& bar)
{
    for (std::size_t i = 0; i < bar.actions.size() && i < bar.list->buttons.size(); i++) {
        const CToolbarButton& button = bar.list->buttons[i];
        if (!button.id)
            continue;
        bar.actions[i]->setEnabled(button.enabled);
        bar.actions[i]->setChecked(button.checked);
        bar.actions[i]->setText(ToQt(button.text));
        bar.actions[i]->setToolTip(ToQt(button.text));
    }
}
