#include "render/ViewProfile.h"

#include "render/View.h"
#include "tools/Application.h"

static const wchar_t SECTION[] = L"Render";

// In the order of _VIEW_PROFILE.
static const struct {
    const wchar_t* key;
    unsigned int standard;
} VALUES[] = {
    {L"version", 0},
    {L"viewmode", VIEWFLAG_DEFAULT},
    {L"backgroundcolor", 0x808080},
    {L"selectioncolor", 0xFF},
    {L"wireframecolor", 0xFF},
    {L"lightcolor", 0xC0C0C0},
    {L"alphacut", 1},
    {L"lowres", 512},
    {L"GLExtPBuf", 1},
    {L"GLExtMSBuf", 1},
    {L"glsettings", 0},
    {L"glpixelformat", 0xFFFFFFFF},
    {L"settings", SETTINGS3D_LARGE_ICONS | SETTINGS3D_AUTO_FIT},
    {L"smoothAngle", 45},
};
static_assert(std::size(VALUES) == PROFILE_SMOOTH_ANGLE + 1);

unsigned int GetViewProfile(_VIEW_PROFILE value)
{
    IApplication* const application = GetApplication();
    return application ? application->GetProfileInt(SECTION, VALUES[value].key, VALUES[value].standard) : VALUES[value].standard;
}

void SetViewProfile(_VIEW_PROFILE value, unsigned int number)
{
    if (IApplication* const application = GetApplication())
        application->WriteProfileInt(SECTION, VALUES[value].key, number);
}

// Guards.

static std::mutex g_attempts;

CCrashGuard::CCrashGuard(_VIEW_PROFILE value) : m_turn(g_attempts, std::defer_lock), m_value(value)
{
    if (GetApplication())
        m_turn.lock();
    m_mayTry = GetViewProfile(value) != 0;
    SetViewProfile(value, 0);
}

void CCrashGuard::Succeeded() { SetViewProfile(m_value, 1); }

// What a view starts with and leaves behind.

static CRGBColor GetProfileColor(_VIEW_PROFILE value)
{
    const unsigned int number = GetViewProfile(value);
    const auto part = [=](int shift) { return static_cast<unsigned char>(number >> shift); };
    return {part(0), part(8), part(16)};
}

static void StoreViewFlags(unsigned int flags)
{
    SetViewProfile(PROFILE_VIEWMODE, flags & ~VIEWFLAG_TRANSIENT);
    SetViewProfile(PROFILE_VERSION, VIEW_PROFILE_VERSION);
}

void C3DView::LoadDefaultSettings()
{
    if (!GetApplication()) {
        m_settings.viewFlags = VIEWFLAG_DEFAULT;
        return;
    }
    if (GetViewProfile(PROFILE_VERSION) != VIEW_PROFILE_VERSION)
        StoreViewFlags(VIEWFLAG_DEFAULT);    // bits of another layout mean other things
    GlViewSettings settings;
    settings.changeMask =
        GLSET_VIEW_FLAGS | GLSET_BACKGROUND | GLSET_WIREFRAME_COLOR | GLSET_SELECTION_COLOR | GLSET_LIGHT_COLOR | GLSET_CAMERA;
    settings.viewFlags = GetViewProfile(PROFILE_VIEWMODE) & ~VIEWFLAG_TRANSIENT;
    settings.background = GetProfileColor(PROFILE_BACKGROUND);
    settings.selectionColor = GetProfileColor(PROFILE_SELECTION_COLOR);
    settings.wireframeColor = GetProfileColor(PROFILE_WIREFRAME_COLOR);
    settings.lightColor = GetProfileColor(PROFILE_LIGHT_COLOR);
    settings.SetCurrentCamera(nullptr);
    m_settings.SetCurrentCamera(nullptr);
    SetView(RVIEW_DEFAULT, 0, 0);
    C3DView::SetViewSettings(&settings);
}

void C3DView::SaveDefaultSettings()
{
    if (!IsDrawingFlagSet(GLDRAW_MEMORY))
        StoreViewFlags(m_settings.viewFlags);
}
