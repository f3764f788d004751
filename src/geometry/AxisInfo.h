#pragma once

/// One of the three coordinates.
enum _AXIS_INFO : unsigned int { AXIS_X = 0, AXIS_Y = 1, AXIS_Z = 2 };
