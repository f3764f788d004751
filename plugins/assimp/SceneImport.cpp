#include "SceneImport.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <assimp/material.h>
#include <assimp/scene.h>

#include "MeshImport.h"

namespace {

C4x4TMatrix<float> ToMatrix(const aiMatrix4x4& from)
{
    C4x4TMatrix<float> matrix;
    for (unsigned int row = 0; row < 3; row++)
        for (unsigned int column = 0; column < 4; column++)
            matrix.m[row][column] = static_cast<float>(from[row][column]);
    return matrix;
}

bool IsExactIdentity(const C4x4TMatrix<float>& matrix)
{
    const C4x4TMatrix<float> identity;
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 4; column++)
            if (matrix.m[row][column] != identity.m[row][column])
                return false;
    return true;
}

/// One run of ImportScene.
class SceneBuilder {
public:
    SceneBuilder(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, CSceneImportOptions& options)
        : m_source(source), m_traits(traits), m_title(title), m_options(options), m_scene(C3DScene::Create())
    {
    }
    ~SceneBuilder() { DeleteMe(m_scene); }

    C3DScene* Build()
    {
        TakeUnit();
        TakeMaterials();
        TakeNodes();
        return std::exchange(m_scene, nullptr);
    }

private:
    void TakeUnit();
    void TakeMaterials();
    void TakeNodes();
    C3DSceneNode* TakeNode(const aiNode& from, C3DSceneNode* parent, const C4x4TMatrix<float>& matrix);
    bool IsArtificialRoot() const;
    CXTString<wchar_t> NameOf(const aiNode& node) const;
    C3DBaseObject* ObjectOf(const aiNode& node, std::vector<C3DCurve*>& curves);

    const aiScene& m_source;
    const FormatTraits& m_traits;
    const CXTString<wchar_t>& m_title;
    CSceneImportOptions& m_options;
    C3DScene* m_scene;
    std::vector<unsigned int> m_materialIds;                          // by the library's index
    std::map<std::vector<unsigned int>, C3DBaseObject*> m_objects;    // by the meshes that they were made of
};

void SceneBuilder::TakeUnit()
{
    double centimetres = m_traits.centimetres;
    _UNIT_MODE unit = m_traits.unit;
    if (m_source.mMetaData && m_source.mMetaData->Get("UnitScaleFactor", centimetres) && centimetres > 0)
        unit = UNIT_CENTIMETER;
    if (centimetres <= 0)
        return;
    m_scene->SetScaleFactor(centimetres);
    m_scene->SetUnit(unit);
}

void SceneBuilder::TakeMaterials()
{
    m_materialIds.resize(m_source.mNumMaterials, 0);
    for (unsigned int i = 0; i < m_source.mNumMaterials; i++) {
        const aiString name = m_source.mMaterials[i]->GetName();
        if (name == aiString(AI_DEFAULT_MATERIAL_NAME))
            continue;    // no material in the file: the default one, id 0
        C3DMaterial* material = m_scene->GetMaterialList().CreateNewMaterial(0xFFFFFFFF);
        material->SetName(Utf8ToWide(name.C_Str()));
        m_materialIds[i] = material->GetMaterialID();
    }
}

// Most importers put a root of their own over the file's nodes, some with the turn to their axes in it. It goes, and its matrix moves
// to what is below.
bool SceneBuilder::IsArtificialRoot() const
{
    const aiNode& root = *m_source.mRootNode;
    if (root.mNumMeshes > 0 || root.mNumChildren == 0)
        return false;
    const std::string name = root.mName.C_Str();
    return !m_traits.realRoot || name.empty() || name == "ROOT" || name.starts_with('$');
}

void SceneBuilder::TakeNodes()
{
    struct Open {
        const aiNode* node;
        C3DSceneNode* parent;
        C4x4TMatrix<float> above;    // of a dropped root
    };
    std::vector<Open> open;    // not recursive: trees can be deep
    const auto push = [&](const aiNode& node, C3DSceneNode* parent, const C4x4TMatrix<float>& above) {
        for (unsigned int i = node.mNumChildren; i-- > 0;)
            if (node.mChildren[i])    // some importers leave places empty
                open.push_back({node.mChildren[i], parent, above});
    };
    const aiNode& root = *m_source.mRootNode;
    if (IsArtificialRoot())
        push(root, nullptr, ToMatrix(root.mTransformation));
    else
        open.push_back({&root, nullptr, {}});
    while (!open.empty()) {
        const Open next = open.back();
        open.pop_back();
        C3DSceneNode* node = TakeNode(*next.node, next.parent, next.above * ToMatrix(next.node->mTransformation));
        push(*next.node, node, {});
    }
}

CXTString<wchar_t> SceneBuilder::NameOf(const aiNode& node) const
{
    if (node.mName.length > 0)
        return Utf8ToWide(node.mName.C_Str());
    for (unsigned int i = 0; i < node.mNumMeshes; i++)
        if (const aiString& name = m_source.mMeshes[node.mMeshes[i]]->mName; name.length > 0)
            return Utf8ToWide(name.C_Str());
    return m_title;
}

C3DSceneNode* SceneBuilder::TakeNode(const aiNode& from, C3DSceneNode* parent, const C4x4TMatrix<float>& matrix)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetName(NameOf(from));
    std::vector<C3DCurve*> curves;
    node->SetObject(ObjectOf(from, curves), true);
    if (!IsExactIdentity(matrix))
        static_cast<C3DMatrixKey*>(node->CreateKey(0, KEY_MATRIX, KEY_KEEP_DEFAULT))->SetMatrix(matrix);
    m_scene->AddNode(parent, node);
    for (C3DCurve* curve : curves) {
        C3DSceneNode* line = C3DSceneNode::Create();
        line->SetName(node->GetName());
        line->SetObject(curve, true);
        m_scene->AddNode(node, line);
    }
    return node;
}

// The object of a node: a polygon object, one that an earlier node of the same meshes holds, or what a node without faces is.
C3DBaseObject* SceneBuilder::ObjectOf(const aiNode& node, std::vector<C3DCurve*>& curves)
{
    std::vector<unsigned int> meshes(node.mMeshes, node.mMeshes + node.mNumMeshes);
    if (const auto known = m_objects.find(meshes); known != m_objects.end())
        return m_scene->CreateObjectInstance(known->second);
    std::vector<const aiMesh*> sources;
    for (const unsigned int mesh : meshes)
        sources.push_back(m_source.mMeshes[mesh]);
    if (C3DObject* object = ImportMeshes(sources, m_materialIds, m_traits.joinPoints, m_options)) {
        ImportLines(sources, m_materialIds, curves);
        if (curves.empty())    // lines of their own are nodes, not part of the object
            m_objects.emplace(std::move(meshes), object);
        return object;
    }
    ImportLines(sources, m_materialIds, curves);
    if (curves.size() == 1 && node.mNumChildren == 0)
        return std::exchange(curves, {}).front();
    return node.mNumChildren > 0 || !curves.empty() ? C3DBaseObject::Create(OBJECT_GROUP) : C3DBaseObject::Create(OBJECT_DUMMY);
}

}

C3DScene* ImportScene(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, CSceneImportOptions& options)
{
    return source.mRootNode ? SceneBuilder(source, traits, title, options).Build() : nullptr;
}
