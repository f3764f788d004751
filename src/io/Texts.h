#pragma once

#include "files/IoOptions.h"
#include "tools/FormatText.h"

/// Entries of the string table that reading and writing log.
enum _IO_TEXT : unsigned int {
    TEXT_DEFAULT_PARAMETERS = 7368,
    TEXT_REMOVING_OBJECT = 7400,
    TEXT_CHANGE_ORIENTATION = 7401,
    TEXT_SWAP_COORDINATES = 7402,
    TEXT_TO_GLOBAL_COORDINATES = 7403,
    TEXT_CONCATENATING = 7404,
    TEXT_MERGE_BY_MATERIALS = 7405,
    TEXT_CREATING_UV = 7406,
    TEXT_MATERIAL = 7407,
    TEXT_INVALID_FACE_INDEX = 7408,
    TEXT_REMOVING_UV = 7409,
    TEXT_REMOVING_VC = 7410,
    TEXT_REMOVING_NORMALS = 7411,
    TEXT_CONVERTING_PATCH = 7412,
    TEXT_WHOLE_SCENE = 7413,
    TEXT_TRIANGULATING = 7414,
    TEXT_UNIFYING_UV = 7415,
    TEXT_DISCONNECTING = 7416,
    TEXT_TOO_MANY_POINTS = 7417,
    TEXT_TOO_MANY_FACES = 7418,
    TEXT_CHANGING_OBJECT_NAME = 7419,
    TEXT_CHANGING_MATERIAL_NAME = 7420,
    TEXT_NO_OBJECT_TO_SAVE = 7421,
    TEXT_COPYING_TEXTURE = 7422,
    TEXT_CANNOT_MOVE_TEXTURE = 7423,
    TEXT_CUSTOM_PARAMETERS = 7424,
    TEXT_REMOVING_BACK_MATERIALS = 7425,
    TEXT_CANNOT_MAKE_FOLDER = 7426,
    TEXT_REMOVING_GROUPS = 7427,
    TEXT_DROPPED_FACES = 7428,
    TEXT_REMOVING_ANIMATION = 7429,
    TEXT_REMOVING_FACES = 7430,
    TEXT_REMOVING_MATERIALS = 7431,
    TEXT_DROPPED_CURVES = 7432,
    TEXT_UNNAMED_OBJECT = 9423,
};

/// Tells of faces that joining objects left out, if there are any.
inline void LogDroppedFaces(CIoOptions& options, int count)
{
    if (count > 0)
        options.AddLogInfo(IoLogInfo::WARNING, FormatText(TEXT_DROPPED_FACES, static_cast<unsigned int>(count)));
}

/// Tells of curves that joining objects left out, if there are any: a surface takes none.
inline void LogDroppedCurves(CIoOptions& options, int count)
{
    if (count > 0)
        options.AddLossInfo(FormatText(TEXT_DROPPED_CURVES, static_cast<unsigned int>(count)));
}
