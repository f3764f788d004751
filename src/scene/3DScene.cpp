#include "scene/3DScene.h"

#include <climits>

#include "scene/BranchWalk.h"
#include "scene/GeomObject.h"
#include "scene/Group.h"

ZEL_IMPLEMENT_CREATABLE(C3DScene, CTree)

C3DScene::C3DScene()
{
    C3DSceneNode* root = new C3DSceneNode;
    root->SetName(L"Scene");
    root->SetScene(this);
    root->SetObject(new C3DGroup, true);
    SetRoot(root);
}

C3DScene::~C3DScene() { ReleaseParserInfo(); }

C3DScene* C3DScene::Create() { return new C3DScene; }

void C3DScene::SetBranchScene(C3DSceneNode* node, C3DScene* scene)
{
    ForBranch(node, [=](C3DSceneNode* below) { below->SetScene(scene); });
}

bool C3DScene::AddNode(C3DSceneNode* parent, C3DSceneNode* node)
{
    if (!parent)
        parent = GetRoot();
    if (!node || node->GetParent() || IsSceneRoot(node) || IsBelow(parent, node))
        return false;
    SetBranchScene(node, this);
    return CTree::AddChild(parent, node, true);
}

C3DSceneNode* C3DScene::GetParent(const C3DSceneNode* node) const { return node ? node->GetParent() : nullptr; }

C3DSceneNode* C3DScene::GetChildNode(const C3DSceneNode* node) const
{
    return static_cast<C3DSceneNode*>((node ? node : GetRoot())->GetFirstChild());
}

C3DSceneNode* C3DScene::GetRightNode(const C3DSceneNode* node) const
{
    return node ? static_cast<C3DSceneNode*>(node->GetNextSibling()) : nullptr;
}

unsigned int C3DScene::GetChildDepth(const C3DSceneNode* node) const { return node ? CTree::GetDepth(node) - 1 : 0xFFFFFFFF; }

int C3DScene::GetChildCount(const C3DSceneNode* node, unsigned int kindMask) const
{
    const C3DSceneNode* top = node ? node : GetRoot();
    int count = 0;
    for (const C3DSceneNode* below = NextInBranch(top, top); below; below = NextInBranch(below, top))
        count += (below->GetObjectKindOf() & kindMask) != 0;
    return count;
}

int C3DScene::GetDirectChildCount(const C3DSceneNode* node, unsigned int) const
{
    int count = 0;
    for (const C3DSceneNode* child = GetChildNode(node); child; child = GetRightNode(child))
        count++;
    return count;
}

bool C3DScene::IsNodeInScene(const C3DSceneNode* node) const { return node && IsBelow(node, GetRoot()); }

bool C3DScene::IsChildNode(const C3DSceneNode* parent, const C3DSceneNode* node) const
{
    const C3DSceneNode* top = parent ? parent : GetRoot();
    return node && node != top && IsBelow(node, top);
}

C3DSceneNode* C3DScene::GetNodeByID(unsigned int id) const
{
    if (id == 0xFFFFFFFF)
        return nullptr;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY); pos;) {
        C3DSceneNode* node = GetNextNode(pos);
        if (node->GetNodeID() == id)
            return node;
    }
    return nullptr;
}

C3DBaseObject* C3DScene::GetObjectByID(unsigned int id) const
{
    if (id == 0xFFFFFFFF)
        return nullptr;
    C3DBaseObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY); pos;) {
        GetNextNode(object, pos);
        if (object->GetObjectID() == id)
            return object;
    }
    return nullptr;
}

/// Sum of a count over what is drawn for the nodes.
template <class COUNT> static int SumOverFinalObjects(const C3DScene& scene, COUNT count)
{
    long long sum = 0;
    C3DBaseObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
        scene.GetNextNode(object, pos);
        C3DBaseObject* final = object->GetFinalObject(false);
        if (final && final->IsGeomObject())
            sum += count(static_cast<C3DGeomObject*>(*final));
    }
    return sum < INT_MAX ? static_cast<int>(sum) : INT_MAX;
}

int C3DScene::GetPointNbr() const
{
    return SumOverFinalObjects(*this, [](C3DGeomObject* object) { return object->GetPointNbr(); });
}

int C3DScene::GetFaceNbr() const
{
    return SumOverFinalObjects(*this, [](C3DGeomObject* object) { return object->GetFaceNbr(); });
}
