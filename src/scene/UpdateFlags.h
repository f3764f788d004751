#pragma once

// How a change of an object reaches boxes, generated channels and the view: whoever changes geometry reports the change
// once through Invalidate; the reports expand into what is out of date.

/// Change reports: the low 16 bits of the word given to Invalidate.
enum _OBJECT_CHANGES : unsigned int {
    CHANGE_OTHER = 0x1,
    CHANGE_POINTS = 0x2,    ///< points moved, came or went
    CHANGE_FACES = 0x4,
    CHANGE_UVW = 0x8,    ///< texture coordinates were generated
    CHANGE_NORMALS = 0x10,
};

/// What of an object is out of date, in its update word.
enum _OBJECT_UPDATE_PROPERTIES : unsigned int {
    OBJECT_UPDATE_POINT_BOX = 0x10000,
    OBJECT_UPDATE_FACE_BOX = 0x20000,
    OBJECT_UPDATE_BOXES = 0x30000,      ///< cleared by box queries alone
    OBJECT_UPDATE_NORMALS = 0x40000,    ///< has a stamp, but no report raises it
    OBJECT_UPDATE_UVW = 0x80000,
    OBJECT_UPDATE_REGENERATED = 0xFFC0000,    ///< what NeedUpdate looks at
    OBJECT_UPDATE_ALL = 0xFFF0000,            ///< what Update takes to bring everything up to date
    OBJECT_UPDATE_DISPLAY = 0x10000000,       ///< to be redrawn; cleared by the view
};

/// The same for a node.
enum _SCENE_NODE_UPDATE_PROPERTIES : unsigned int {
    NODE_UPDATE_DISPLAY = 0x10000000,
};
