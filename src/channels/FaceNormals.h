#pragma once

#include "geometry/3DVectorList.h"

class CFaceNormalChannel;
class CGeomInfo;

/// The unit normals of the source faces, up to date: those of the source's face normal channel. A source without channels gets
/// normals for as long as this lives.
class CFaceNormals {
public:
    explicit CFaceNormals(const CGeomInfo* info);
    CFaceNormals(const CFaceNormals&) = delete;
    CFaceNormals& operator=(const CFaceNormals&) = delete;
    ~CFaceNormals();

    const C3DTVector<float>& operator[](int face) const { return m_first[face]; }

private:
    CFaceNormalChannel* m_channel;                       ///< holds a reference
    const C3DTVector<float>* m_first;
};
