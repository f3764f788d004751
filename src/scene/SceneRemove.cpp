#include <set>
#include <vector>

#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/Progress.h"

C3DSceneNode* C3DScene::RemoveNode(C3DSceneNode* node, bool destroy)
{
    const bool all = !node || IsSceneRoot(node);
    if (destroy) {
        if (all) {
            CTree::DeleteAll();
            return nullptr;
        }
        return static_cast<C3DSceneNode*>(CTree::DeleteNode(node));
    }
    if (all || !node->GetParent())
        return nullptr;
    SetBranchScene(node, nullptr);
    return static_cast<C3DSceneNode*>(CTree::RemoveNode(node));
}

bool C3DScene::RemoveNode(C3DSceneNode* node, C3DNodePos& pos, bool destroy)
{
    // A position outside the branch is settled already: testing its node again would find a shared object visited.
    const C3DSceneNode* branch = node ? node : GetRoot();
    const bool inside = pos.m_node && IsBelow(pos.m_node, branch);
    const bool ends = IsSceneRoot(branch) || (pos.m_stop && IsBelow(pos.m_stop, branch));
    C3DSceneNode* before = RemoveNode(node, destroy);
    if (inside) {
        pos.m_node = ends ? nullptr : before;
        if (pos.m_node)
            Advance(pos);
    }
    if (ends)
        pos.m_stop = nullptr;
    return pos.m_node != nullptr;
}

bool C3DScene::DeleteNodes(C3DSceneNode* start, const C3DFilter* filter)
{
    // Settled before anything goes: a child that moves up leaves the branch, and is to be looked at all the same.
    std::vector<C3DSceneNode*> nodes;
    C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_INCLUDE_START | ITER_SUBTREE, start);
    for (pos.SetFilter(filter); pos;)
        nodes.push_back(GetNextNode(pos));

    for (C3DSceneNode* node : nodes) {
        while (C3DSceneNode* child = static_cast<C3DSceneNode*>(node->GetLastChild())) {
            MergeMatrixKeyframes(node, child);
            CTree::MoveRight(node, child);
        }
        CTree::DeleteBranch(node);
    }
    return true;
}

bool C3DScene::ReplaceNode(C3DSceneNode* newNode, C3DSceneNode* oldNode, bool keepChildren)
{
    if (!newNode || newNode->GetParent() || newNode == oldNode || !IsNodeInScene(oldNode) || IsBelow(oldNode, newNode))
        return false;
    SetBranchScene(newNode, this);
    return CTree::ReplaceNode(newNode, oldNode, keepChildren);
}

void C3DScene::RemoveAll()
{
    CTree::DeleteAll();
    m_materials.RemoveAll();
    m_customData.RemoveAll();
    ReleaseParserInfo();
}

void C3DScene::RemoveAllNodes() { CTree::DeleteAll(); }

/// Times at which there is a key of any class, ascending.
static std::vector<int> GetKeyTimes(const C3DKeyframable& keys)
{
    std::vector<int> times;
    int time;
    for (int i = 0; keys.GetKeyByIndex(i, &time, KEY_ANY); i++) {
        if (times.empty() || times.back() != time)
            times.push_back(time);
    }
    return times;
}

bool C3DScene::MergeMatrixKeyframes(C3DSceneNode* parent, C3DSceneNode* child)
{
    if (!parent || !child)
        return false;
    // The parent's pivot does not reach its children, and neither does it here.
    std::vector<int> times = GetKeyTimes(*parent);
    for (const int time : GetKeyTimes(*child)) {
        parent->CreateKey(time, KEY_MATRIX, 0);
        times.push_back(time);
    }
    // All keys stand before the first changes: a new one takes its value from its neighbours.
    const std::set<int> distinct(times.begin(), times.end());
    for (const int time : distinct)
        child->CreateKey(time, KEY_MATRIX, 0);
    for (const int time : distinct) {
        C4x4TMatrix<float> local;
        parent->GetObjectLocalTM(time, local);
        auto* key = static_cast<C3DMatrixKey*>(child->GetKey(time, KEY_EXACT, KEY_MATRIX, nullptr));
        key->SetMatrix(local * key->ToMatrix());
    }
    return true;
}

void C3DScene::Clean()
{
    CProgress progress(L"Cleaning", static_cast<std::uint64_t>(GetChildCount(nullptr, OBJECT_GEOMETRIC)));
    if (progress.IsCancelled())
        return;
    const CProgressCommit commit;    // objects change one by one
    C3DGeomObject* object;
    for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        GetNextNode(object, pos);
        object->Clean();
        progress.Step();
    }
}
