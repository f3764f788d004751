// Import checkout: whatever a parser delivers, what follows may count on the scene.
//
//   axes      the scene stands in the z-up world
//   objects   each once: a name, coordinates that are finite, corners that exist, then the mesh operations asked for
//   siblings  by name, however the parser added them
//   scene     operations on all objects together; names of materials
//
// Without flags this is a pass over points and corners. Nothing becomes stale that was not repaired.

#include <algorithm>
#include <cmath>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DPointList.h"
#include "geometry/LoadedCorners.h"
#include "io/BadFaces.h"
#include "io/SceneOptions.h"
#include "io/Texts.h"
#include "meshops/Concatenate.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/FileNameSpec.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int ALL_CHANNELS = 0xFFFF;
constexpr unsigned int SEAM_CHANNELS = 0xFFFF, SEAM_POINT = 0x90, SEAM_FACE = 0x5000;    // for DisconnectBorderFaces

Text Numbered(const Text& name, unsigned int number)
{
    Text text;
    text.FormatString(L"%s %d", name.c_str(), number);
    return text;
}

/// The checkout of one geometric object.
class CObjectCheckout {
public:
    CObjectCheckout(C3DGeomObject& object, CSceneImportOptions& options) : m_object(object), m_options(options) {}

    void Repair();
    void Convert();

private:
    void RepairPoints();
    bool RepairFaces();
    void RepairChannels();
    bool RepairChannelFaces(CChannel& channel);

    C3DGeomObject& m_object;
    CSceneImportOptions& m_options;
};

void CObjectCheckout::Repair()
{
    RepairPoints();
    const bool mustClean = RepairFaces();
    RepairChannels();
    m_object.FreeExtra();
    if (mustClean)
        m_object.Clean();
}

void CObjectCheckout::RepairPoints()
{
    C3DPointList* const points = m_object.GetPointList();
    bool changed = false;
    C3DTPoint<float>* point = points ? points->GetFirst() : nullptr;
    for (int i = 0, count = m_object.GetPointNbr(); i < count; i++, point = points->GetNext(point)) {
        if (std::isfinite(point->x) && std::isfinite(point->y) && std::isfinite(point->z))
            continue;
        for (float* const value : {&point->x, &point->y, &point->z})
            if (!std::isfinite(*value))
                *value = 0;
        changed = true;
    }
    if (changed)
        m_object.Invalidate(CHANGE_POINTS, true);
}

// Marks the faces that the geometry cannot have; true when a clean is due.
bool CObjectCheckout::RepairFaces()
{
    C3DFaceList* const faces = m_object.GetFaceList();
    if (!faces)
        return false;
    for (const unsigned int face : FindBadFaces(*faces, m_object.GetPointNbr())) {
        faces->SetFaceFlag(face, FACE_INVALID, true);
        LogBadFace(m_options, face);
    }
    return faces->GetNumberOfFaces(static_cast<unsigned int>(FACE_DEAD), true) > 0;
}

void CObjectCheckout::RepairChannels()
{
    CDependentChannels& channels = *m_object.GetChannels();
    bool changed = false;
    // Given normals go first: making them unit vectors follows their corners.
    CSpecNormalChannel* const normals = channels.GetSpecNormalChannel();
    if (normals) {
        changed |= RepairChannelFaces(*normals);
        if (!normals->Normalize())
            channels.RemoveChannel(normals);
    }
    for (CChannel* const channel : channels)
        if (channel != normals)
            changed |= RepairChannelFaces(*channel);
    if (changed)
        m_object.Invalidate(OBJECT_UPDATE_DISPLAY, true);
}

// A face whose corners are not there loses its data; the others keep theirs.
bool CObjectCheckout::RepairChannelFaces(CChannel& channel)
{
    CFaceList* const faces = channel.GetFaceList();
    if (!faces)
        return false;
    if (faces->GetSize() != m_object.GetFaceNbr())
        channel.SetFlag(CHANNEL_INVALID, true);
    bool changed = false;
    for (const unsigned int face : FindBadFaces(*faces, channel.GetPointList() ? channel.GetPointList()->GetSize() : 0)) {
        changed |= DropFaceData(*faces, face);
        LogBadFace(m_options, face);
    }
    const CFaceFlags flags(*faces);
    for (int face = 0; face < faces->GetSize(); face++)
        if (flags.IsDead(face))
            changed |= DropFaceData(*faces, face);
    if (changed)
        faces->SetFlag(FACELIST_CHANGED, true);
    return changed;
}

void CObjectCheckout::Convert()
{
    m_object.SortFaces(FACE_SORT_MATERIAL_2);
    if (!m_object.GetPointList())
        return;
    if (m_options.flags & IMPORT_WELD)
        m_object.Weld3DPoints(0, true, ALL_CHANNELS, 0);
    if (m_options.flags & IMPORT_MERGE_COPLANAR)
        m_object.MergeCoplanarFaces(0, ALL_CHANNELS);
    if (m_options.flags & IMPORT_UNIFY_NORMALS)
        m_object.UnifyNormals();
    if (m_options.flags & IMPORT_TRIANGULATE)
        m_object.Triangulate(ALL_CHANNELS, {}, true);
}

void RemoveHiddenNodes(C3DScene& scene, CSceneImportOptions& options)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC); pos;) {
        C3DSceneNode* const node = scene.GetNextNode(pos);
        if (!node->IsFlagSet(NODE_HIDDEN))
            continue;
        options.AddLogInfo(IoLogInfo::INFORMATION, FormatText(TEXT_REMOVING_OBJECT, node->GetName()));
        scene.RemoveNode(node, pos, true);
    }
}

void DisconnectFaces(C3DScene& scene)
{
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        scene.GetNextNode(object, pos);
        object->DisconnectBorderFaces(SEAM_CHANNELS, SEAM_POINT, SEAM_FACE, nullptr, false, nullptr);
    }
}

void NameMaterials(C3DScene& scene)
{
    unsigned int number = 0;
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial* const material = scene.GetNextMaterial(pos);
        number++;
        if (material->GetName().IsEmpty())
            material->SetName(Numbered(LoadText(TEXT_MATERIAL), number));
    }
}

}

void C3DScene::CheckoutImport(CSceneImportOptions& options)
{
    const unsigned int flags = options.flags;
    if (flags & IMPORT_NO_CHECKOUT)
        return;
    const auto log = [&](const Text& text) { options.AddLogInfo(IoLogInfo::INFORMATION, text); };

    if (flags & IMPORT_REMOVE_HIDDEN)
        RemoveHiddenNodes(*this, options);
    if (flags & IMPORT_CLEAN_GROUPS)
        CleanGroups(true);
    if (OrientScene(options.upAxis, true))
        log(LoadText(TEXT_CHANGE_ORIENTATION));
    if (SwapCoordinates(options.swapCoordinates))
        log(LoadText(TEXT_SWAP_COORDINATES));
    CheckoutNode(options);
    if (flags & IMPORT_GLOBAL_COORDINATES) {
        ConvertToGlobalCoordinates(nullptr);
        log(FormatText(TEXT_TO_GLOBAL_COORDINATES, GetFilename().GetFullName()));
    }
    int droppedFaces = 0;
    const int curves = GetChildCount(nullptr, OBJECT_CURVE);
    if (flags & IMPORT_CONCATENATE) {
        ConcatenateScene(*this, GetFilename().GetFileName(), droppedFaces);
        log(LoadText(TEXT_CONCATENATING));
    } else if (flags & IMPORT_CONCATENATE_BY_MATERIALS) {
        ConcatenateSceneByMaterials(*this, droppedFaces);
        log(LoadText(TEXT_MERGE_BY_MATERIALS));
    }
    LogDroppedFaces(options, droppedFaces);
    LogDroppedCurves(options, curves - GetChildCount(nullptr, OBJECT_CURVE));
    if (flags & IMPORT_GENERATE_UV && GenerateUVW())
        log(LoadText(TEXT_CREATING_UV));
    if (flags & IMPORT_DISCONNECT_FACES)
        DisconnectFaces(*this);
    NameMaterials(*this);
}

void C3DScene::CheckoutNode(CSceneImportOptions& options)
{
    CHashMap<unsigned int, unsigned int> countByKind;
    C3DBaseObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_UNIQUE_OBJECTS); pos;) {
        C3DSceneNode* const node = GetNextNode(object, pos);
        const unsigned int number = ++countByKind[object->GetKindOf()];    // a named object uses up a number too
        if (node->GetName().IsEmpty())
            node->SetName(Numbered(object->GetTypeString(), number));
        if (C3DGeomObject* const mesh = *object) {
            CObjectCheckout checkout(*mesh, options);
            checkout.Repair();
            checkout.Convert();
        }
    }
    SortSiblings();
}

// Siblings of one name keep the order in which they came.
void C3DScene::SortSiblings()
{
    struct Sibling {
        Text name;    // folded once, not once a comparison
        C3DSceneNode* node;
    };
    std::vector<Sibling> siblings;
    const auto isSorted = [this](const C3DSceneNode* child) {
        for (; child; child = GetRightNode(child))
            if (const C3DSceneNode* const next = GetRightNode(child); next && next->GetName().CompareNoCase(child->GetName()) < 0)
                return false;
        return true;
    };
    for (CTreeNode* parent = GetRoot(); parent; parent = CTree::GetNextNode(parent, nullptr)) {
        auto* const first = static_cast<C3DSceneNode*>(parent->GetFirstChild());
        if (isSorted(first))
            continue;
        siblings.clear();
        for (C3DSceneNode* child = first; child; child = GetRightNode(child)) {
            siblings.push_back({child->GetName(), child});
            siblings.back().name.MakeLower();
        }
        std::stable_sort(siblings.begin(), siblings.end(), [](const Sibling& a, const Sibling& b) { return a.name < b.name; });
        for (const Sibling& sibling : siblings)
            CTree::Relink(sibling.node, parent);
    }
}
