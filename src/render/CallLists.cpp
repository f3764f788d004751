// Call lists: GL's names by object, context and type.

#include "render/CallLists.h"

#include <GL/gl.h>

#include <vector>

#include "render/MeshBuffer.h"
#include "render/View.h"
#include "scene/SceneNode.h"

unsigned int C3DView::GetCallListID(const C3DBaseObject* object) { return object ? object->GetObjectID() : 0xFFFFFFFF; }

bool C3DView::HasCallList(C3DBaseObject* object) const { return m_listedObjects.Find(static_cast<int>(GetCallListID(object))); }

static void DeleteNames(const CHashID& list)
{
    if (list.type == CALLLIST_TEXTURE)
        glDeleteTextures(1, &list.name);
    else
        glDeleteLists(list.name, static_cast<int>(list.count));
    if (list.mesh)
        list.mesh->Delete();
}

void C3DView::BeginCallList(C3DBaseObject* object, _CallListType type)
{
    if (m_listDepth++ > 0)
        return;
    m_list = {GetCallListID(object), GetGLContext(), type};
    m_listedObjects.Insert(static_cast<int>(m_list.key));
    if (unsigned int former = m_callLists.GetPosition(m_list); former != HASH_END) {
        DeleteNames(m_callLists.GetNext(former));
        m_callLists.Remove(m_list);
    }
    m_list.name = glGenLists(1);
    OpenList(m_list.name);
}

void C3DView::EndCallList()
{
    if (m_listDepth > 1) {
        m_listDepth--;
        return;
    }
    CloseList();
    if (m_list.mesh) {
        m_list.mesh->BeginRange(m_openList, m_openList != m_list.name);    // the state behind the last range
        m_list.mesh->Upload();
    }
    m_callLists.Insert(m_list);
    m_list = {};
    m_listDepth = 0;
}

void C3DView::AbandonCallList()
{
    if (m_isPrimitiveOpen && !m_list.mesh)
        glEnd();
    m_isPrimitiveOpen = false;
    if (m_listDepth == 0)
        return;
    if (m_isListOpen) {
        CloseList();
        glDeleteLists(m_openList, 1);
    }
    DeleteNames(m_list);
    DeleteGeometryLists(static_cast<unsigned int>(m_list.key));
    m_list = {};
    m_listDepth = 0;
}

void C3DView::OpenList(unsigned int name)
{
    glNewList(name, GL_COMPILE);
    m_openList = name;
    m_isListOpen = true;
}

void C3DView::CloseList()
{
    glEndList();
    m_isListOpen = false;
}

// A primitive of a list that has a mesh is a range of it, and what stands between two is a list of its own.

void C3DView::BeginPrimitive(unsigned int primitive)
{
    m_primitive = primitive;
    m_isPrimitiveOpen = true;
    if (!m_list.mesh) {
        glBegin(primitive);
        return;
    }
    CloseList();
    m_list.mesh->BeginRange(m_openList, m_openList != m_list.name);
}

void C3DView::EndPrimitive()
{
    m_isPrimitiveOpen = false;
    if (!m_list.mesh) {
        glEnd();
        return;
    }
    m_list.mesh->EndRange();
    OpenList(glGenLists(1));
}

// What a material is to GL is one list for all meshes that have it: drivers are slow with many small lists.

void C3DView::UseMaterialList(C3DMaterial& material, _CallListType type)
{
    const CHashID list{GetKey(material), GetGLContext(), type};
    unsigned int place = m_callLists.GetPosition(list);
    m_list.mesh->EndRange();
    m_list.mesh->BeginRange(place == HASH_END ? CompileMaterial(material, type, glGenLists(1)) : m_callLists.GetNext(place).name, false);
}

unsigned int C3DView::CompileMaterial(C3DMaterial& material, _CallListType type, unsigned int name)
{
    CHashID list{GetKey(material), GetGLContext(), type};
    list.name = name;
    glNewList(name, GL_COMPILE);
    try {
        ReinitCurrentMaterial();
        if (type == CALLLIST_LINE_COLOR)
            InitDiffuseColor(material);
        else
            ApplyMaterial(material, type == CALLLIST_TEXTURED_MATERIAL ? GetTextureName(material.GetMaterialID()) : 0);
    } catch (...) {
        glEndList();
        throw;
    }
    glEndList();
    m_callLists.Insert(list);
    return name;
}

void C3DView::RecompileMaterial(C3DMaterial& material)
{
    for (const _CallListType type : {CALLLIST_MATERIAL, CALLLIST_TEXTURED_MATERIAL, CALLLIST_LINE_COLOR})
        if (unsigned int place = m_callLists.GetPosition({GetKey(material), GetGLContext(), type}); place != HASH_END)
            CompileMaterial(material, type, m_callLists.GetNext(place).name);
}

void C3DView::DrawCallList(C3DSceneNode* node, _CallListType type)
{
    const C3DBaseObject* const object = node ? node->GetFinalObject() : nullptr;
    unsigned int place = m_callLists.GetPosition({GetCallListID(object), GetGLContext(), type});
    if (place == HASH_END)
        return;
    const CHashID& list = m_callLists.GetNext(place);
    if (!list.mesh)
        glCallList(list.name);
    else
        m_pick ? list.mesh->DrawForSelection() : list.mesh->Draw();
}

void C3DView::DeleteGeometryLists(unsigned int id)
{
    const CGLActivate active(this);
    for (unsigned int bit = 1; bit <= CALLLIST_GEOMETRY; bit <<= 1) {    // a host's own types too
        const CHashID list{id, GetGLContext(), static_cast<_CallListType>(bit)};
        if (unsigned int place = m_callLists.GetPosition(list); place != HASH_END) {
            DeleteNames(m_callLists.GetNext(place));
            m_callLists.Remove(list);
        }
    }
    m_listedObjects.Remove(static_cast<int>(id));
    m_transparentObjects.Remove(static_cast<int>(id));
}

int C3DView::DeleteGLLists(_CallListType mask, C3DBaseObject* object)
{
    const HGLRC context = GetGLContext();
    if (!context)
        return 0;
    const CGLActivate active(this);
    std::vector<CHashID> gone;
    for (const CHashID& list : m_callLists)
        if (list.context == context && (list.type & mask) && (!object || list.key == GetCallListID(object)))
            gone.push_back(list);
    for (const CHashID& list : gone) {
        DeleteNames(list);
        m_callLists.Remove(list);
        if (list.type & CALLLIST_GEOMETRY)
            m_listedObjects.Remove(static_cast<int>(list.key));
    }
    return 1;
}

bool C3DView::HasTexture(unsigned int materialID) const { return m_callLists.Find({materialID, GetGLContext(), CALLLIST_TEXTURE}); }
