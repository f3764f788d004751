#include "geometry/3DPointList.h"
#include "geometry/MatrixProduct.h"
#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "scene/GeomObject.h"
#include "scene/NodeWalkTM.h"
#include "scene/TransformKeys.h"

void C3DSceneNode::GetObjectLocalTM(int time, C4x4TMatrix<float>& matrix) const
{
    const CKeyPlaces& places = GetKeyPlaces();
    if (places.IsEmpty())
        matrix.SetIdentity();
    else if (const C4x4TMatrix<float>* single = CTransformKeys::GetSingleMatrix(places))
        CopyMatrix(single->m, matrix.m);
    else
        CTransformKeys(places, time, FindBehind(time)).GetLocal(matrix);
}

void C3DSceneNode::GetNodeTM(int time, C4x4TMatrix<float>& matrix, bool withRoot) const
{
    GetObjectLocalTM(time, matrix);
    if (IsSceneRoot(this))
        return;
    C4x4TMatrix<float> parentTM;
    for (const C3DSceneNode* parent = GetParent(); parent; parent = parent->GetParent()) {
        if (parent->GetKeyPlaces().IsEmpty())
            continue;
        if (!withRoot && IsSceneRoot(parent))
            break;
        parent->GetObjectLocalTM(time, parentTM);
        MultiplyMatrices(parentTM.m, matrix.m, matrix.m);
    }
    ApplyPivot(time, matrix);
}

void C3DSceneNode::ApplyPivot(int time, C4x4TMatrix<float>& matrix) const
{
    const CKeyPlaces& places = GetKeyPlaces();
    if (!places.IsEmpty() && !CTransformKeys::GetSingleMatrix(places))
        CTransformKeys(places, time, FindBehind(time)).ApplyPivot(matrix);
}

void C3DSceneNode::GetNodeLocalTM(int time, C4x4TMatrix<float>& matrix) const
{
    if (IsSceneRoot(this)) {
        GetObjectLocalTM(time, matrix);
        return;
    }
    GetNodeTM(time, matrix, true);
    const C3DSceneNode* parent = GetParent();
    if (!parent || IsSceneRoot(parent))
        return;
    C4x4TMatrix<float> parentTM, inverse;
    parent->GetNodeTM(time, parentTM, true);
    C4x4TMatrix<float>::GetInverse(parentTM, inverse);    // a singular parent counts as the identity
    matrix = inverse * matrix;
}

// Pivots and centres

void C3DSceneNode::CenterPivotOnCG(const C3DTVector<float>& relative, const C3DTVector<float>& offset)
{
    C3DGeomObject* object = GetGeomObject();
    C3DTPoint<float> min, max;
    if (!object || !object->GetPointList() || !object->GetBoundingBox(min, max, BOX_POINTS))
        return;
    C3DTVector<float> shift;
    for (int i = 0; i < 3; i++)
        shift[i] = (max[i] - min[i]) * relative[i] + min[i] + offset[i];
    if (IsZeroVector(shift))
        return;

    if (DeleteObjectInstanciation())    // for other nodes the points stay
        object = GetGeomObject();
    C3DPointList& points = *object->GetPointList();
    C3DTPoint<float>* point = points.GetFirst();
    for (int i = 0; i < points.GetSize(); i++)
        point[i] -= shift;
    object->Invalidate(CHANGE_POINTS, true);

    // What the points lose the pivot gets, at every time that it has a key.
    if (GetKeyNbr(KEY_PIVOT) == 0)
        CreateKey(0, KEY_PIVOT, KEY_KEEP_DEFAULT);
    for (int i = 0; i < GetKeyNbr(KEY_PIVOT); i++) {
        auto* key = static_cast<C3DVectorKey*>(GetKeyByIndex(i, nullptr, KEY_PIVOT));
        key->SetVector(key->GetVector() + shift);
    }
}

bool C3DSceneNode::GetCG(int time, C3DTPoint<float>& center) const
{
    CNodeWalkTM walk(time, true);
    double sum[3] = {};
    int count = 0;
    ForBranch(this, [&](const C3DSceneNode* node) {
        C3DBaseObject* final = node->GetFinalObject(time);
        const C3DGeomObject* object = final ? static_cast<C3DGeomObject*>(*final) : nullptr;
        C3DTPoint<float> local;
        if (!object || !object->GetCG(local))
            return;
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        const C3DTPoint<float> global = matrix * local;
        for (int i = 0; i < 3; i++)
            sum[i] += global[i];
        count++;
    });
    center = C3DTPoint<float>();
    for (int i = 0; count && i < 3; i++)
        center[i] = static_cast<float>(sum[i] / count);
    return count != 0;
}

// Baking

bool C3DSceneNode::ConvertToGlobalCoordinates(int time)
{
    C4x4TMatrix<float> matrix;
    GetObjectLocalTM(time, matrix);
    ApplyPivot(time, matrix);
    return !matrix.IsIdentity() && ConvertToGlobalCoordinates(matrix);
}

bool C3DSceneNode::ConvertToGlobalCoordinates(const C4x4TMatrix<float>& matrix)
{
    if (matrix == C4x4TMatrix<float>())
        return false;
    DeleteObjectInstanciation();
    if (m_object)
        m_object->MatrixTransform(matrix);
    DeleteAllKeys();
    return true;
}
