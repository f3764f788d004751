#include "Menus.h"

#include <QActionGroup>
#include <QMenu>

#include <windows/Frame.h>

#include "Events.h"
#include "Icons.h"
#include "Text.h"

namespace {

// Keys are shown, not taken as Qt's shortcuts: the frame deals with all keys.
QString GetEntryText(const CMenuItem& item)
{
    const QString text = ToQt(item.text);
    return item.key.IsEmpty() ? text : text + QLatin1Char('\t') + ToQt(item.key);
}

void ShowState(QAction& action, const CMenuItem& item)
{
    action.setEnabled(item.enabled);
    action.setCheckable(item.checked);
    action.setChecked(item.checked);
    if (item.radio && !action.actionGroup())
        (new QActionGroup(&action))->addAction(&action);    // drawn as one of several
}

void AddPopup(QMenu& shown, const CMenuItem& item, CFrameWndEx* frame, const MenuChoice& choose)
{
    QMenu* const popup = shown.addMenu(ToQt(item.text));
    popup->menuAction()->setEnabled(item.enabled);
    if (item.icon)
        popup->setIcon(GetIcon(item.icon));
    CCustomMenu* const menu = item.popup.get();
    FillMenu(*popup, *menu, frame, choose);    // a popup without entries would not open
    QObject::connect(popup, &QMenu::aboutToShow, popup, [popup, menu, frame, choose] {
        if (frame) {
            const CEventScope scope;
            frame->OnInitMenuPopup(*menu);
        }
        FillMenu(*popup, *menu, frame, choose);
    });
}

void AddEntry(QMenu& shown, const CMenuItem& item, CFrameWndEx* frame, const MenuChoice& choose)
{
    const unsigned int id = item.id;
    QAction* const action = shown.addAction(GetEntryText(item));
    action->setData(id);
    ShowState(*action, item);
    if (item.icon)
        action->setIcon(GetIcon(item.icon));
    QObject::connect(action, &QAction::triggered, action, [id, choose] { choose(id); });
    if (frame)
        QObject::connect(action, &QAction::hovered, action, [id, frame] {
            const CEventScope scope(CEventScope::QUIET);
            frame->OnMenuSelect(id);
        });
}

}

void FillMenu(QMenu& shown, const CCustomMenu& menu, CFrameWndEx* frame, const MenuChoice& choose)
{
    shown.clear();
    for (QMenu* const former : shown.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        DeleteLater(former);
    for (const CMenuItem& item : menu.items)
        if (item.separator)
            shown.addSeparator();
        else if (item.popup)
            AddPopup(shown, item, frame, choose);
        else
            AddEntry(shown, item, frame, choose);
}

void RefreshMenu(QMenu& shown, const CCustomMenu& menu)
{
    const QList<QAction*> actions = shown.actions();
    if (actions.size() != static_cast<qsizetype>(menu.items.size()))
        return;    // it is filled anew when it opens
    for (std::size_t i = 0; i < menu.items.size(); i++)
        if (const CMenuItem& item = menu.items[i]; !item.separator && !item.popup && actions[i]->data().toUInt() == item.id)
            ShowState(*actions[i], item);
}
