#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "render/GLViewSettings.h"
#include "scene/Preferences.h"
#include "tools/FourCC.h"

// Saved points of view: binary values of a nested bag.

namespace {

constexpr unsigned int SAVED_VIEWS = FourCC("GLSG");

struct SavedView {
    std::uint32_t valid, viewFlags, viewNumber;
    float matrix[16];
    unsigned char unused[188];
};
static_assert(sizeof(SavedView) == 264);

unsigned int KeyOf(unsigned int id) { return id ? id : SAVED_VIEWS; }

// What is missing, of another size, or makes no sense is not there.
bool Find(const CCustomData& bag, unsigned int id, SavedView& view)
{
    const CCustomData* const views = bag.GetCustomData(SAVED_VIEWS);
    if (!views->GetData(KeyOf(id), &view, sizeof view) || view.valid != 1 || view.viewNumber > RVIEW_RIGHT_BOTTOM_BACK)
        return false;
    return view.viewNumber != RVIEW_CUSTOM ||
           std::all_of(std::begin(view.matrix), std::end(view.matrix), [](float value) { return std::isfinite(value); });
}

}

bool C3DPreferences::HasDefaultGLViewSettings(unsigned int id) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    SavedView view;
    return Find(m_bag, id, view);
}

bool C3DPreferences::GetDefaultGLViewSettings(GlViewSettings& settings, unsigned int id) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER;
    settings.viewFlags = VIEWFLAG_DEFAULT;
    settings.viewNumber = RVIEW_FRONT;
    SavedView view;
    if (!Find(m_bag, id, view) && !Find(m_bag, 0, view))
        return false;
    settings.viewFlags = view.viewFlags & ~VIEWFLAG_TRANSIENT;
    settings.viewNumber = static_cast<_RVIEW_FLAG>(view.viewNumber);
    if (settings.viewNumber == RVIEW_CUSTOM) {
        settings.changeMask |= GLSET_MATRIX;
        std::memcpy(settings.matrix.m, view.matrix, sizeof view.matrix);
    }
    return true;
}

void C3DPreferences::SetDefaultGLViewSettings(const GlViewSettings& settings, unsigned int id)
{
    SavedView view = {1, settings.viewFlags & ~VIEWFLAG_TRANSIENT, settings.viewNumber, {}, {}};
    std::memcpy(view.matrix, settings.matrix.m, sizeof view.matrix);
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bag.MakeCustomData(SAVED_VIEWS).SetData(KeyOf(id), &view, sizeof view);
    m_changed = true;
}

void C3DPreferences::RemoveDefaultGLViewSettings(unsigned int id)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    CCustomData* const views = m_bag.GetCustomData(SAVED_VIEWS);
    if (!views || !views->Remove(KeyOf(id)))
        return;
    if (views->IsEmpty())
        m_bag.Remove(SAVED_VIEWS);
    m_changed = true;
}
