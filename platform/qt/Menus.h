#pragma once

#include <functional>

class CCustomMenu;
class CFrameWndEx;
class QMenu;

/// What a menu does with the number of an entry.
using MenuChoice = std::function<void(unsigned int id)>;

/// Fills a menu of Qt's with the entries of a list, in place of what it had. Popups inside fill themselves when they open, after the frame has
/// brought their entries up to date. `frame`: that hears of opened popups and of what is pointed at; null for none.
void FillMenu(QMenu& shown, const CCustomMenu& menu, CFrameWndEx* frame, const MenuChoice& choose);

/// States of the entries of a menu that is open.
void RefreshMenu(QMenu& shown, const CCustomMenu& menu);
