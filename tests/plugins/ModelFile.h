#pragma once

#include <string>
#include <utility>
#include <vector>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <3dzel.h>

/// A model as the import library itself reads it: what the plug-in's scene is held against.
class ModelFile {
public:
    static std::string Folder() { return TEST_MODELS "/"; }    ///< of the import library's test models; may be missing

    explicit ModelFile(const std::string& path)
    {
        m_importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
        m_importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
        m_importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);
        m_scene = m_importer.ReadFile(path, 0);
    }
    const aiScene* operator->() const { return m_scene; }
    explicit operator bool() const { return m_scene != nullptr; }

    /// The file's nodes beside the scene's. Both trees are walked in the same order; one that begins with a node less lacks the root that
    /// the importer made. Empty when the names say that they do not go together.
    std::vector<std::pair<const aiNode*, C3DSceneNode*>> NodePairs(C3DScene& scene) const
    {
        std::vector<const aiNode*> nodes;
        Collect(*m_scene->mRootNode, nodes);
        std::vector<std::pair<const aiNode*, C3DSceneNode*>> pairs;
        std::size_t at = nodes.size() - static_cast<std::size_t>(scene.GetChildCount(nullptr, OBJECT_ANY));
        for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos && at < nodes.size(); at++)
            pairs.emplace_back(nodes[at], scene.GetNextNode(pos));
        for (const auto& [from, node] : pairs)
            if (from->mName.length > 0 && node->GetName() != Utf8ToWide(from->mName.C_Str()))
                return {};
        return pairs;
    }

    /// From a node's space to the scene's. `local(node)` is the node's own matrix, and `yUp` turns +y to +z.
    template <class LOCAL> static aiMatrix4x4 NodeMatrix(const aiNode& node, bool yUp, LOCAL local)
    {
        aiMatrix4x4 matrix;
        for (const aiNode* at = &node; at; at = at->mParent)
            matrix = local(*at) * matrix;
        return yUp ? aiMatrix4x4(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1) * matrix : matrix;
    }
    static aiMatrix4x4 NodeMatrix(const aiNode& node, bool yUp)
    {
        return NodeMatrix(node, yUp, [](const aiNode& at) { return at.mTransformation; });
    }

private:
    static void Collect(const aiNode& node, std::vector<const aiNode*>& nodes)
    {
        nodes.push_back(&node);
        for (unsigned int i = 0; i < node.mNumChildren; i++)
            Collect(*node.mChildren[i], nodes);
    }

    Assimp::Importer m_importer;
    const aiScene* m_scene;
};
