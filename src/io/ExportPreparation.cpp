// Export preparation: a copy of the scene becomes what the target format can take.
//
//   units      lengths in the unit asked for
//   objects    what is left out goes; each that stays loses what the format lacks, patches become polygon objects
//   tree       transforms, groups
//   faces      texture coordinates, triangles
//   axes       up axis, swaps
//   joining    channels, objects, seams
//   limits     objects that are too large go
//   materials  those in use, and no others; texture files; names
//
// Each step that changed something is a line of the log. A line about what the format cannot hold is marked as a loss when the parser asked
// for the step; what the user asked for is none.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "channels/DependentChannels.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "io/SceneOptions.h"
#include "io/ShapelessScene.h"
#include "io/Texts.h"
#include "io/TextureNames.h"
#include "meshops/Concatenate.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/Patch.h"
#include "tools/FilePath.h"
#include "tools/UniqueName.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int ALL_CHANNELS = 0xFFFF;
constexpr unsigned int SEAM_CHANNELS = 0xFFFF, SEAM_POINT = 0x90, SEAM_FACE = 0x5000;    // for DisconnectBorderFaces
constexpr unsigned int NO_LIMIT = 0xFFFFFFFF;
constexpr double UNIT_TOLERANCE = 0.005;

int CountFaces(const C3DGeomObject& object)
{
    const C3DFaceList* const faces = object.GetFaceList();
    return faces ? faces->GetSize() - faces->GetNumberOfFaces(static_cast<unsigned int>(FACE_DEAD), true) : 0;
}

class CExportPreparation {
public:
    CExportPreparation(C3DScene& scene, CSceneExportOptions& options) : m_scene(scene), m_options(options) {}
    bool Run();

private:
    void ScaleToUnit();
    void RemoveObjects();
    void PrepareObjects();
    void RemoveWhatFormatLacks(C3DGeomObject& object, const Text& name);
    C3DGeomObject* ConvertPatch(C3DSceneNode* node, C3DPatch& patch, C3DNodePos& pos);
    void ArrangeTree();
    void RemoveTransforms();
    unsigned int CountAnimatedNodes() const;
    void SplitFaces();
    void TurnAxes();
    void JoinObjects();
    void ApplyLimits();
    void MatchMaterials();
    void PlaceTextures();
    void NormaliseNames();
    bool HasObjects() const;

    bool IsAsked(unsigned int flags) const { return (m_options.flags & flags) != 0; }
    bool IsForced(unsigned int flags) const { return (m_options.forcedFlags & flags) != 0; }
    void Log(const Text& text) { m_options.AddLogInfo(IoLogInfo::INFORMATION, text); }
    void LogLoss(const Text& text, bool loss) { loss ? m_options.AddLossInfo(text) : Log(text); }
    /// `work(object, name of its first node)` for each geometric object once.
    template <class WORK> void ForObjects(WORK work)
    {
        C3DGeomObject* object;
        for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
            const C3DSceneNode* const node = m_scene.GetNextNode(object, pos);
            work(*object, node->GetName());
        }
    }

    C3DScene& m_scene;
    CSceneExportOptions& m_options;
    CHashMap<const C3DBaseObject*, std::vector<C3DSceneNode*>> m_sharedPatches;
};

bool CExportPreparation::Run()
{
    ScaleToUnit();
    RemoveObjects();
    PrepareObjects();
    ArrangeTree();
    SplitFaces();
    TurnAxes();
    JoinObjects();
    ApplyLimits();
    MatchMaterials();
    PlaceTextures();
    NormaliseNames();
    if (HasObjects())
        return true;
    m_options.AddLogInfo(IoLogInfo::FAILURE, LoadText(TEXT_NO_OBJECT_TO_SAVE));
    return false;
}

void CExportPreparation::ScaleToUnit()
{
    if (m_options.unit == 0 || !m_scene.IsUnitDefined())
        return;
    const auto unit = static_cast<_UNIT_MODE>(m_options.unit);
    const double factor = m_scene.GetScaleFactor() / C3DScene::GetUnitFactor(unit);
    if (!std::isfinite(factor) || factor == 0 || std::abs(factor - 1) <= UNIT_TOLERANCE)
        return;
    const auto scale = static_cast<float>(factor);
    m_scene.Scale(C3DTVector<float>(scale, scale, scale));
    m_scene.SetScaleFactor(C3DScene::GetUnitFactor(unit));    // a writer that asks hears what is true now
    m_scene.SetUnit(unit);
}

void CExportPreparation::RemoveObjects()
{
    static constexpr struct {
        _OBJECT_KINDOF kind;
        unsigned int flag;
    } KINDS[] = {{OBJECT_POLYGONAL, EXPORT_REMOVE_POLYMESHES}, {OBJECT_CURVE, EXPORT_REMOVE_CURVES}, {OBJECT_PATCH, EXPORT_REMOVE_PATCHES}};
    C3DGeomObject* object;
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        C3DSceneNode* const node = m_scene.GetNextNode(object, pos);
        const bool empty = object->IsFlagSet(OBJECT_EMPTY);
        const bool hidden = node->IsFlagSet(NODE_HIDDEN) && !IsAsked(EXPORT_HIDDEN_OBJECTS);
        unsigned int kindFlag = 0;
        for (const auto& row : KINDS)
            if (object->GetKindOf() == row.kind)
                kindFlag = row.flag;
        if (!empty && !hidden && !IsAsked(kindFlag))
            continue;
        LogLoss(FormatText(TEXT_REMOVING_OBJECT, node->GetName()), !empty && !hidden && IsForced(kindFlag));
        m_options.flags |= EXPORT_CLEAN_GROUPS;
        m_scene.RemoveNode(node, pos, true);
    }
}

// ---- Each object

void CExportPreparation::PrepareObjects()
{
    constexpr unsigned int CONVERT_PATCHES = EXPORT_PATCHES_SUBDIVIDED | EXPORT_PATCHES_SOURCE;
    if (IsAsked(CONVERT_PATCHES)) {
        C3DBaseObject* patch;
        for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_PATCH); pos;) {
            C3DSceneNode* const node = m_scene.GetNextNode(patch, pos);
            if (patch->IsInstanciated())
                m_sharedPatches[patch].push_back(node);
        }
    }
    C3DGeomObject* object;
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        C3DSceneNode* const node = m_scene.GetNextNode(object, pos);
        RemoveWhatFormatLacks(*object, node->GetName());
        if (C3DPatch* const patch = IsAsked(CONVERT_PATCHES) ? static_cast<C3DPatch*>(*object) : nullptr) {
            object = ConvertPatch(node, *patch, pos);
            if (!object)
                continue;    // stays a patch
        }
        const int faces = CountFaces(*object);
        object->Clean();
        object->CleanChannels(0xFFFFFFFF, true);
        if (const int gone = faces - CountFaces(*object); gone > 0)
            LogLoss(FormatText(TEXT_REMOVING_FACES, static_cast<unsigned int>(gone), node->GetName()), true);
    }
}

void CExportPreparation::RemoveWhatFormatLacks(C3DGeomObject& object, const Text& name)
{
    static constexpr struct {
        unsigned int flag;
        _Channel3DType type;
        _IO_TEXT text;
    } CHANNELS[] = {{EXPORT_IGNORE_UV, CHANNEL_UVW, TEXT_REMOVING_UV},
                    {EXPORT_IGNORE_VC, CHANNEL_VC, TEXT_REMOVING_VC},
                    {EXPORT_IGNORE_NORMALS, CHANNEL_SPEC_NORMAL, TEXT_REMOVING_NORMALS}};
    C3DFaceList* const faces = object.GetFaceList();
    if (faces && !IsAsked(EXPORT_KEEP_BACKFACE_MATERIALS) && faces->RemoveBackFaceMaterials())
        LogLoss(FormatText(TEXT_REMOVING_BACK_MATERIALS, name), true);    // whoever can keep them says so
    for (const auto& row : CHANNELS)
        if (IsAsked(row.flag) && object.GetChannels()->RemoveChannels(row.type, 0, true) > 0)
            LogLoss(FormatText(row.text, name), IsForced(row.flag));
}

C3DGeomObject* CExportPreparation::ConvertPatch(C3DSceneNode* node, C3DPatch& patch, C3DNodePos& pos)
{
    const bool toSource = IsAsked(EXPORT_PATCHES_SOURCE);
    LogLoss(FormatText(TEXT_CONVERTING_PATCH, node->GetName()), IsForced(EXPORT_PATCHES_SOURCE | EXPORT_PATCHES_SUBDIVIDED));
    C3DBaseObject* const made = toSource ? patch.GetSourceObject() : patch.GetFinalObject(true);
    if (!made)
        return nullptr;
    std::vector<C3DSceneNode*> holders{node};
    m_sharedPatches.Find(&patch, holders);
    for (C3DSceneNode* const holder : holders)    // the first of them is the node itself
        holder->SetObject(holder == node ? made : made->Copy(COPY_INSTANCE, nullptr), true);
    pos.AddObjectID(made->GetObjectID());
    return *made;
}

// ---- The scene

void CExportPreparation::ArrangeTree()
{
    const unsigned int animated = CountAnimatedNodes();
    RemoveTransforms();
    if (const unsigned int left = CountAnimatedNodes(); left < animated)
        LogLoss(FormatText(TEXT_REMOVING_ANIMATION, animated - left), IsForced(EXPORT_GLOBAL_COORDINATES | EXPORT_REMOVE_GROUPS));
}

unsigned int CExportPreparation::CountAnimatedNodes() const
{
    constexpr std::uint64_t TRANSFORMS[] = {KEY_MATRIX, KEY_TRANSLATE, KEY_ROTATE, KEY_SCALE};
    unsigned int count = 0;
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        const C3DSceneNode& node = *m_scene.GetNextNode(pos);
        count += std::ranges::any_of(TRANSFORMS, [&node](std::uint64_t id) { return node.GetKeyNbr(id) > 1; });
    }
    return count;
}

void CExportPreparation::RemoveTransforms()
{
    if (IsAsked(EXPORT_GLOBAL_COORDINATES)) {
        m_scene.ConvertToGlobalCoordinates(nullptr);
        Log(FormatText(TEXT_TO_GLOBAL_COORDINATES, LoadText(TEXT_WHOLE_SCENE)));
    }
    if (IsAsked(EXPORT_MOVE_TEXTURES))
        m_scene.MakeGroupForChilds(nullptr);
    if (IsAsked(EXPORT_CLEAN_GROUPS))
        m_scene.CleanGroups(true);
    if (!IsAsked(EXPORT_REMOVE_GROUPS))
        return;
    const int groups = m_scene.GetChildCount(nullptr, OBJECT_GROUP);
    m_scene.RemoveGroups();
    if (groups > 0 && IsForced(EXPORT_REMOVE_GROUPS))    // the user did not ask: the format has no tree
        LogLoss(FormatText(TEXT_REMOVING_GROUPS, static_cast<unsigned int>(groups)), true);
}

void CExportPreparation::SplitFaces()
{
    if (IsAsked(EXPORT_GENERATE_UV) && m_scene.GenerateUVW())
        Log(LoadText(TEXT_CREATING_UV));
    if (!IsAsked(EXPORT_TRIANGULATE | EXPORT_QUADRANGULATE))
        return;
    const bool all = IsAsked(EXPORT_TRIANGULATE);
    ForObjects([&](C3DGeomObject& object, const Text& name) {
        if (all ? object.Triangulate(ALL_CHANNELS, {}, true) : object.Quadrangulate(ALL_CHANNELS))
            Log(FormatText(TEXT_TRIANGULATING, name));
    });
}

void CExportPreparation::TurnAxes()
{
    if (m_scene.OrientScene(m_options.upAxis, false))
        Log(LoadText(TEXT_CHANGE_ORIENTATION));
    if (m_scene.SwapCoordinates(m_options.swapCoordinates))
        Log(LoadText(TEXT_SWAP_COORDINATES));
}

void CExportPreparation::JoinObjects()
{
    if (IsAsked(EXPORT_GLOBALIZE_CHANNELS))
        ForObjects([&](C3DGeomObject& object, const Text& name) {
            if (object.GlobalizeChannels(&m_scene, true) != NO_CHANNEL_ID)
                Log(FormatText(TEXT_UNIFYING_UV, name));
        });
    if (IsAsked(EXPORT_CONCATENATE)) {
        int droppedFaces = 0;
        const int curves = m_scene.GetChildCount(nullptr, OBJECT_CURVE);
        ConcatenateScene(m_scene, fileStripPath(m_options.filePath), droppedFaces);
        Log(LoadText(TEXT_CONCATENATING));
        LogDroppedFaces(m_options, droppedFaces);
        LogDroppedCurves(m_options, curves - m_scene.GetChildCount(nullptr, OBJECT_CURVE));
    }
    if (IsAsked(EXPORT_DISCONNECT_FACES))
        ForObjects([&](C3DGeomObject& object, const Text& name) {
            if (object.DisconnectBorderFaces(SEAM_CHANNELS, SEAM_POINT, SEAM_FACE, nullptr, false, nullptr))
                Log(FormatText(TEXT_DISCONNECTING, name));
        });
}

void CExportPreparation::ApplyLimits()
{
    if (m_options.maxPoints == NO_LIMIT && m_options.maxFaces == NO_LIMIT)
        return;
    C3DGeomObject* object;
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        C3DSceneNode* const node = m_scene.GetNextNode(object, pos);
        const bool points = static_cast<unsigned int>(object->GetPointNbr()) > m_options.maxPoints;
        if (!points && static_cast<unsigned int>(object->GetFaceNbr()) <= m_options.maxFaces)
            continue;
        m_options.AddLogInfo(IoLogInfo::WARNING, FormatText(points ? TEXT_TOO_MANY_POINTS : TEXT_TOO_MANY_FACES, node->GetName(),
                                                            points ? m_options.maxPoints : m_options.maxFaces));
        m_scene.RemoveNode(node, pos, true);
    }
}

// Materials that no face uses go, and faces point at no material that is missing.
void CExportPreparation::MatchMaterials()
{
    C3DFaceList::MaterialsMap used;
    m_scene.GetMaterials(nullptr, used, true);
    used.Remove(NO_MATERIAL);    // faces without back material
    if (!IsAsked(EXPORT_KEEP_UNUSED_MATERIALS)) {
        std::vector<unsigned int> unused;
        for (unsigned int pos = m_scene.GetFirstMaterial(); pos != HASH_END;) {
            const unsigned int id = m_scene.GetNextMaterial(pos)->GetMaterialID();
            if (!used.Remove(id))
                unused.push_back(id);
        }
        for (const unsigned int id : unused)
            m_scene.RemoveMaterial(id);
        if (!unused.empty())
            LogLoss(FormatText(TEXT_REMOVING_MATERIALS, static_cast<unsigned int>(unused.size())), true);
    }
    for (const auto& [id, count] : used)
        if (!m_scene.GetMaterialByID(id))
            m_scene.CreateNewMaterial(id);
}

void CExportPreparation::PlaceTextures()
{
    CTextureNames names(m_scene, m_options);
    const bool hasFile = !m_options.filePath.IsEmpty();
    if (hasFile)
        names.MakeAbsolute();
    if (IsAsked(EXPORT_MOVE_TEXTURES))
        m_scene.MoveTextures(m_options.filePath, m_options.textureFolder, &m_options);
    if (!hasFile)
        return;
    names.CopyUnpacked();
    names.MakeRelative();
}

// ---- Names

/// How a format wants names: a rule word of the export options.
class CNameRule {
public:
    explicit CNameRule(unsigned int word) : m_bits(word >> 24), m_limit(word & LIMIT ? static_cast<int>(word & LIMIT) : -1) {}

    /// `standard` takes the place of an empty name and obeys the rule like any other. The name joins the pool.
    Text Normalise(const Text& name, const Text& standard, CHashTable<Text>& pool) const
    {
        Text result = m_bits & NOT_EMPTY && name.IsEmpty() ? standard : name;
        for (wchar_t& character : result.Str())
            if (m_bits & PLAIN ? !IsPlain(character) : m_bits & NO_BLANKS && character == L' ')
                character = L'_';
        return GetUniqueName(pool, result, m_limit, true);
    }

private:
    enum : unsigned int { LIMIT = 0xFFFFFF };
    enum : unsigned int { NO_BLANKS = 1, NOT_EMPTY = 2, PLAIN = 4 };

    static bool IsPlain(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9') || c == L'_'; }

    const unsigned int m_bits;
    const int m_limit;
};

void CExportPreparation::NormaliseNames()
{
    if (!IsAsked(EXPORT_NORMALISE_NAMES) && m_options.objectNameRule == 0 && m_options.materialNameRule == 0)
        return;
    CHashTable<Text> pool;
    const auto rename = [&](auto& item, const CNameRule& rule, const Text& standard, _IO_TEXT logged) {
        const Text former = item.GetName(), name = rule.Normalise(former, standard, pool);
        if (!(name == former))
            Log(FormatText(logged, former, name));
        item.SetName(name);
    };
    const CNameRule objectRule(m_options.objectNameRule), materialRule(m_options.materialNameRule);
    for (C3DNodePos pos = m_scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        C3DSceneNode* const node = m_scene.GetNextNode(pos);
        const C3DBaseObject* const object = node->GetBaseObject();
        rename(*node, objectRule, object ? object->GetTypeString() : LoadText(TEXT_UNNAMED_OBJECT), TEXT_CHANGING_OBJECT_NAME);
    }
    pool.RemoveAll();
    for (unsigned int pos = m_scene.GetFirstMaterial(); pos != HASH_END;)
        rename(*m_scene.GetNextMaterial(pos), materialRule, LoadText(TEXT_MATERIAL), TEXT_CHANGING_MATERIAL_NAME);
}

bool CExportPreparation::HasObjects() const
{
    return m_scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_EMPTY_NODES) || IsShapelessScene(m_scene, m_options, EXPORT_SHAPELESS);
}

}

C3DScene* C3DScene::InitExport(CSceneExportOptions& options)
{
    ReleaseExport(options);
    if (options.flags & EXPORT_IN_PLACE) {
        InitExport(options, this);
        return this;
    }
    options.exportScene = Copy(GetRoot(), 0, nullptr);
    if (!InitExport(options, options.exportScene))
        ReleaseExport(options);
    return options.exportScene;
}

bool C3DScene::InitExport(CSceneExportOptions& options, C3DScene* working)
{
    return working && CExportPreparation(*working, options).Run();
}

void C3DScene::ReleaseExport(CSceneExportOptions& options)
{
    DeleteMe(options.exportScene);
    options.exportScene = nullptr;
}
