#pragma once

#include "geometry/4x4Matrix.h"
#include "tools/Api.h"

/// A series of pictures in which a scene turns about its own axes, step by step.
struct ZEL_API CTurntable {
    enum Movement : unsigned int { RIGHT, LEFT, UP, DOWN };    ///< of what is in front

    int count = 0;    ///< of pictures; 0: no series
    Movement movement = RIGHT;
    double amplitude = 360;    ///< of all steps together, degrees

    /// How far the scene has turned in a picture, the first one being 0; radians.
    double GetAngle(int number) const;
    /// How long each picture shows, milliseconds: a whole turn takes four seconds, in steps that all formats can tell and programs play.
    int GetDuration() const;
    /// Turns the scene that a view's matrix shows. A movement that is none of the four does nothing.
    static void Turn(C4x4TMatrix<float>& matrix, Movement movement, double angle);
};
