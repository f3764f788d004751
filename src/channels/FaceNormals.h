#pragma once

#include "geometry/3DVectorList.h"

class CFaceNormalChannel;
class CGeomInfo;

/// The unit normals of the source faces, up to date: those of the source's face normal channel. A source without channels gets
/// normals for as long as this lives.
class CFaceNormals {
public:
    /// @param rawNormals  null, or those of the faces that C3DFaceList::GetNormals gives without normalising: what is not up to
    ///                    date then comes from these, which costs less
    explicit CFaceNormals(const CGeomInfo* info, const C3DVectorList* rawNormals = nullptr);
    CFaceNormals(const CFaceNormals&) = delete;
    CFaceNormals& operator=(const CFaceNormals&) = delete;
    ~CFaceNormals();

    const C3DTVector<float>& operator[](int face) const { return m_first[face]; }

private:
    CFaceNormalChannel* m_channel;    ///< holds a reference
    const C3DTVector<float>* m_first;
};
