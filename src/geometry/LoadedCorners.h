#pragma once

class CFaceList;

/// For readers of streams: whether the corners of a list that was just read lie inside `pointCount` points. A dead face whose corners do not
/// loses them: operations leave such numbers behind in faces that nobody looks at. False when a live face has one.
bool CheckLoadedCorners(CFaceList& faces, int pointCount);
