#pragma once

#include <mutex>

#include "tools/Api.h"

/// Numbers of the "Render" section of the application's profile, read whenever they are needed. Without an application they have their standard
/// values, and writing does nothing.
enum _VIEW_PROFILE : unsigned int {
    PROFILE_VERSION,    ///< layout of the stored values, now VIEW_PROFILE_VERSION
    PROFILE_VIEWMODE,
    PROFILE_BACKGROUND,    ///< colours as 0x00BBGGRR
    PROFILE_SELECTION_COLOR,
    PROFILE_WIREFRAME_COLOR,
    PROFILE_LIGHT_COLOR,
    PROFILE_ALPHA_CUT,      ///< the alpha of textures is a mask
    PROFILE_LOW_RES,        ///< largest side of a texture under VIEWFLAG_ECONOMY
    PROFILE_PBUFFER,        ///< try a PBuffer off screen
    PROFILE_MULTISAMPLE,    ///< try a multisampled window
    PROFILE_GL_SETTINGS,    ///< bit 0: GLDRAW_ALT_FORMAT
    PROFILE_PIXEL_FORMAT,
    PROFILE_SETTINGS,        ///< Settings3DFrame
    PROFILE_SMOOTH_ANGLE,    ///< smooth angle that a user last chose freely, degrees
};
constexpr unsigned int VIEW_PROFILE_VERSION = 3;

ZEL_API unsigned int GetViewProfile(_VIEW_PROFILE value);
ZEL_API void SetViewProfile(_VIEW_PROFILE value, unsigned int number);

/// Bits of PROFILE_SETTINGS.
enum Settings3DFrame : unsigned int {
    SETTINGS3D_LARGE_ICONS = 0x100,
    SETTINGS3D_AUTO_FIT = 0x1000,      ///< a new scene is fitted, and the clipping planes follow a new size
    SETTINGS3D_USE_CAMERA = 0x2000,    ///< the default point of view is the scene's first camera
};

/// Guards an attempt that a bad driver may not survive: the profile's value is 0 while the attempt goes on, and 1 again only when it went well.
/// A driver that dies leaves 0, and the next start does not try. With an application, threads make their attempts one after the other, else
/// the value of one's attempt would be another's crash.
class ZEL_API CCrashGuard {
public:
    explicit CCrashGuard(_VIEW_PROFILE value);
    bool MayTry() const { return m_mayTry; }
    void Succeeded();

private:
    std::unique_lock<std::mutex> m_turn;
    _VIEW_PROFILE m_value;
    bool m_mayTry;
};
