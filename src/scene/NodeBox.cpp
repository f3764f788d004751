#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "scene/GeomObject.h"
#include "scene/NodeWalkTM.h"

// Box of a node: that of each object of the branch, transformed corner by corner, all joined.

/// Box that grows. A coordinate that is no number stays in it: nothing is forgotten silently.
struct CBoxUnion {
    C3DTPoint<float>& min;
    C3DTPoint<float>& max;
    bool found = false;

    void Add(const C3DTPoint<float>& low, const C3DTPoint<float>& high)
    {
        for (int i = 0; i < 3; i++) {
            min[i] = !found || low[i] < min[i] || low[i] != low[i] ? low[i] : min[i];
            max[i] = !found || high[i] > max[i] || high[i] != high[i] ? high[i] : max[i];
        }
        found = true;
    }
};

bool C3DSceneNode::GetInternalBox(const C4x4TMatrix<float>& matrix, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags,
                                  unsigned int pointFilter) const
{
    C3DBaseObject* final = GetFinalObject();
    C3DGeomObject* object = final ? static_cast<C3DGeomObject*>(*final) : nullptr;
    C3DTPoint<float> low, high;
    if (!object || !object->GetBoundingBox(low, high, boxFlags & (BOX_FACES | BOX_POINTS), pointFilter))
        return false;
    CBoxUnion box{min, max};
    for (int corner = 0; corner < 8; corner++) {
        const C3DTPoint<float> p =
            matrix * C3DTPoint<float>(corner & 1 ? high.x : low.x, corner & 2 ? high.y : low.y, corner & 4 ? high.z : low.z);
        box.Add(p, p);
    }
    return true;
}

bool C3DSceneNode::GetBoundingBox(int time, C3DTPoint<float>& min, C3DTPoint<float>& max, unsigned int boxFlags, unsigned int value1,
                                  unsigned int value2) const
{
    if (!this || !(boxFlags & (BOX_FACES | BOX_POINTS)))
        return false;
    min = max = C3DTPoint<float>();

    const bool byNodeFlags = boxFlags & BOX_NODE_FLAGS;
    const unsigned int pointFilter = byNodeFlags ? 0 : value1;
    const unsigned int kinds = boxFlags & BOX_KINDS ? value2 : boxFlags & BOX_NOT_KINDS ? ~value2 : OBJECT_ANY;
    unsigned int required = byNodeFlags ? value1 : 0, forbidden = 0;
    if (boxFlags & BOX_SELECTED_ONLY)
        required |= NODE_SELECTED;
    if (boxFlags & BOX_SKIP_HIDDEN)
        forbidden |= NODE_HIDDEN;
    const bool alone = boxFlags & BOX_NODE_ONLY && !byNodeFlags;

    CNodeWalkTM walk(time, true);
    CBoxUnion box{min, max};
    const auto add = [&](const C3DSceneNode* node) {
        C4x4TMatrix<float> matrix;
        C3DTPoint<float> low, high;
        walk.Get(node, matrix);
        if (node->GetInternalBox(matrix, low, high, boxFlags, pointFilter))
            box.Add(low, high);
    };
    add(this);
    for (const C3DSceneNode* node = alone ? nullptr : NextInBranch(this, this); node; node = NextInBranch(node, this)) {
        if (node->GetObjectKindOf() & kinds && node->IsFlagSet(required) && !node->IsOneFlagSet(forbidden))
            add(node);
    }
    return box.found;
}
