#pragma once

#include <vector>

class CFaceList;

// Corners that streams and other sources bring: nothing behind a reading looks at a corner before it is used.

/// For readers of streams: whether the corners of a list that was just read lie inside `pointCount` points. A dead face whose corners do not
/// loses them: operations leave such numbers behind in faces that nobody looks at. False when a live face has one.
bool CheckLoadedCorners(CFaceList& faces, int pointCount);

/// The live faces with a corner outside `pointCount` points, ascending.
std::vector<unsigned int> FindBadFaces(const CFaceList& faces, int pointCount);

/// Makes a face of a channel one without data. False when it is one already.
bool DropFaceData(CFaceList& faces, unsigned int face);
