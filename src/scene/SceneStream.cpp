#include "scene/SceneStream.h"

#include "scene/3DScene.h"
#include "scene/Group.h"
#include "scene/ObjectIDs.h"
#include "scene/ParserSceneInfo.h"
#include "tools/Archive.h"

static constexpr int VERSION = 1;

bool CSceneStreamContext::IsStored(const C3DBaseObject* object)
{
    if (const C3DBaseObject* const* const stored = storedObjects.Find(object->GetObjectID()))
        return *stored == object;
    storedObjects.Insert(object->GetObjectID(), object);
    return false;
}

void CSceneStreamContext::ObjectLoaded(C3DBaseObject* object)
{
    if (indexed)
        loadedObjects.Insert(object->GetObjectID(), object);
}

C3DBaseObject* CSceneStreamContext::FindLoaded(unsigned int id)
{
    if (!indexed) {
        C3DBaseObject* object;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
            scene->GetNextNode(object, pos);
            loadedObjects.Insert(object->GetObjectID(), object);
        }
        indexed = true;
    }
    C3DBaseObject** found = loadedObjects.Find(id);
    return found ? *found : nullptr;
}

namespace {

/// Puts the context into the archive, and takes it out again however the stream ends.
class CContextScope {
public:
    CContextScope(CXArchive& ar, CSceneStreamContext& context) : m_archive(ar), m_former(ar.GetData()) { ar.SetData(&context); }
    ~CContextScope() { m_archive.SetData(m_former); }

private:
    CXArchive& m_archive;
    void* m_former;
};

/// The tree's own stream takes any class of tree node.
void CheckNodes(const CTree& tree)
{
    for (const CTreeNode* node = tree.GetRoot(); node; node = tree.GetNextNode(node, nullptr)) {
        if (!node->IsKindOf(C3DSceneNode::GetThisRuntimeClassDescriptor()))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    }
}

}

void C3DScene::Serialize(CXArchive& ar)
{
    CSceneStreamContext context(this);
    const CContextScope scope(ar, context);
    if (ar.IsStoring()) {
        if (!GetRoot())
            return;
        bool first = true;
        for (C3DNodePos pos = GetFirstNode(OBJECT_ANY); pos; first = false)
            GetNextNode(pos)->PreSerialize(ar, first);
    }

    int version = VERSION, hasInfo = m_parserInfo != nullptr;
    Move(ar, version);
    if (version != VERSION)
        return;
    Move(ar, hasInfo);
    if (ar.IsLoading()) {
        ReleaseParserInfo();
        m_parserInfo = hasInfo ? new CParserSceneInfo(nullptr, 0, false) : nullptr;
    }
    if (m_parserInfo)
        m_parserInfo->Serialize(ar);
    m_customData.Serialize(ar);
    m_materials.Serialize(ar);
    CTree::Serialize(ar);
    if (ar.IsLoading()) {
        CheckNodes(*this);
        if (!GetRoot()->GetBaseObject())    // whatever a stream says, the root holds one
            GetRoot()->SetObject(new C3DGroup, true);
        // References are settled: what shares an id with another object from here on is none.
        CObjectIDs ids;
        ids.EnterNodes(*this);
        ids.Enter(GetRoot()->GetBaseObject());
    }

    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY); pos;) {
        C3DSceneNode* node = GetNextNode(pos);
        node->PostSerialize(ar, !pos);
    }
    if (ar.IsStoring())
        ar.Flush();
}
