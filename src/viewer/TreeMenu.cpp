#include "viewer/TreeMenu.h"

#include "viewer/Texts.h"
#include "windows/Menu.h"

void FillTreeMenu(CCustomMenu& menu, std::initializer_list<TreeMenuEntry> entries)
{
    for (const TreeMenuEntry& entry : entries) {
        CCustomMenu& place = entry.popup ? *menu.FindPopup(LoadText(entry.popup)) : menu;
        place.AddItem(entry.id, LoadText(entry.text), entry.enabled);
    }
}
