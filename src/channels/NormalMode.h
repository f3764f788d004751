#pragma once

/// How the faces around a point weigh in the point's normal. Any other value counts as area.
enum _NormalSmoothMode : int {
    NORMAL_UNWEIGHTED = 1,     ///< the unit face normal
    NORMAL_AREA = 2,           ///< the unnormalised face normal: twice the face's area
    NORMAL_EDGE_LENGTH = 3,    ///< the unnormalised face normal over the squared lengths of both edges at the corner
    NORMAL_ANGLE = 4,          ///< the unit face normal times the angle at the corner, in radians
};
