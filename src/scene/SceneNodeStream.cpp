#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/SceneStream.h"
#include "tools/Archive.h"

/// The class that the stream names for an object: what derives from the polygon object is one.
static const CXRuntimeClass* GetStoredClass(const C3DBaseObject& object)
{
    const CXRuntimeClass* polygonal = C3DObject::GetThisRuntimeClassDescriptor();
    return object.IsKindOf(polygonal) ? polygonal : object.GetRuntimeClassDescriptor();
}

/// The next object of the stream, owned by the caller.
static C3DBaseObject* LoadObject(CXArchive& ar)
{
    const CXRuntimeClass* type = ar.ReadClass(C3DBaseObject::GetThisRuntimeClassDescriptor());
    C3DBaseObject* object = XDynamicCast<C3DBaseObject>(type ? type->CreateObject() : nullptr);
    if (!object)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    try {
        if (!object->GetKindOf())    // a base class, which no node holds
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
        object->Serialize(ar);
    } catch (...) {
        DeleteMe(object);
        throw;
    }
    return object;
}

void C3DSceneNode::Serialize(CXArchive& ar)
{
    auto* context = static_cast<CSceneStreamContext*>(ar.GetData());
    C3DKeyframable::Serialize(ar);
    Move(ar, m_flags);
    Move(ar, m_updateFlags);
    if (ar.IsStoring())
        ar << GetName();
    else {
        ar >> m_name;
        m_named = true;
    }
    m_customData.Serialize(ar);

    int hasObject = m_object != nullptr;
    Move(ar, hasObject);
    if (ar.IsStoring()) {
        if (!m_object)
            return;
        const int isReference = context && m_object->IsInstanciated() && context->IsStored(m_object);
        ar << isReference;
        if (isReference) {
            ar << m_object->GetObjectID();
            return;
        }
        ar.WriteClass(GetStoredClass(*m_object));
        m_object->Serialize(ar);
        return;
    }

    if (context)
        SetScene(context->scene);
    SetObject(nullptr, true);
    if (!hasObject)
        return;
    int isReference;
    ar >> isReference;
    if (isReference) {
        unsigned int id;
        ar >> id;
        if (C3DBaseObject* object = context ? context->FindLoaded(id) : nullptr)
            SetObject(object->Copy(COPY_INSTANCE, nullptr), true);
        return;
    }
    C3DBaseObject* object = LoadObject(ar);
    SetObject(object, true);
    if (context)
        context->ObjectLoaded(object);
}

void C3DSceneNode::PostSerialize(CXArchive& ar, bool last)
{
    if (m_object)
        m_object->PostSerialize(ar, last);
}
