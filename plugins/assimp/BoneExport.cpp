#include "BoneExport.h"

#include <cstring>

#include <assimp/mesh.h>

#include "Convert.h"

namespace {

C3DSceneNode* FindNode(const C3DScene& scene, const CXTString<wchar_t>& name)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        if (C3DSceneNode* node = scene.GetNextNode(pos); node->GetName() == name)
            return node;
    return nullptr;
}

}

BoneExport::BoneExport(const C3DScene& scene, C3DGeomObject& object, const C3DSceneNode& node, const ExportFormat& format, LossLog& losses)
{
    if (!format.Can(CAN_BONES))
        return;
    CXArray<unsigned int, unsigned int> positions;
    object.GetChannels()->GetChannels(CHANNEL_WEIGHT, positions, true);
    for (const unsigned int position : positions) {
        const auto& channel = static_cast<CWeightChannel&>(*object.GetChannels()->GetAt(static_cast<int>(position)));
        CXTString<wchar_t> name;
        channel.GetCustomData().GetString(WEIGHT_BONE_NAME, name);
        const C3DSceneNode* bone = name.IsEmpty() ? nullptr : FindNode(scene, name);
        if (!bone || channel.GetFaceList() || channel.GetWeightPointList()->GetSize() != object.GetPointNbr())
            losses.Add(LOSS_NAMELESS_WEIGHTS);
        else
            m_bones.push_back({WideToUtf8(name), channel.GetWeightPointList(), BindOf(*bone, node, channel)});
    }
}

C4x4TMatrix<float> BoneExport::BindOf(const C3DSceneNode& bone, const C3DSceneNode& node, const CWeightChannel& channel)
{
    C4x4TMatrix<float> bind, inverse;
    float told[12];
    if (channel.GetCustomData().GetData(WEIGHT_BONE_BIND, told, sizeof told)) {
        for (int i = 0; i < 12; i++)
            bind.m[i / 4][i % 4] = told[i];
        return bind;
    }
    C4x4TMatrix<float> bonePlace, place;
    bone.GetNodeTM(0, bonePlace, true);
    node.GetNodeTM(0, place, true);
    C4x4TMatrix<float>::GetInverse(bonePlace, inverse);
    return inverse * place;
}

void BoneExport::AddTo(aiMesh& mesh, const ObjectCorners& corners, const VertexSplit& split) const
{
    if (m_bones.empty())
        return;
    mesh.mNumBones = static_cast<unsigned int>(m_bones.size());
    mesh.mBones = new aiBone*[m_bones.size()]();
    std::vector<aiVertexWeight> weights;
    for (std::size_t i = 0; i < m_bones.size(); i++) {
        const Bone& from = m_bones[i];
        weights.clear();
        for (unsigned int vertex = 0; vertex < mesh.mNumVertices; vertex++)
            if (const float weight = from.weights->ElementAt(corners.GetCornerPoints()[split.GetCorners()[vertex]])->GetWeight();
                weight > 0)
                weights.emplace_back(vertex, weight);
        aiBone* bone = mesh.mBones[i] = new aiBone;
        bone->mName = aiString(from.name);
        bone->mOffsetMatrix = ToMatrix(from.bind);
        bone->mNumWeights = static_cast<unsigned int>(weights.size());
        bone->mWeights = new aiVertexWeight[weights.size()];
        std::ranges::copy(weights, bone->mWeights);
    }
}
