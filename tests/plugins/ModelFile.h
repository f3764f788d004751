#pragma once

#include <string>

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

    /// From a node's space to the scene's; +y turns to +z.
    static aiMatrix4x4 NodeMatrix(const aiNode& node)
    {
        aiMatrix4x4 matrix;
        for (const aiNode* at = &node; at; at = at->mParent)
            matrix = at->mTransformation * matrix;
        return aiMatrix4x4(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1) * matrix;
    }

private:
    Assimp::Importer m_importer;
    const aiScene* m_scene;
};
