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
    SceneWriter(C3DScene& scene, const ExportFormat& format, const CXTString<wchar_t>& target, LossLog& losses)
        : m_scene(scene), m_format(format), m_losses(losses), m_textures(scene, target, format.Can(CAN_EMBED), losses),
          m_materials(scene, format, m_textures, losses), m_meshExport(scene, format, m_materials, losses), m_cameras(format, losses)
    {
    }

    std::unique_ptr<aiScene> Build();

private:
    void MarkTwoSided();
    aiNode* BuildRoot();
    void BuildBelow(const C3DSceneNode* parent, aiNode& to);
    bool SkipBare(const C3DSceneNode& node);
    std::unique_ptr<aiNode> BuildNode(C3DSceneNode& from);
    const std::vector<unsigned int>& MeshesOf(const C3DSceneNode& node, C3DGeomObject& object);
    void SetUnit(aiScene& to) const;

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

std::unique_ptr<aiScene> SceneWriter::Build()
{
    auto to = std::make_unique<aiScene>();
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
    SetUnit(*to);
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

// A tree has one root: the node that stands alone, else one that is no node of the scene.
aiNode* SceneWriter::BuildRoot()
{
    C3DSceneNode* first = m_scene.GetChildNode(nullptr);
    const bool isAlone = first && !m_scene.GetRightNode(first);
    std::unique_ptr<aiNode> root = isAlone ? BuildNode(*first) : std::make_unique<aiNode>("ROOT");
    BuildBelow(isAlone ? first : m_scene.GetRoot(), *root);
    return root.release();
}

void SceneWriter::BuildBelow(const C3DSceneNode* parent, aiNode& to)
{
    std::vector<std::pair<const C3DSceneNode*, aiNode*>> open{{parent, &to}};    // not recursive: trees can be deep
    while (!open.empty()) {
        const auto [from, node] = open.back();
        open.pop_back();
        std::vector<std::unique_ptr<aiNode>> children;
        for (C3DSceneNode* child = m_scene.GetChildNode(from); child; child = m_scene.GetRightNode(child)) {
            if (!m_format.Can(CAN_TREE) && SkipBare(*child))
                continue;
            children.push_back(BuildNode(*child));
            children.back()->mParent = node;
            open.emplace_back(child, children.back().get());
        }
        MoveTo(std::move(children), node->mChildren, node->mNumChildren);
    }
}

// Without a tree, branches without geometry are nothing. What is lost with them is counted.
bool SceneWriter::SkipBare(const C3DSceneNode& node)
{
    if (node.IsGeomObject() || m_scene.GetChildCount(&node, OBJECT_GEOMETRIC) > 0)
        return false;
    m_cameras.Take(node);
    m_losses.Add(LOSS_DUMMIES, node.GetObjectKindOf() == OBJECT_DUMMY);
    for (C3DNodePos pos = m_scene.GetFirstNode(&node, ITER_SUBTREE, nullptr); pos;) {
        const C3DSceneNode* below = m_scene.GetNextNode(pos);
        m_cameras.Take(*below);
        m_losses.Add(LOSS_DUMMIES, below->GetObjectKindOf() == OBJECT_DUMMY);
    }
    return true;
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

void SceneWriter::SetUnit(aiScene& to) const
{
    if (m_format.unit != UNIT_UNDEFINED || !m_scene.IsUnitDefined())
        return;
    to.mMetaData = aiMetadata::Alloc(1);
    to.mMetaData->Set(0, "UnitScaleFactor", m_scene.GetScaleFactor());
}

}

std::unique_ptr<aiScene> ExportScene(C3DScene& scene, const ExportFormat& format, const CXTString<wchar_t>& target, LossLog& losses)
{
    return SceneWriter(scene, format, target, losses).Build();
}
