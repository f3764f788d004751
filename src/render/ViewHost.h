#pragma once

#include "tools/Api.h"

class CDC;

/// Kinds of change that C3DView reports to its host.
enum _SCENE_CHANGES : unsigned int {
    SCENE_CHANGED_TIME = 32,
};

/// Who shows a view in a window and hears of what happens there. A view off screen has none.
class ZEL_API IViewHost {
public:
    virtual ~IViewHost();

    /// What changed (_SCENE_CHANGES), of what object or material, and whether views are to be redrawn.
    virtual void SceneChanged(unsigned int what, unsigned int id, bool redraw) = 0;
    /// Draws over the finished picture, in the view's context.
    virtual void DrawOverlay(CDC* dc) = 0;
};
