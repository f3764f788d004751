// Call lists: GL's names by object, context and type.

#include "render/CallLists.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>

#include <vector>

#include "render/View.h"
#include "scene/SceneNode.h"

unsigned int C3DView::GetCallListID(const C3DBaseObject* object) { return object ? object->GetObjectID() : 0xFFFFFFFF; }

bool C3DView::HasCallList(C3DBaseObject* object) const { return m_listedObjects.Find(static_cast<int>(GetCallListID(object))); }

void C3DView::BeginCallList(C3DBaseObject* object, _CallListType type)
{
    if (m_listDepth++ > 0)
        return;
    CHashID list{GetCallListID(object), GetGLContext(), type};
    m_listedObjects.Insert(static_cast<int>(list.key));
    if (unsigned int former = m_callLists.GetPosition(list); former != HASH_END) {
        glDeleteLists(m_callLists.GetNext(former).name, 1);
        m_callLists.Remove(list);
    }
    list.name = glGenLists(1);
    m_callLists.Insert(list);
    glNewList(list.name, GL_COMPILE);
}

void C3DView::EndCallList()
{
    if (--m_listDepth == 0)
        glEndList();
}

void C3DView::DrawCallList(C3DSceneNode* node, _CallListType type)
{
    const C3DBaseObject* const object = node ? node->GetFinalObject() : nullptr;
    if (unsigned int place = m_callLists.GetPosition({GetCallListID(object), GetGLContext(), type}); place != HASH_END)
        glCallList(m_callLists.GetNext(place).name);
}

static void DeleteNames(const CHashID& list)
{
    if (list.type == CALLLIST_TEXTURE)
        glDeleteTextures(1, &list.name);
    else
        glDeleteLists(list.name, static_cast<int>(list.count));
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
