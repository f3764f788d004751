#include "windows/Menu.h"

#include <algorithm>

CMenuItem::CMenuItem() = default;
CMenuItem::~CMenuItem() = default;
CMenuItem::CMenuItem(CMenuItem&&) noexcept = default;
CMenuItem& CMenuItem::operator=(CMenuItem&&) noexcept = default;

CCustomMenu::CCustomMenu() = default;
CCustomMenu::~CCustomMenu() = default;

static constexpr unsigned int Block(unsigned int order) { return order >> 16; }

static CMenuItem Separator()
{
    CMenuItem item;
    item.separator = true;
    return item;
}

CMenuItem& CCustomMenu::AddItem(unsigned int id, const CXTString<wchar_t>& text, bool enabled, bool checked)
{
    CMenuItem& item = items.emplace_back();
    item.id = id;
    item.text = text;
    item.enabled = enabled;
    item.checked = checked;
    return item;
}

CMenuItem& CCustomMenu::InsertItem(unsigned int id, const CXTString<wchar_t>& text, unsigned int order)
{
    // What has no order (popups, entries of hosts) stays behind what has one.
    const auto after = [&](const CMenuItem& item) { return !item.separator && (item.order == 0 || item.order > order); };
    auto place = std::find_if(items.begin(), items.end(), after);
    if (place != items.end()) {
        if (place != items.begin() && (place - 1)->separator)
            place--;
        if (!place->separator && Block(place->order) != Block(order))
            place = items.insert(place, Separator());
    }
    if (place != items.begin() && !(place - 1)->separator && Block((place - 1)->order) != Block(order))
        place = items.insert(place, Separator()) + 1;
    place = items.emplace(place);
    place->id = id;
    place->text = text;
    place->order = order;
    return *place;
}

void CCustomMenu::AddMenuSeparator()
{
    if (!items.empty() && !items.back().separator)
        items.push_back(Separator());
}

CCustomMenu* CCustomMenu::GetPopup(const CXTString<wchar_t>& text) const
{
    for (const CMenuItem& item : items)
        if (item.popup && item.text == text)
            return item.popup.get();
    return nullptr;
}

CCustomMenu* CCustomMenu::FindPopup(const CXTString<wchar_t>& text)
{
    if (CCustomMenu* const popup = GetPopup(text))
        return popup;
    CMenuItem& item = AddItem(0, text);
    item.popup = std::make_unique<CCustomMenu>();
    return item.popup.get();
}

CMenuItem* CCustomMenu::FindItem(unsigned int id)
{
    for (CMenuItem& item : items) {
        if (item.popup) {
            if (CMenuItem* const found = item.popup->FindItem(id))
                return found;
        } else if (!item.separator && item.id == id)
            return &item;
    }
    return nullptr;
}

void CCustomMenu::Tidy()
{
    for (CMenuItem& item : items)
        if (item.popup)
            item.popup->Tidy();
    std::erase_if(items, [](const CMenuItem& item) { return item.popup && item.popup->IsEmpty(); });
    const auto doubled = [](const CMenuItem& a, const CMenuItem& b) { return a.separator && b.separator; };
    items.erase(std::unique(items.begin(), items.end(), doubled), items.end());
    if (!items.empty() && items.front().separator)
        items.erase(items.begin());
    if (!items.empty() && items.back().separator)
        items.pop_back();
}
