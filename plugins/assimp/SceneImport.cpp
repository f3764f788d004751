#include "SceneImport.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <assimp/scene.h>

#include "AnimationImport.h"
#include "CameraLightImport.h"
#include "Convert.h"
#include "MaterialImport.h"
#include "MeshImport.h"

namespace {

/// One run of ImportScene.
class SceneBuilder {
public:
    SceneBuilder(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, UnpackedImages& images,
                 CSceneImportOptions& options)
        : m_source(source), m_traits(traits), m_title(title), m_images(images), m_options(options), m_scene(C3DScene::Create()),
          m_animation(source), m_cameras(source, traits, options)
    {
    }
    ~SceneBuilder() { DeleteMe(m_scene); }

    C3DScene* Build()
    {
        TakeUnit();
        m_materials = ImportMaterials(m_source, m_traits, *m_scene, m_images, m_options);
        TakeNodes();
        for (const CameraLightImport::Item& item : m_cameras.TakeRest())
            AddCameraNode(item, nullptr);
        m_animation.Describe(*m_scene);
        return std::exchange(m_scene, nullptr);
    }

private:
    void TakeUnit();
    void TakeNodes();
    C3DSceneNode* TakeNode(const aiNode& from, C3DSceneNode* parent, const C4x4TMatrix<float>& above);
    void AddCameraNode(const CameraLightImport::Item& item, C3DSceneNode* parent);
    static void SetMatrix(C3DSceneNode& node, const C4x4TMatrix<float>& matrix);
    bool IsArtificialRoot() const;
    CXTString<wchar_t> NameOf(const aiNode& node) const;
    C3DBaseObject* ObjectOf(const aiNode& node, bool hasChildren, std::vector<C3DCurve*>& curves);

    const aiScene& m_source;
    const FormatTraits& m_traits;
    const CXTString<wchar_t>& m_title;
    UnpackedImages& m_images;
    CSceneImportOptions& m_options;
    C3DScene* m_scene;
    const AnimationImport m_animation;
    CameraLightImport m_cameras;
    std::vector<ImportedMaterial> m_materials;                        // by the library's index
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

// Most importers put a root of their own over the file's nodes, some with the turn to their axes in it. It goes, and its matrix moves
// to what is below.
bool SceneBuilder::IsArtificialRoot() const
{
    const aiNode& root = *m_source.mRootNode;
    if (root.mNumMeshes > 0 || root.mNumChildren == 0 || m_animation.IsAnimated(root) || m_cameras.Has(root))
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
        C3DSceneNode* node = TakeNode(*next.node, next.parent, next.above);
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

// `above`: matrix of a root that is dropped, which goes before the node's own.
C3DSceneNode* SceneBuilder::TakeNode(const aiNode& from, C3DSceneNode* parent, const C4x4TMatrix<float>& above)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetName(NameOf(from));
    std::vector<C3DCurve*> curves;
    std::vector<CameraLightImport::Item> items = m_cameras.Take(from);
    const bool animated = m_animation.IsAnimated(from);
    C4x4TMatrix<float> matrix = animated ? above : above * ToMatrix(from.mTransformation);
    if (items.size() == 1 && from.mNumMeshes == 0 && from.mNumChildren == 0 && !animated) {    // the node has nothing else to carry
        node->SetObject(items.front().object, true);
        matrix *= items.front().place;
        items.clear();
    } else {
        node->SetObject(ObjectOf(from, from.mNumChildren > 0 || !items.empty(), curves), true);
    }
    SetMatrix(*node, matrix);
    if (animated)
        m_animation.AddKeys(from, *node);
    m_scene->AddNode(parent, node);
    for (C3DCurve* curve : curves) {
        C3DSceneNode* line = C3DSceneNode::Create();
        line->SetName(node->GetName());
        line->SetObject(curve, true);
        m_scene->AddNode(node, line);
    }
    for (const CameraLightImport::Item& item : items)
        AddCameraNode(item, node);
    return node;
}

void SceneBuilder::AddCameraNode(const CameraLightImport::Item& item, C3DSceneNode* parent)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetName(item.name);
    node->SetObject(item.object, true);
    SetMatrix(*node, item.place);
    m_scene->AddNode(parent, node);
}

void SceneBuilder::SetMatrix(C3DSceneNode& node, const C4x4TMatrix<float>& matrix)
{
    if (!IsExactIdentity(matrix))
        static_cast<C3DMatrixKey*>(node.CreateKey(0, KEY_MATRIX, KEY_KEEP_DEFAULT))->SetMatrix(matrix);
}

// The object of a node: a polygon object, one that an earlier node of the same meshes holds, or what a node without faces is.
C3DBaseObject* SceneBuilder::ObjectOf(const aiNode& node, bool hasChildren, std::vector<C3DCurve*>& curves)
{
    std::vector<unsigned int> meshes(node.mMeshes, node.mMeshes + node.mNumMeshes);
    if (const auto known = m_objects.find(meshes); known != m_objects.end())
        return m_scene->CreateObjectInstance(known->second);
    std::vector<const aiMesh*> sources;
    for (const unsigned int mesh : meshes)
        sources.push_back(m_source.mMeshes[mesh]);
    if (C3DObject* object = ImportMeshes(sources, m_materials, m_traits.joinPoints, m_options)) {
        ImportLines(sources, m_materials, curves);
        if (curves.empty())    // lines of their own are nodes, not part of the object
            m_objects.emplace(std::move(meshes), object);
        return object;
    }
    ImportLines(sources, m_materials, curves);
    if (curves.size() == 1 && !hasChildren)
        return std::exchange(curves, {}).front();
    return hasChildren || !curves.empty() ? C3DBaseObject::Create(OBJECT_GROUP) : C3DBaseObject::Create(OBJECT_DUMMY);
}

}

C3DScene* ImportScene(const aiScene& source, const FormatTraits& traits, const CXTString<wchar_t>& title, UnpackedImages& images,
                      CSceneImportOptions& options)
{
    return source.mRootNode ? SceneBuilder(source, traits, title, images, options).Build() : nullptr;
}
