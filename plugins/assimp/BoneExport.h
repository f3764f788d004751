#pragma once

#include <memory>
#include <vector>

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"
#include "VertexSplit.h"

struct aiMesh;

/// The weights of an object as bones, each with the name of its node and its place at rest: the one that came with the weights, else the one
/// at time 0.
class BoneExport {
public:
    BoneExport(const C3DScene& scene, C3DGeomObject& object, const C3DSceneNode& node, const ExportFormat& format, LossLog& losses);

    /// Gives a mesh of the object its bones; `split` has made its vertices. Bones that move none of them stay too: a skin has all its joints.
    void AddTo(aiMesh& mesh, const ObjectCorners& corners, const VertexSplit& split) const;

private:
    struct Bone {
        std::string name;
        const CWeightPointList* weights;    // of the object's points
        C4x4TMatrix<float> bind;
    };

    static C4x4TMatrix<float> BindOf(const C3DSceneNode& bone, const C3DSceneNode& node, const CWeightChannel& channel);

    std::vector<Bone> m_bones;
};
