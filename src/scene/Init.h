#pragma once

#include "tools/Api.h"

/// What Init3DZel and Close3DZel leave alone.
enum _INIT_FLAGS : unsigned int {
    INIT_NO_COMMANDS = 1,           ///< no names of command groups and categories
    INIT_NO_PLUGINS = 2,            ///< no IO plug-ins
    INIT_LINK_RESOURCES = 0x100,    ///< the caller's module sees the library's resources
};

/// Handle of a resource module. On this system resources are part of the library; the handle only tells it apart.
using HINSTANCE = const struct CResourceModule*;

/// Starts the library. Counted: only the first call does something, apart from INIT_LINK_RESOURCES, which counts every time.
ZEL_API void Init3DZel(unsigned int flags);
/// Ends what Init3DZel began. The last call saves the preferences and frees the IO plug-ins. More calls than of Init3DZel do nothing.
ZEL_API void Close3DZel(unsigned int flags);
/// The library's resource module; never null.
ZEL_API HINSTANCE Zel3DResourceHandle();
