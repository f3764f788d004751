#pragma once

#include <span>

#include "geometry/3DFace.h"

class C3DFaceList;
class CDependentChannels;
class CGeomInfo;
class CUVWFaceList;

/// Cuts polygons into triangles to be drawn. Scratch memory stays from face to face.
class CFaceCutter {
public:
    CFaceCutter();
    ~CFaceCutter();
    CFaceCutter(const CFaceCutter&) = delete;
    CFaceCutter& operator=(const CFaceCutter&) = delete;

    /// Numbers of the face's corners, three for each triangle; valid until the next call. `info` holds the points.
    std::span<const int> Cut(const CGeomInfo& info, C3DFace& face);

private:
    // A channel whose corners are the corners' own numbers goes through the cut beside the face.
    CUVWFaceList* m_numbers = nullptr;
    CDependentChannels* m_source = nullptr;
    CDependentChannels* m_target = nullptr;
    CUVWFaceList* m_cutNumbers = nullptr;
    C3DFaceList* m_cutFaces = nullptr;
    std::vector<int> m_corners;
};
