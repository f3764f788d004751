#pragma once

#include "channels/Channel.h"

class C3DVectorList;

/// One unit normal per geometry face, worked out on demand and never stored: vector i belongs to geometry face i.
class ZEL_API CFaceNormalChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CFaceNormalChannel)
public:
    explicit CFaceNormalChannel(unsigned int id = NO_CHANNEL_ID);

    C3DVectorList* GetNormalVectorList() const;

    /// Turns or mirrors the vectors.
    bool SwapCoordinates(unsigned int code) override;
    bool MatrixTransform(const C4x4TMatrix<float>& matrix) override;
    /// Marks the channel stale; false.
    bool Clean(const CGeomInfo* info, CXArray<unsigned int, unsigned int>* faceMap, CXArray<unsigned int, unsigned int>* pointMap) override;
    bool CanBeRecomputed() override;
    CFaceNormalChannel* Duplicate(bool inherit) const override;

    // FaceNormals.cpp

    /// Brings the normals up to date: one for each geometry face without FACE_INVALID, zero for the others. Nothing happens
    /// unless the channel is stale or invalid, or without source faces.
    void InitNormals(const CGeomInfo* info);

protected:
    ~CFaceNormalChannel() override;
};
