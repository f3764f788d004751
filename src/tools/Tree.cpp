#include "tools/Tree.h"

#include <cstdint>
#include <memory>

#include "tools/Archive.h"
#include "tools/Exception.h"

ZEL_IMPLEMENT_DYNAMIC(CTreeNode, CXObject)
ZEL_IMPLEMENT_DYNAMIC(CTree, CXObject)

CTreeNode::~CTreeNode()
{
    Unlink();
    for (CTreeNode* child = m_firstChild; child;) {
        CTreeNode* const next = child->m_next;
        child->m_parent = child->m_prev = child->m_next = nullptr;
        child = next;
    }
}

void CTreeNode::Serialize(CXArchive&) {}
void CTreeNode::DeleteNode() { delete this; }
CXTString<wchar_t> CTreeNode::GetDisplayName() const { return {}; }
CTreeNode* CTreeNode::Copy(unsigned int) const { return nullptr; }
bool CTreeNode::operator==(const CTreeNode& other) const { return this == &other; }

void CTreeNode::Unlink()
{
    if (!m_parent)
        return;
    (m_prev ? m_prev->m_next : m_parent->m_firstChild) = m_next;
    (m_next ? m_next->m_prev : m_parent->m_lastChild) = m_prev;
    m_parent = m_prev = m_next = nullptr;
}

CTree::~CTree() { DeleteBranch(m_root); }

void CTree::SetRoot(CTreeNode* root)
{
    if (!m_root && root && !root->m_parent)
        m_root = root;
}

// Puts a detached node among the children of `parent`, behind `left` or, for null, in front.
void CTree::Link(CTreeNode* parent, CTreeNode* left, CTreeNode* node)
{
    node->m_parent = parent;
    node->m_prev = left;
    node->m_next = left ? left->m_next : parent->m_firstChild;
    (node->m_next ? node->m_next->m_prev : parent->m_lastChild) = node;
    (left ? left->m_next : parent->m_firstChild) = node;
}

bool CTree::IsFree(const CTreeNode* node) const { return node && !node->m_parent && node != m_root; }

bool CTree::IsBelow(const CTreeNode* node, const CTreeNode* ancestor)
{
    if (!ancestor)
        return false;
    if (!ancestor->m_firstChild)    // nothing is below a leaf: no need to climb
        return node == ancestor;
    while (node && node != ancestor)
        node = node->m_parent;
    return node != nullptr;
}

bool CTree::AddChild(CTreeNode* parent, CTreeNode* node, bool last)
{
    if (!parent)
        parent = m_root;
    if (!parent || !IsFree(node) || IsBelow(parent, node))
        return false;
    Link(parent, last ? parent->m_lastChild : nullptr, node);
    return true;
}

bool CTree::AddRight(CTreeNode* left, CTreeNode* node)
{
    if (!left || !left->m_parent || !IsFree(node) || IsBelow(left, node))
        return false;
    Link(left->m_parent, left, node);
    return true;
}

// The node before `node` in walking order: the last one of its left sibling's branch, else its parent.
CTreeNode* CTree::NodeBefore(const CTreeNode* node)
{
    CTreeNode* before = node->m_prev;
    if (!before)
        return node->m_parent;
    while (before->m_lastChild)
        before = before->m_lastChild;
    return before;
}

CTreeNode* CTree::DeleteNode(CTreeNode* node)
{
    if (node && node == m_root) {
        DeleteAll();
        return nullptr;
    }
    CTreeNode* const before = RemoveNode(node);
    DeleteBranch(node);
    return before;
}

CTreeNode* CTree::RemoveNode(CTreeNode* node)
{
    if (!node || !node->m_parent)
        return nullptr;
    CTreeNode* const before = NodeBefore(node);
    node->Unlink();
    return before;
}

void CTree::DeleteAll()
{
    while (m_root && m_root->m_firstChild)
        DeleteBranch(m_root->m_firstChild);
}

// Leaves first: each step goes down to one or up from it.
void CTree::DeleteBranch(CTreeNode* top)
{
    if (!top)
        return;
    top->Unlink();
    for (CTreeNode* node = top; node;) {
        while (node->m_firstChild)
            node = node->m_firstChild;
        CTreeNode* const parent = node->m_parent;    // null for the top, which goes last
        node->Unlink();
        node->DeleteNode();
        node = parent;
    }
}

bool CTree::MoveNode(CTreeNode* node, CTreeNode* parent)
{
    if (!parent)
        parent = m_root;
    if (!node || !node->m_parent || !parent || IsBelow(parent, node))
        return false;
    Relink(node, parent);
    return true;
}

void CTree::Relink(CTreeNode* node, CTreeNode* parent)
{
    node->Unlink();
    Link(parent, parent->m_lastChild, node);
}

bool CTree::MoveRight(CTreeNode* node, CTreeNode* child)
{
    if (!node || !node->m_parent || !child || !child->m_parent)
        return false;
    if (child->m_parent != node && IsBelow(node, child))    // no climb for the usual case, a child that moves up
        return false;
    child->Unlink();
    Link(node->m_parent, node, child);
    return true;
}

bool CTree::ReplaceNode(CTreeNode* newNode, CTreeNode* oldNode, bool keepChildren)
{
    if (!IsFree(newNode) || !oldNode || (oldNode != m_root && !oldNode->m_parent) || IsBelow(oldNode, newNode))
        return false;
    if (keepChildren)
        while (CTreeNode* const child = oldNode->m_firstChild) {
            child->Unlink();
            Link(newNode, newNode->m_lastChild, child);
        }
    if (oldNode == m_root)
        m_root = newNode;
    else
        Link(oldNode->m_parent, oldNode, newNode);
    DeleteBranch(oldNode);
    return true;
}

CTreeNode* CTree::GetFirstNode(const CTreeNode* start) const
{
    if (!start)
        start = m_root;
    return start ? start->m_firstChild : nullptr;
}

CTreeNode* CTree::GetNextNode(const CTreeNode* node, const CTreeNode* stop) const
{
    if (!node)
        return nullptr;
    if (node->m_firstChild)
        return node->m_firstChild;
    for (; node && node != stop; node = node->m_parent)
        if (node->m_next)
            return node->m_next;
    return nullptr;
}

unsigned int CTree::GetDepth(const CTreeNode* node) const
{
    unsigned int depth = 0;
    while (node && (node = node->m_parent))
        depth++;
    return depth;
}

// Stream: a record for each node in walking order, then one without class. A record is the class, the number of steps up
// from the node before to the parent (not for the root), and the node's fields.

void CTree::Serialize(CXArchive& ar)
{
    if (ar.IsStoring())
        Store(ar);
    else
        Load(ar);
}

void CTree::Store(CXArchive& ar) const
{
    const CTreeNode* before = nullptr;
    for (CTreeNode* node = m_root; node; node = GetNextNode(node, nullptr)) {
        ar.WriteClass(node->GetRuntimeClassDescriptor());
        if (before) {
            std::uint32_t steps = 0;
            for (; before != node->m_parent; before = before->m_parent)
                steps++;
            ar << steps;
        }
        node->Serialize(ar);
        before = node;
    }
    ar.WriteClass(nullptr);
}

namespace {

struct DeleteNodeLater {
    void operator()(CTreeNode* node) const { node->DeleteNode(); }
};
using OwnedNode = std::unique_ptr<CTreeNode, DeleteNodeLater>;

OwnedNode CreateNode(const CXRuntimeClass* type)
{
    OwnedNode node(static_cast<CTreeNode*>(type->CreateObject()));
    if (!node)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    return node;
}

}

void CTree::Load(CXArchive& ar)
{
    const CXRuntimeClass* const nodeClass = CTreeNode::GetThisRuntimeClassDescriptor();
    DeleteAll();
    const CXRuntimeClass* type = ar.ReadClass(nodeClass);
    if (!type)
        return;
    if (!m_root || m_root->GetRuntimeClassDescriptor() != type) {
        OwnedNode root = CreateNode(type);
        DeleteBranch(m_root);
        m_root = root.release();
    }
    m_root->Serialize(ar);

    CTreeNode* parent = m_root;
    while ((type = ar.ReadClass(nodeClass))) {
        std::uint32_t steps;
        for (ar >> steps; steps && parent; steps--)
            parent = parent->m_parent;
        if (!parent)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        OwnedNode node = CreateNode(type);
        node->Serialize(ar);
        Link(parent, parent->m_lastChild, node.get());
        parent = node.release();
    }
}
