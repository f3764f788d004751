// Flushing: each object becomes call lists when it has changed, so that drawing never walks geometry.
//
//   FlushScene    all objects anew, after news of materials
//   FlushNode     the object of a node that has no lists
//   Flush3D...    by kind of object; the faces are drawn in DrawFaces.cpp
//   BeginNode     opens a list and settles what holds for the whole object; EndNode closes it

#include <GL/gl.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "render/MeshBuffer.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/Patch.h"
#include "scene/Preferences.h"

// --- The scene -------------------------------------------------------------------------------------------------------------------

void C3DView::BeginScene()
{
    ReinitCurrentMaterial();
    if (m_appliedFlags == 0xFFFFFFFF)
        InitViewFlag();
    DeleteGLLists(CALLLIST_FLUSHED, nullptr);
    Activate();
}

void C3DView::EndScene() { Deactivate(); }

void C3DView::FlushScene()
{
    if (!m_scene)
        return;
    struct Ending {
        C3DView& view;
        ~Ending() { view.EndScene(); }
    };
    BeginScene();
    const Ending ending{*this};
    m_compiled.RemoveAll();
    m_flushedChanges = m_restChanges = 0;
    m_transparentObjects.RemoveAll();
    InitTransparentMaterials();
    m_flushPending = false;    // an object that fails from here on is tried again on its own
    Invalidate();
    FlushNodes([this](C3DSceneNode* node) { FlushNode(node); });
}

void C3DView::InitTransparentMaterials()
{
    m_transparentMaterials.RemoveAll();
    NoteNewMaterials();
    for (unsigned int pos = m_scene->GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial* const material = m_scene->GetNextMaterial(pos);
        if (material->IsOneFlagSet(MATERIAL_CHANGES) || HasNews(*material))
            TakeNews(*material);    // every object is compiled anew behind this
        NoteTransparency(*material);
    }
}

/// All nodes, whatever comes of one: an object that cannot be compiled costs the picture no other. The first failure is thrown at the end.
void C3DView::FlushNodes(const std::function<void(C3DSceneNode*)>& flush)
{
    std::exception_ptr failure;
    for (C3DNodePos pos = m_scene->GetFirstNode(OBJECT_ANY); pos;) {
        try {
            flush(m_scene->GetNextNode(pos));
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

// --- A node ----------------------------------------------------------------------------------------------------------------------

bool C3DView::IsCompiled(C3DBaseObject* object) const
{
    const Compiled* const compiled = m_compiled.Find(object->GetObjectID());
    return HasCallList(object) || (compiled && m_listedObjects.Find(static_cast<int>(compiled->final)));
}

std::uint64_t C3DView::GetRevision(const C3DBaseObject* base, const C3DBaseObject* final)
{
    return std::max(base->GetRevision(), final ? final->GetRevision() : 0);
}

void C3DView::FlushNode(C3DSceneNode* node)
{
    C3DBaseObject* const base = node ? node->GetBaseObject() : nullptr;
    if (!base)
        return;
    if (!(base->GetKindOf() & m_settings.hiddenKinds) && !IsCompiled(base)) {
        const CGLActivate active(this);
        ReinitCurrentMaterial();
        try {
            FlushObject(node);
            if (m_flushCallback) {
                m_element.inFlushCallback = 1;
                m_flushCallback(node, m_callbackData);
                m_element.inFlushCallback = 0;
            }
        } catch (...) {
            m_element.inFlushCallback = 0;
            AbandonCallList();
            RemoveNode(node);
            m_compiled.Remove(base->GetObjectID());    // the next update tries again
            throw;
        }
        const C3DBaseObject* const final = node->GetFinalObject();
        m_compiled.SetAt(base->GetObjectID(), {GetRevision(base, final), final ? final->GetObjectID() : NO_OBJECT, m_walk});
    }
    base->Invalidate(OBJECT_UPDATE_DISPLAY, false);
    if (C3DBaseObject* const final = node->GetFinalObject(); final && final != base)
        final->Invalidate(OBJECT_UPDATE_DISPLAY, false);
    node->SetInvalidateFlag(NODE_UPDATE_DISPLAY, false);
}

int C3DView::RemoveNode(C3DSceneNode* node)
{
    C3DBaseObject* const base = node ? node->GetBaseObject() : nullptr;
    if (!base)
        return 0;
    // What was compiled for a patch, a camera or a light is another object, perhaps one that is no more.
    Compiled* const compiled = m_compiled.Find(base->GetObjectID());
    if (compiled && compiled->final != NO_OBJECT)
        DeleteGeometryLists(std::exchange(compiled->final, NO_OBJECT));
    DeleteGeometryLists(base->GetObjectID());
    return 1;
}

void C3DView::FlushObject(C3DSceneNode* node)
{
    C3DBaseObject* const base = node->GetBaseObject();
    if (base->IsFlagSet(OBJECT_EMPTY))
        return;
    C3DBaseObject* final = node->GetFinalObject();
    if (final && !(m_settings.viewFlags & VIEWFLAG_UPDATES_HELD) && final->NeedUpdate())
        final->Update(m_scene, OBJECT_UPDATE_ALL);
    switch (base->GetKindOf()) {
    case OBJECT_POLYGONAL: Flush3DGeomObject(node, static_cast<C3DGeomObject*>(base)); break;
    case OBJECT_CURVE: Flush3DCurve(node, static_cast<C3DCurve*>(base)); break;
    case OBJECT_PATCH: Flush3DPatch(node, static_cast<C3DPatch*>(base)); break;
    case OBJECT_CAMERA:
    case OBJECT_LIGHT: Flush3DGeomObject(node, XDynamicCast<C3DGeomObject>(final)); break;
    default: break;
    }
}

// --- By kind ---------------------------------------------------------------------------------------------------------------------

void C3DView::Flush3DObject(C3DSceneNode* node, C3DGeomObject* geometry)
{
    if (m_settings.viewFlags & VIEWFLAG_SMOOTH)
        ViewSmoothNode(node, geometry);
    else if (m_settings.viewFlags & VIEWFLAG_FLAT)
        ViewFlatNode(node, geometry);
}

void C3DView::Flush3DGeomObject(C3DSceneNode* node, C3DGeomObject* geometry)
{
    if (!geometry || !geometry->GetPointList() || !geometry->GetFaceList())
        return;
    const bool wiresOnly = node->GetBaseObject()->IsFlagSet(OBJECT_WIREFRAME_ONLY) || geometry->IsFlagSet(OBJECT_WIREFRAME_ONLY);
    if (!wiresOnly)
        Flush3DObject(node, geometry);
    if (wiresOnly || (m_settings.viewFlags & VIEWFLAG_WIREFRAME))
        ViewWireframeNode(node, geometry);
}

void C3DView::Flush3DPatch(C3DSceneNode* node, C3DPatch* patch)
{
    if (patch->GetLevel() < 0)
        patch->SetLevel(static_cast<int>(C3DPreferences::Get3DPreferences().GetPatchLevel()));
    Flush3DGeomObject(node, XDynamicCast<C3DGeomObject>(node->GetFinalObject()));
}

void C3DView::Flush3DCurve(C3DSceneNode* node, C3DCurve* curve)
{
    C3DPointList* const points = curve->GetPointList();
    if (!points || !BeginNode(node, curve, VIEWFLAG_WIREFRAME))
        return;
    C3DMaterial* material = m_scene->GetMaterialByID(curve->GetMaterialID());
    if (!material)
        material = m_scene->GetMaterialByID(0);
    const auto isSelected = [&](int point) { return points->ElementAt(point)->IsOneFlagSet(VIEW_POINT_SELECTED); };
    const CRGBColor color = material->GetDiffuseColor(GetTick(), true), selected = m_selectionMaterial.GetDiffuseColor(GetTick(), true);
    const auto send = [&](int number) {
        const C3DTPoint<float>& point = *points->ElementAt(number);
        if (m_list.mesh) {
            m_list.mesh->AddCorner(number, point, nullptr, false, nullptr, isSelected(number) ? selected : color);
            return;
        }
        InitDiffuseColor(isSelected(number) ? m_selectionMaterial : *material);
        glVertex3fv(point.ValPtr());
    };
    int former = -1;
    for (int i = 0; i < points->GetSize(); i++) {
        if (!isSelected(i) && (m_element.viewFlags & VIEWFLAG_MARKED_ONLY))
            continue;
        if (former >= 0) {
            send(former);
            send(i);
        }
        former = i;
    }
    EndNode();
}

// --- A list ----------------------------------------------------------------------------------------------------------------------

void C3DView::InitCurrentRenderElement()
{
    const int inFlushCallback = m_element.inFlushCallback;
    m_element = _RenderElement();
    m_element.inFlushCallback = inFlushCallback;
    m_element.view = this;
    m_element.scene = m_scene;
    m_element.callbackData = m_callbackData;
    m_element.viewFlags = m_settings.viewFlags;
    m_faceMaterial.known = false;
    m_stippled = m_meshColors = m_ownCulling = false;
    m_faceCulling = CULL_AS_OBJECT;
    ReinitCurrentMaterial();
}

bool C3DView::BeginNode(C3DSceneNode* node, C3DGeomObject* geometry, unsigned int mode)
{
    InitCurrentRenderElement();
    m_element.node = node;
    m_element.baseObject = node->GetBaseObject();
    m_element.finalObject = geometry;
    m_element.nodeMode = mode & VIEWFLAG_RENDER_MODE;
    const bool wires = m_element.nodeMode == VIEWFLAG_WIREFRAME;
    _CallListType type = geometry->GetKindOf() == OBJECT_CURVE ? CALLLIST_CURVE
                         : wires                               ? CALLLIST_WIREFRAME
                         : mode & DRAW_TRANSPARENT             ? CALLLIST_TRANSPARENT
                                                               : CALLLIST_SOLID;
    if (m_beginNodeCallback && !m_beginNodeCallback(&m_element, type, m_callbackData))
        return false;
    BeginCallList(geometry, type);

    m_element.faceList = geometry->GetFaceList();
    m_element.pointList = geometry->GetPointList();
    m_element.channels = geometry->GetChannels();
    m_element.hasBackMaterials = m_element.faceList && m_element.faceList->HasBackFaceMaterials();
    const bool buffered = m_element.pointList && MayUseMesh();
    InitCulling(*geometry);
    if (m_element.viewFlags & VIEWFLAG_SPEC_NORMALS)
        m_element.specNormals = m_element.channels->GetSpecNormalChannel();
    if (!wires)
        InitNormals(*geometry);
    if (m_element.nodeMode != VIEWFLAG_SMOOTH || m_element.channels->GetChannelsNumber(CHANNEL_VC, true) == 0)
        m_element.viewFlags &= ~VIEWFLAG_VERTEX_COLORS;
    if (wires) {
        m_element.viewFlags &= ~VIEWFLAG_TEXTURE;
        glDisable(GL_TEXTURE_2D);
        if (m_element.viewFlags & VIEWFLAG_SOLID)
            glDisable(GL_LIGHTING);
    }
    if (m_element.pointList) {
        const unsigned int primitive = wires ? GL_LINES : GL_TRIANGLES;
        if (buffered) {
            const bool hasUVW = (m_element.viewFlags & VIEWFLAG_TEXTURE) && m_element.channels->GetChannelsNumber(CHANNEL_UVW, true) > 0;
            const bool hasColors = geometry->GetKindOf() == OBJECT_CURVE || (m_element.viewFlags & VIEWFLAG_VERTEX_COLORS);
            m_list.mesh = std::make_shared<CMeshBuffer>(primitive, m_element.pointList->GetSize(), !wires, hasUVW, hasColors);
        }
        BeginPrimitive(primitive);
    }
    return true;
}

/// Corners whose material a host sets, and lists inside those of a host, are GL's alone.
bool C3DView::MayUseMesh() const { return m_listDepth == 1 && !m_faceCallback && !m_pointMaterialCallback; }

/// Every corner of a live face has a given normal, so that none needs to be worked out.
static bool HasAllNormals(CSpecNormalChannel* given, const C3DFaceList& faces)
{
    const CNormalFaceList* const normalFaces = given ? given->GetNormalFaceList() : nullptr;
    const C3DVectorList* const vectors = given ? given->GetNormalVectorList() : nullptr;
    if (!normalFaces || !vectors)
        return false;
    const CFaceFlags flags(faces), normalFlags(*normalFaces);
    for (int face = 0; face < faces.GetSize(); face++) {
        if (flags.IsDead(face))
            continue;
        int count, normalCount;
        faces.GetIndexes(face, count);
        const int* const corners = normalFaces->GetIndexes(face, normalCount);
        if (count != normalCount || normalFlags.IsDead(face))
            return false;
        for (int k = 0; k < count; k++) {
            const C3DTVector<float>* const normal = vectors->ElementAt(corners[k]);
            if (!normal || normal->IsFlagSet(POINT_UNSET))
                return false;
        }
    }
    return true;
}

void C3DView::InitNormals(C3DGeomObject& geometry)
{
    if (!m_element.faceList)
        return;
    if (m_element.nodeMode == VIEWFLAG_FLAT) {
        m_element.faceNormals = geometry.GetFaceNormalChannel();
        m_element.faceNormalList = m_element.faceNormals->GetNormalVectorList();
        return;
    }
    m_element.pointNormals = HasAllNormals(m_element.specNormals, *m_element.faceList) ? m_element.channels->GetPointNormalChannel()
                                                                                       : geometry.GetPointNormalChannel();
    m_element.pointNormalList = m_element.pointNormals->GetNormalVectorList();
    m_element.normalFaceList = m_element.pointNormals->GetNormalFaceList();
}

void C3DView::EndNode()
{
    const bool wires = m_element.nodeMode == VIEWFLAG_WIREFRAME;
    if (m_element.pointList)
        EndPrimitive();
    if (m_faceCulling != CULL_AS_OBJECT)
        glPopAttrib();
    if (m_meshColors)
        glDisable(GL_COLOR_MATERIAL);
    if (wires && (m_element.viewFlags & VIEWFLAG_SOLID))
        glEnable(GL_LIGHTING);
    if (m_stippled)
        glDisable(GL_POLYGON_STIPPLE);
    if (m_ownCulling)
        glPopAttrib();
    EndCallList();
}
