#include "SceneExport.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <assimp/commonMetaData.h>
#include <assimp/scene.h>

#include "AnimationExport.h"
#include "CameraLightExport.h"
#include "Convert.h"
#include "MaterialExport.h"
#include "MeshExport.h"
#include "NodePlace.h"
#include "TextureExport.h"

namespace {

/// Moves owned things into an array of the library's.
template <class T> void MoveTo(std::vector<std::unique_ptr<T>>&& from, T**& array, unsigned int& count)
{
    count = static_cast<unsigned int>(from.size());
    array = count > 0 ? new T*[count] : nullptr;
    for (unsigned int i = 0; i < count; i++)
        array[i] = from[i].release();
}

/// One run of ExportScene.
class SceneWriter {
public:
    explicit SceneWriter(const WriterTask& task)
        : m_scene(task.scene), m_format(task.format), m_losses(task.losses), m_textures(task), m_materials(task, m_textures),
          m_meshExport(task.scene, task.format, m_materials, task.losses), m_cameras(task.format, task.losses)
    {
    }

    ExportedScene Build();

private:
    void MarkTwoSided();
    aiNode* BuildRoot();
    void BuildTree(aiNode& root);
    void BuildFlat(aiNode& root);
    std::unique_ptr<aiNode> BuildNode(C3DSceneNode& from);
    const std::vector<unsigned int>& MeshesOf(const C3DSceneNode& node, C3DGeomObject& object);
    void SetMetaData(aiScene& to) const;

    C3DScene& m_scene;
    const ExportFormat& m_format;
    LossLog& m_losses;
    TextureExport m_textures;
    MaterialExport m_materials;
    MeshExport m_meshExport;
    CameraLightExport m_cameras;
    std::vector<std::unique_ptr<aiMesh>> m_meshes;
    std::map<unsigned int, std::vector<unsigned int>> m_meshesOf;    // by object id
};

ExportedScene SceneWriter::Build()
{
    ExportedScene to(new aiScene);
    MarkTwoSided();
    to->mRootNode = BuildRoot();
    if (m_meshes.empty())
        to->mFlags |= AI_SCENE_FLAGS_INCOMPLETE;
    MoveTo(std::move(m_meshes), to->mMeshes, to->mNumMeshes);
    MoveTo(m_materials.TakeMaterials(), to->mMaterials, to->mNumMaterials);
    MoveTo(m_textures.TakeEmbedded(), to->mTextures, to->mNumTextures);
    MoveTo(m_cameras.TakeCameras(), to->mCameras, to->mNumCameras);
    MoveTo(m_cameras.TakeLights(), to->mLights, to->mNumLights);
    MoveTo(ExportAnimations(m_scene, m_format, m_losses), to->mAnimations, to->mNumAnimations);
    SetMetaData(*to);
    return to;
}

void SceneWriter::MarkTwoSided()
{
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_POLYGONAL, ITER_UNIQUE_OBJECTS); pos;) {
        C3DGeomObject* object;
        m_scene.GetNextNode(object, pos);
        if (object->GetFaceMode() != FACE_MODE_TWO_SIDED)
            continue;
        const C3DGeomObject::MaterialMap* used = object->GetMaterialsHashMap(false);
        for (unsigned int at = used ? used->GetFirst() : HASH_END; at != HASH_END;)
            m_materials.SetTwoSided(used->GetNext(at).first);
    }
}

// The root is no node of the scene, not even one that stands alone: the library's writers drop or misplace what a root holds.
aiNode* SceneWriter::BuildRoot()
{
    auto root = std::make_unique<aiNode>("ROOT");
    m_format.Can(CAN_TREE) ? BuildTree(*root) : BuildFlat(*root);
    return root.release();
}

void SceneWriter::BuildTree(aiNode& root)
{
    std::vector<std::pair<const C3DSceneNode*, aiNode*>> open{{m_scene.GetRoot(), &root}};    // not recursive: trees can be deep
    while (!open.empty()) {
        const auto [from, node] = open.back();
        open.pop_back();
        std::vector<std::unique_ptr<aiNode>> children;
        for (C3DSceneNode* child = m_scene.GetChildNode(from); child; child = m_scene.GetRightNode(child)) {
            children.push_back(BuildNode(*child));
            children.back()->mParent = node;
            open.emplace_back(child, children.back().get());
        }
        MoveTo(std::move(children), node->mChildren, node->mNumChildren);
    }
}

// Without a tree, nodes without geometry are nothing. What is lost with them is counted.
void SceneWriter::BuildFlat(aiNode& root)
{
    CNodeWalkTM walk(0, true);
    std::vector<std::unique_ptr<aiNode>> children;
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        C3DSceneNode* from = m_scene.GetNextNode(pos);
        std::unique_ptr<aiNode> node = BuildNode(*from);
        if (!from->IsGeomObject())
            continue;
        C4x4TMatrix<float> place;
        walk.Get(from, place);
        node->mTransformation = ToFiniteMatrix(place);
        node->mParent = &root;
        children.push_back(std::move(node));
    }
    MoveTo(std::move(children), root.mChildren, root.mNumChildren);
}

std::unique_ptr<aiNode> SceneWriter::BuildNode(C3DSceneNode& from)
{
    auto to = std::make_unique<aiNode>(WideToUtf8(from.GetName()));
    to->mTransformation = NodePlace(from).At(0);
    m_cameras.Take(from);
    C3DBaseObject* shown = from.IsGeomObject() ? from.GetFinalObject() : nullptr;
    if (C3DGeomObject* object = shown ? static_cast<C3DGeomObject*>(*shown) : nullptr) {
        const std::vector<unsigned int>& meshes = MeshesOf(from, *object);
        to->mNumMeshes = static_cast<unsigned int>(meshes.size());
        to->mMeshes = meshes.empty() ? nullptr : new unsigned int[meshes.size()];
        std::ranges::copy(meshes, to->mMeshes);
    } else if (!m_format.Can(CAN_TREE) && from.GetObjectKindOf() == OBJECT_DUMMY) {
        m_losses.Add(LOSS_DUMMIES);
    }
    return to;
}

const std::vector<unsigned int>& SceneWriter::MeshesOf(const C3DSceneNode& node, C3DGeomObject& object)
{
    const auto [place, isNew] = m_meshesOf.try_emplace(object.GetObjectID());
    if (isNew)
        for (std::unique_ptr<aiMesh>& mesh : m_meshExport.Export(object, node)) {
            mesh->mName = aiString(WideToUtf8(node.GetName()));
            place->second.push_back(static_cast<unsigned int>(m_meshes.size()));
            m_meshes.push_back(std::move(mesh));
        }
    return place->second;
}

void SceneWriter::SetMetaData(aiScene& to) const
{
    to.mMetaData = new aiMetadata;
    to.mMetaData->Add(AI_METADATA_SOURCE_GENERATOR, aiString("3dzel"));    // without any data PBRT crashes
    if (m_format.unit == UNIT_UNDEFINED && m_scene.IsUnitDefined())
        to.mMetaData->Add("UnitScaleFactor", m_scene.GetScaleFactor());
}

}

ExportedScene ExportScene(const WriterTask& task) { return SceneWriter(task).Build(); }

// A node gives its children up before it goes.
void DeleteExportedScene::operator()(aiScene* scene) const
{
    std::vector<aiNode*> open;
    const auto takeChildren = [&open](aiNode& node) {
        open.insert(open.end(), node.mChildren, node.mChildren + node.mNumChildren);
        node.mNumChildren = 0;
    };
    if (scene->mRootNode)
        takeChildren(*scene->mRootNode);
    while (!open.empty()) {
        aiNode* node = open.back();
        open.pop_back();
        takeChildren(*node);
        delete node;
    }
    delete scene;
}
