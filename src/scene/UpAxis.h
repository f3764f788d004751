#pragma once

/// Which axis of a foreign scene points up, and so how C3DScene::OrientScene turns it. Ours is z.
enum _UP_AXIS_MODE : unsigned int {
    UP_AXIS_Z = 0,    ///< as ours: nothing to turn
    UP_AXIS_Y = 1,    ///< +y becomes +z
    UP_AXIS_X = 2,    ///< +x becomes +z
};
