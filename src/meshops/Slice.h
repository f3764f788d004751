#pragma once

#include "tools/Api.h"
#include "tools/FourCC.h"

class C3DScene;
class CCustomData;

/// Parameters of SliceScene, all unsigned.
constexpr unsigned int SLICE_MODE = FourCC("MODE");      ///< _SLICE_MODE; default 0
constexpr unsigned int SLICE_POINTS = FourCC("VERT");    ///< most points that an object keeps; default 65535
constexpr unsigned int SLICE_X = FourCC("X   ");         ///< cells along each axis; default 10, 0 counts as 1
constexpr unsigned int SLICE_Y = FourCC("Y   ");
constexpr unsigned int SLICE_Z = FourCC("Z   ");

enum _SLICE_MODE : unsigned int {
    SLICE_SPLIT = 0,     ///< cuts objects with too many points into parts
    SLICE_COLOUR = 1,    ///< gives objects a vertex colour channel by the cells of a grid
};

/// Cuts or colours the geometric objects of a scene; shared objects once.
///
/// SLICE_SPLIT halves the box of an object along its longest side until no part has more than SLICE_POINTS points; a face goes where most
/// of its corners lie. Each part gets a node beside the old one, "name-0", "name-1" and so on, and the old node goes; nodes that share the
/// object get instances of the parts. Points at one place cannot be cut, and a part whose faces reach into others may stay above the
/// limit. Left whole: objects without faces, and such with corners beyond their points.
///
/// SLICE_COLOUR takes at most SLICE_MOST_CELLS cells in all.
///
/// @return  false for another mode, a null scene, too many cells, and when there is nothing to cut; the scene is untouched then
///
/// Cost: SLICE_SPLIT about linear in points times the logarithm of the number of parts.
ZEL_API bool SliceScene(const CCustomData& parameters, C3DScene* scene);

constexpr unsigned int SLICE_MOST_CELLS = 1u << 24;
