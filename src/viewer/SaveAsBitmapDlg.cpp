#include "viewer/SaveAsBitmapDlg.h"

#include <algorithm>

#include "images/Bitmap.h"
#include "tools/FormatText.h"
#include "viewer/SaveAsBitmap.h"

namespace {

enum : unsigned int {
    TEXT_TITLE = 9866,
    TEXT_RENDER_MODE,
    TEXT_POINT_OF_VIEW,
    TEXT_ANGLE,
    TEXT_BACKGROUND,
    TEXT_WIDTH,
    TEXT_HEIGHT,
    TEXT_SMOOTH,
    TEXT_ANIMATED,
    TEXT_MOVEMENT,
    TEXT_COUNT,
    TEXT_AMPLITUDE,
};

}

C3DSaveAsBitmapDlg::C3DSaveAsBitmapDlg(C3DSaveAsBitmap* command) : CCommandDlg(command), m_owner(*command)
{
    constexpr int LEAST_ANGLE = 5, MOST_ANGLE = 85, MOST_IMAGES = 10000, MOST_DEGREES = 36000;
    title = LoadText(TEXT_TITLE);
    AddCombo(ID_RENDER_MODE, TEXT_RENDER_MODE, CImageSettings::GetRenderModeNames());
    AddPointsOfView();
    AddNumber(ID_ANGLE, TEXT_ANGLE, LEAST_ANGLE, MOST_ANGLE);
    Add(CONTROL_COLOR, ID_BACKGROUND, LoadText(TEXT_BACKGROUND));
    AddNumber(ID_WIDTH, TEXT_WIDTH, 1, BITMAP_MAX_SIDE);
    AddNumber(ID_HEIGHT, TEXT_HEIGHT, 1, BITMAP_MAX_SIDE);
    Add(CONTROL_CHECK, ID_SMOOTH, LoadText(TEXT_SMOOTH));
    Add(CONTROL_CHECK, ID_ANIMATED, LoadText(TEXT_ANIMATED));
    AddCombo(ID_MOVEMENT, TEXT_MOVEMENT, CImageSettings::GetMovementNames());
    AddNumber(ID_COUNT, TEXT_COUNT, 1, MOST_IMAGES);
    AddNumber(ID_AMPLITUDE, TEXT_AMPLITUDE, 1, MOST_DEGREES);
}

void C3DSaveAsBitmapDlg::AddNumber(unsigned int id, unsigned int text, int minimum, int maximum, bool sameRow)
{
    CControl& control = Add(CONTROL_SPIN, id, LoadText(text), sameRow);
    control.minimum = minimum;
    control.maximum = maximum;
}

void C3DSaveAsBitmapDlg::AddCombo(unsigned int id, unsigned int text, const std::vector<CXTString<wchar_t>>& names)
{
    Add(CONTROL_COMBO, id, LoadText(text)).items = names;
}

// Each item's data is its value, as a script's dialog has no present point of view.
void C3DSaveAsBitmapDlg::AddPointsOfView()
{
    std::vector<CXTString<wchar_t>> names = CImageSettings::GetPointOfViewNames();
    CXArray<CXTString<wchar_t>> userViews;
    m_owner.GetUserViewName(userViews);
    for (int i = 0; i < std::min(userViews.GetSize(), m_owner.GetUserViewSize()); i++)
        names.push_back(userViews[i]);
    AddCombo(ID_POINT_OF_VIEW, TEXT_POINT_OF_VIEW, {});
    CControl& combo = *Find(ID_POINT_OF_VIEW);
    for (unsigned int value = 0; value < names.size(); value++)
        if (value != CImageSettings::VIEW_PRESENT || !m_owner.IsScripting()) {
            combo.items.push_back(names[value]);
            combo.itemData.push_back(value);
        }
}

void C3DSaveAsBitmapDlg::OnInit()
{
    m_params.Read(m_owner.GetCustomData());
    if (m_params.pointOfView == CImageSettings::VIEW_PRESENT && m_owner.IsScripting())
        m_params.pointOfView = static_cast<unsigned int>(m_owner.GetDefaultUserView());
    const auto show = [this](unsigned int id, int number) {
        CControl& control = *Find(id);
        control.number = std::clamp(number, control.minimum, control.maximum);
    };
    const auto select = [this](unsigned int id, unsigned int entry) {
        CControl& combo = *Find(id);
        combo.selected = entry < combo.items.size() ? static_cast<int>(entry) : 0;
    };
    select(ID_RENDER_MODE, m_params.renderMode);
    const std::vector<unsigned long long>& values = Find(ID_POINT_OF_VIEW)->itemData;
    select(ID_POINT_OF_VIEW, static_cast<unsigned int>(std::find(values.begin(), values.end(), m_params.pointOfView) - values.begin()));
    show(ID_ANGLE, static_cast<int>(m_params.viewAngle));
    Find(ID_BACKGROUND)->color = m_params.background;
    show(ID_WIDTH, m_params.width);
    show(ID_HEIGHT, m_params.height);
    Find(ID_SMOOTH)->checked = m_params.smooth;
    Find(ID_ANIMATED)->checked = m_params.animated;
    select(ID_MOVEMENT, m_params.movement);
    show(ID_COUNT, m_params.imageCount);
    show(ID_AMPLITUDE, static_cast<int>(m_params.amplitude));
    UpdateEnabled();
}

void C3DSaveAsBitmapDlg::OnControl(unsigned int) { UpdateEnabled(); }

void C3DSaveAsBitmapDlg::UpdateEnabled()
{
    const CControl& view = *Find(ID_POINT_OF_VIEW);
    const auto value = view.itemData[static_cast<std::size_t>(view.selected)];
    Find(ID_ANGLE)->enabled = value >= CImageSettings::FIRST_SLANTED && value <= CImageSettings::LAST_SLANTED;
    for (const unsigned int id : {ID_MOVEMENT, ID_COUNT, ID_AMPLITUDE})
        Find(id)->enabled = Find(ID_ANIMATED)->checked;
}

bool C3DSaveAsBitmapDlg::OnOk()
{
    const CControl& view = *Find(ID_POINT_OF_VIEW);
    m_params.renderMode = static_cast<unsigned int>(Find(ID_RENDER_MODE)->selected);
    m_params.pointOfView = static_cast<unsigned int>(view.itemData[static_cast<std::size_t>(view.selected)]);
    m_params.viewAngle = static_cast<unsigned int>(Find(ID_ANGLE)->number);
    m_params.background = Find(ID_BACKGROUND)->color;
    m_params.width = Find(ID_WIDTH)->number;
    m_params.height = Find(ID_HEIGHT)->number;
    m_params.smooth = Find(ID_SMOOTH)->checked;
    m_params.animated = Find(ID_ANIMATED)->checked;
    m_params.movement = static_cast<unsigned int>(Find(ID_MOVEMENT)->selected);
    m_params.imageCount = Find(ID_COUNT)->number;
    m_params.amplitude = static_cast<unsigned int>(Find(ID_AMPLITUDE)->number);
    m_params.Write(m_owner.GetCustomData());
    return CCommandDlg::OnOk();
}
