#include "NodeTree.h"

C3DGeomObject* GetDrawnGeometry(const C3DSceneNode& node)
{
    C3DBaseObject* const drawn = node.GetGeomObject() ? node.GetFinalObject() : nullptr;
    return drawn ? static_cast<C3DGeomObject*>(*drawn) : nullptr;
}

std::vector<NodeRow> ListNodes(C3DScene& scene)
{
    std::vector<NodeRow> rows;
    CHashTable<unsigned int> seen;
    std::vector<const C3DSceneNode*> parents{scene.GetRoot()};
    const CTree& tree = *scene.GetTree();
    for (CTreeNode* next = tree.GetFirstNode(nullptr); next; next = tree.GetNextNode(next, nullptr)) {
        const auto& node = static_cast<const C3DSceneNode&>(*next);
        while (parents.back() != node.GetParent())
            parents.pop_back();
        NodeRow row{};
        row.node = &node;
        row.depth = static_cast<unsigned int>(parents.size() - 1);
        if (const C3DBaseObject* object = node.GetBaseObject())
            row.instance = !seen.Insert(object->GetObjectID());
        if (const C3DGeomObject* geometry = GetDrawnGeometry(node)) {
            row.points = geometry->GetPointNbr();
            row.faces = geometry->GetFaceNbr();
        }
        node.GetObjectLocalTM(0, row.matrix);
        row.moved = !row.matrix.IsIdentity();
        rows.push_back(row);
        parents.push_back(&node);
    }
    return rows;
}
