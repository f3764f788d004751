#pragma once

#include "scene/Forward.h"
#include "tools/Api.h"

class CDC;

/// Kind of change of IViewHost::ViewChangedScene: the scene's time.
constexpr unsigned int VIEW_CHANGED_TIME = 32;

/// Who shows a view in a window and hears of what happens there. A view off screen has none.
class ZEL_API IViewHost {
public:
    virtual ~IViewHost();

    /// The view has changed the scene. `what`: kinds of change, VIEW_CHANGED_TIME alone so far; `node`, `material`: of what, null and 0xFFFFFFFF for all of it;
    /// `redraw`: views are to be brought up to date.
    virtual void ViewChangedScene(unsigned int what, C3DSceneNode* node, unsigned int material, bool redraw) = 0;
    /// The picture is finished, and its context current: the host may draw over it.
    virtual void ViewDrawn(CDC* dc) = 0;
};
