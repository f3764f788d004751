#include "windows/Toolbar.h"

#include <algorithm>

static constexpr unsigned int Block(unsigned int order) { return order >> 16; }

void CCustomToolbar::InitToolbar(unsigned int id, const CXTString<wchar_t>& name)
{
    m_id = id;
    m_name = name;
    buttons.clear();
}

CToolbarButton& CCustomToolbar::InsertButton(unsigned int id, const CXTString<wchar_t>& text, unsigned int icon, unsigned int order)
{
    CToolbarButton button;
    button.id = id;
    button.order = order;
    button.text = text;
    button.icon = icon;
    std::erase_if(buttons, [](const CToolbarButton& other) { return other.id == 0; });
    buttons.insert(std::find_if(buttons.begin(), buttons.end(), [&](const CToolbarButton& other) { return other.order > order; }), button);
    for (std::size_t i = 1; i < buttons.size(); i++)
        if (buttons[i - 1].id && Block(buttons[i - 1].order) != Block(buttons[i].order))
            buttons.insert(buttons.begin() + static_cast<std::ptrdiff_t>(i++), CToolbarButton());
    return *FindButton(id);
}

CToolbarButton* CCustomToolbar::FindButton(unsigned int id)
{
    const auto found = std::find_if(buttons.begin(), buttons.end(), [&](const CToolbarButton& button) { return button.id == id; });
    return found != buttons.end() ? &*found : nullptr;
}
