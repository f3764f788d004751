#pragma once

#include <string>
#include <vector>

#include <3dzel.h>

/// What a picture shows and how.
struct PictureSettings {
    CSize size{1280, 720};
    unsigned int viewFlags = VIEWFLAG_DEFAULT & ~VIEWFLAG_ECONOMY;    ///< with the second light no side of a model is left dark
    _RVIEW_FLAG view = RVIEW_RIGHT_TOP_FRONT;
    double viewAngle = 55;     ///< of slanted views, degrees: high enough for the top, low enough for two sides
    bool useCamera = false;    ///< a camera of the scene, not `view`
    std::string camera;        ///< its name; empty: the first one
    CRGBColor background{240, 240, 238};
    bool transparent = false;          ///< no background at all
    int antialias = 2;                 ///< so many samples a pixel, each way
    std::vector<std::string> nodes;    ///< names of those to which the view is fitted; none: all
    bool hasTime = false;
    int time = 0;    ///< frame
    CTurntable turntable;
};
