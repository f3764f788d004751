// Whether a face is drawn, and in what material. The primitive of a solid list is open between two faces: what is not allowed inside ends it and
// begins it again, so that a list has few of them.

#include <GL/gl.h>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

static constexpr unsigned int NO_CHANNEL = 0xFFFFFFFF;

bool C3DView::BeginFace(int face, bool front)
{
    if (!m_element.faceList->GetFace(face, m_element.face) || m_element.face.IsDead())
        return false;
    m_element.faceNumber = face;
    m_element.front = front;
    unsigned int id = m_element.face.GetMaterialID();
    if (!front && m_element.hasBackMaterials)
        if (const unsigned int back = m_element.faceList->GetBackFaceMaterial(face); back != NO_MATERIAL)
            id = back;
    InitFaceMaterial(id);
    m_element.material = m_faceMaterial.material;
    ReadUVWFace(face);
    ReadVCFace(face);

    unsigned int result = m_faceCallback ? m_faceCallback(&m_element) : FACE_RESULT_NORMAL;
    m_element.faceState = result;
    if (result & FACE_RESULT_SKIP)
        return false;
    if (result & FACE_RESULT_POINT_MATERIALS) {    // no further checks
        if (!m_element.vcInUse)
            InitMaterial();
        return true;
    }
    if (result & FACE_RESULT_SELECTION)
        m_element.material = &m_selectionMaterial;
    const unsigned int flags = m_element.face.GetFlags() & VIEW_FACE_ALL;
    if ((result & FACE_RESULT_NORMAL) && !ApplyFaceFlags(flags, result))
        return false;
    const bool marked = (result & FACE_RESULT_NORMAL) && (flags & VIEW_FACE_MARKED) && (m_element.viewFlags & VIEWFLAG_SHOW_SELECTED_FACES);
    if (marked) {
        m_element.material = &m_selectionMaterial;
        m_element.vcInUse = false;
    }
    if (m_element.vcInUse)
        result |= FACE_RESULT_POINT_MATERIALS;
    m_element.faceState = result;
    if (m_element.nodeMode == VIEWFLAG_WIREFRAME && !(marked && !(m_element.viewFlags & VIEWFLAG_SOLID)))
        m_element.material = GetWireMaterial();
    SwitchStipple((result & FACE_RESULT_STIPPLED) != 0);
    SetFaceMaterial(result);
    return true;
}

// --- Material and channels -------------------------------------------------------------------------------------------------------

void C3DView::InitFaceMaterial(unsigned int id)
{
    if (m_faceMaterial.known && m_faceMaterial.id == id)
        return;
    FaceMaterial& now = m_faceMaterial;
    now.known = true;
    now.id = id;
    now.material = m_scene->GetMaterialByID(id);
    if (!now.material)
        now.material = m_scene->GetMaterialByID(0);
    auto* const geometry = static_cast<C3DGeomObject*>(m_element.finalObject);

    now.hasTexture = HasTexture(now.material->GetMaterialID());

    unsigned int uvw = NO_CHANNEL, colors = NO_CHANNEL;
    if (m_element.viewFlags & VIEWFLAG_TEXTURE) {
        uvw = geometry->GetGlobalUVWChannel();
        const CMaterialMap* const map = now.material->GetDiffuseMaps();
        if (uvw == NO_CHANNEL && map)
            uvw = map->GetChannelID();
    }
    m_element.uvwChannel =
        uvw == NO_CHANNEL ? nullptr : m_element.channels->GetUVWChannelByID(uvw, m_element.uvwFaceList, m_element.uvwPointList);

    m_element.vcFactor = 0;
    if (m_element.viewFlags & VIEWFLAG_VERTEX_COLORS) {
        colors = geometry->GetGlobalVCChannel(m_element.vcFactor);
        if (colors == NO_CHANNEL)
            colors = now.material->GetVertexColor(GetTick(), m_element.vcFactor);
    }
    m_element.vcChannel = colors == NO_CHANNEL || m_element.vcFactor == 0
                              ? nullptr
                              : m_element.channels->GetVCChannelByID(colors, m_element.vcFaceList, m_element.vcPointList);
}

void C3DView::ReadUVWFace(int face)
{
    m_element.uvwInUse = m_element.uvwChannel && m_element.uvwFaceList && m_element.uvwPointList &&
                         m_element.uvwFaceList->GetFace(face, m_element.uvwFace) && !m_element.uvwFace.IsDead() &&
                         m_element.uvwFace.GetSize() == m_element.face.GetSize();
}

void C3DView::ReadVCFace(int face)
{
    m_element.vcInUse = m_element.vcChannel && m_element.vcFaceList && m_element.vcPointList &&
                        m_element.vcFaceList->GetFace(face, m_element.vcFace) && !m_element.vcFace.IsDead() &&
                        m_element.vcFace.GetSize() == m_element.face.GetSize();
}

C3DMaterial* C3DView::GetWireMaterial()
{
    switch (m_element.baseObject->GetKindOf()) {
    case OBJECT_LIGHT: return &m_lightMaterial;
    case OBJECT_CAMERA: return &m_cameraMaterial;
    default: return m_element.viewFlags & VIEWFLAG_SOLID ? &m_wireframeMaterial : m_element.material;
    }
}

void C3DView::SetFaceMaterial(unsigned int result)
{
    const MaterialKey key = GetKey(*m_element.material);
    if (m_element.nodeMode == VIEWFLAG_WIREFRAME) {
        if (key != m_currentMaterial && !(result & FACE_RESULT_KEEP_MATERIAL)) {
            if (m_list.mesh)
                UseMaterialList(*m_element.material, CALLLIST_LINE_COLOR);
            else {
                EndPrimitive();
                InitDiffuseColor(*m_element.material);
                BeginPrimitive(m_primitive);
            }
            m_currentMaterial = key;
        }
        return;
    }
    const bool textured = m_element.uvwInUse && m_faceMaterial.hasTexture && m_element.material == m_faceMaterial.material;
    const unsigned int texture = textured ? m_element.material->GetMaterialID() : NO_MATERIAL;
    if ((key == m_currentMaterial && texture == m_boundTexture && !m_element.vcInUse) || (result & FACE_RESULT_KEEP_MATERIAL))
        return;
    const bool byCorner = (result & FACE_RESULT_POINT_MATERIALS) != 0;
    // Corners that set their own material need the face's for its texture alone.
    if (!byCorner || texture != m_boundTexture) {
        SwitchMeshColors(false);
        if (m_list.mesh)
            UseMaterialList(*m_element.material, textured ? CALLLIST_TEXTURED_MATERIAL : CALLLIST_MATERIAL);
        else if (m_element.viewFlags & VIEWFLAG_TEXTURE)
            InitTexture();
        else {
            EndPrimitive();
            InitMaterial();
            BeginPrimitive(m_primitive);
        }
        m_boundTexture = texture;
        m_currentMaterial = key;
        m_corners.material = NO_MATERIAL;
    }
    if (byCorner && m_list.mesh && !(m_meshColors && AreCornersOf(key))) {
        EndPrimitive();
        InitCornerMaterial(*m_element.material);
        BeginPrimitive(m_primitive);
        SwitchMeshColors(true);
    }
}

void C3DView::SwitchMeshColors(bool on)
{
    if (on == m_meshColors)
        return;
    EndPrimitive();
    if (on) {
        glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
        glEnable(GL_COLOR_MATERIAL);
    } else
        glDisable(GL_COLOR_MATERIAL);
    BeginPrimitive(m_primitive);
    m_meshColors = on;
}

// --- Flags of the face -----------------------------------------------------------------------------------------------------------

bool C3DView::ApplyFaceFlags(unsigned int flags, unsigned int& result)
{
    if (flags) {
        if (!(flags & VIEW_FACE_MARKED) && (m_element.viewFlags & VIEWFLAG_MARKED_ONLY))
            return false;
        if (flags & VIEW_FACE_HIDDEN) {
            if (m_element.nodeMode == VIEWFLAG_WIREFRAME || !(m_element.viewFlags & VIEWFLAG_HIDDEN_STIPPLED))
                return false;
            result |= FACE_RESULT_STIPPLED;
        }
    }
    if (m_element.nodeMode == VIEWFLAG_WIREFRAME)
        return true;
    // With back materials each side is drawn on its own, and nothing is left to be seen from behind.
    const FaceCulling wanted = m_element.hasBackMaterials      ? CULL_AS_OBJECT
                               : (flags & VIEW_FACE_ONE_SIDED) ? CULL_ONE_SIDED
                               : (flags & VIEW_FACE_TWO_SIDED) ? CULL_TWO_SIDED
                                                               : CULL_AS_OBJECT;
    if (wanted != m_faceCulling)
        SwitchFaceCulling(wanted);
    return true;
}

// Lists are good for every state of VIEWFLAG_CULL_BACK: they set what object and faces say of their own, and then put back what was there.

void C3DView::InitCulling(const C3DGeomObject& geometry)
{
    const _faceModeEnum mode = geometry.GetFaceMode();
    NoteObjectCulling(geometry);
    m_ownCulling = m_element.nodeMode != VIEWFLAG_WIREFRAME && (mode != FACE_MODE_VIEW || m_element.hasBackMaterials);
    if (!m_ownCulling)
        return;
    glPushAttrib(GL_POLYGON_BIT);
    SetCullMode(mode == FACE_MODE_ONE_SIDED, m_element.viewFlags, true);
}

void C3DView::NoteObjectCulling(const C3DGeomObject& geometry)
{
    const _faceModeEnum mode = geometry.GetFaceMode();
    const bool culled =
        m_element.hasBackMaterials || mode == FACE_MODE_ONE_SIDED || (mode == FACE_MODE_VIEW && (m_element.viewFlags & VIEWFLAG_CULL_BACK));
    m_element.viewFlags = culled ? m_element.viewFlags | VIEWFLAG_CULLING_ON : m_element.viewFlags & ~VIEWFLAG_CULLING_ON;
}

void C3DView::SwitchFaceCulling(FaceCulling wanted)
{
    SwitchStipple(false);    // is put back with the culling
    EndPrimitive();
    if (m_faceCulling != CULL_AS_OBJECT)
        glPopAttrib();
    if (wanted == CULL_AS_OBJECT)
        NoteObjectCulling(*static_cast<C3DGeomObject*>(m_element.finalObject));
    else {
        glPushAttrib(GL_POLYGON_BIT);
        SetCullMode(wanted == CULL_ONE_SIDED, m_element.viewFlags, true);
    }
    BeginPrimitive(m_primitive);
    m_faceCulling = wanted;
}

void C3DView::SetCullMode(int on, unsigned int& flags, bool front)
{
    if (on) {
        glEnable(GL_CULL_FACE);
        glCullFace(front ? GL_BACK : GL_FRONT);
        flags |= VIEWFLAG_CULLING_ON;
    } else {
        glDisable(GL_CULL_FACE);
        flags &= ~VIEWFLAG_CULLING_ON;
    }
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

void C3DView::SwitchStipple(bool on)
{
    if (on == m_stippled)
        return;
    EndPrimitive();
    on ? glEnable(GL_POLYGON_STIPPLE) : glDisable(GL_POLYGON_STIPPLE);
    BeginPrimitive(m_primitive);
    m_stippled = on;
}
