#pragma once

#include "files/IoOptions.h"
#include "scene/3DScene.h"

/// Whether cameras, lights or motion alone make a scene: `setting` in the bag of the options asks for that, and there are some.
inline bool IsShapelessScene(C3DScene& scene, const CIoOptions& options, unsigned int setting)
{
    bool asked = false;
    return options.GetCustomData().GetBool(setting, asked) && asked &&
           (scene.GetChildCount(nullptr, OBJECT_CAMERA | OBJECT_LIGHT) > 0 || scene.GetTimeRange(KEY_ANY).end > 0);
}
