#pragma once

/// Which axis of a foreign scene points up, and so how C3DScene::OrientScene turns it. Ours is z.
enum _UP_AXIS_MODE : unsigned int { UP_AXIS_Z = 0, UP_AXIS_Y = 1, UP_AXIS_X = 2 };
