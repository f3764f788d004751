#pragma once

#include "geometry/ElementMethods.h"
#include "geometry/FaceList.h"

/// For constructors of the channels' face lists: the main chunk that a list without model lacks, flags and nothing else.
inline void AddFaceProperties(CFaceList& faces)
{
    auto* methods = new CFacePropertyMethods;
    faces.AddDataChunk(CHUNK_FACE_PROPERTIES, methods);
    DeleteMe(methods);
}
