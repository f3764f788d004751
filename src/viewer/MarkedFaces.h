#pragma once

#include <vector>

#include "scene/Forward.h"

// Marked faces (VIEW_FACE_MARKED) of a scene's polygon objects, and what commands do with them. Each reports the change to the objects; the view
// shows it with its next update.

/// Faces of one object.
struct CFaceSet {
    unsigned int objectID = 0;
    int faceCount = 0;    ///< of the object: with another number its faces are others now
    std::vector<unsigned int> faces;
};

bool HasMarkedFaces(const C3DScene& scene);
/// False when there were none.
bool ClearFaceMarks(C3DScene& scene);
/// Hides the marked faces, which lose their marks, or with `others` those that are not marked; the faces that did show.
std::vector<CFaceSet> HideFaces(C3DScene& scene, bool others);
/// Shows those of the sets again, marked when `mark`. False when none was hidden.
bool ShowFaces(C3DScene& scene, const std::vector<CFaceSet>& sets, bool mark);
/// Shows all but those of hidden materials.
void ShowAllFaces(C3DScene& scene);
/// Removes them with the points that no face uses any more, and nodes of which no face is left. False when there were none.
bool DeleteMarkedFaces(C3DScene& scene);
