#include <cmath>

#include "geometry/3DPointList.h"
#include "scene/3DScene.h"
#include "scene/BranchWalk.h"
#include "scene/GeomObject.h"
#include "scene/NodeWalkTM.h"

static bool IsRoot(const C3DSceneNode* node) { return node->GetScene() && node->GetScene()->IsSceneRoot(node); }

static bool IsZero(const C3DTCoordinates<float>& v) { return std::fabs(v.x) < 1e-15 && std::fabs(v.y) < 1e-15 && std::fabs(v.z) < 1e-15; }

void C3DSceneNode::GetObjectLocalTM(int time, C4x4TMatrix<float>& matrix) const
{
    matrix.SetIdentity();
    if (GetKeyNbr(KEY_ANY) == 0)
        return;
    const auto multiply = [&](C3DMatrixKey&& key) {
        if (Evaluate(time, key))
            matrix *= key.ToMatrix();
    };
    multiply(C3DMatrixKey(KEY_MATRIX));
    multiply(C3DTranslateKey());
    multiply(C3DRotateKey());
    multiply(C3DScaleKey());
}

void C3DSceneNode::ApplyPivot(int time, C4x4TMatrix<float>& matrix) const
{
    if (GetKeyNbr(KEY_ANY) == 0)
        return;
    C3DVectorKey pivot(KEY_PIVOT);
    if (!Evaluate(time, pivot) || IsZero(pivot.GetVector()))
        return;
    const C3DTPoint<float> position = matrix * C3DTPoint<float>(pivot.GetVector());
    matrix.SetTranslation(position.x, position.y, position.z);
    matrix.m[3][3] = 1;
}

void C3DSceneNode::GetNodeTM(int time, C4x4TMatrix<float>& matrix, bool withRoot) const
{
    GetObjectLocalTM(time, matrix);
    if (IsRoot(this))
        return;
    C4x4TMatrix<float> parentTM;
    for (const C3DSceneNode* parent = GetParent(); parent; parent = parent->GetParent()) {
        if (parent->GetKeyNbr(KEY_ANY) == 0)
            continue;
        if (!withRoot && IsRoot(parent))
            break;
        parent->GetObjectLocalTM(time, parentTM);
        matrix = parentTM * matrix;
    }
    ApplyPivot(time, matrix);
}

void C3DSceneNode::GetNodeLocalTM(int time, C4x4TMatrix<float>& matrix) const
{
    if (IsRoot(this)) {
        GetObjectLocalTM(time, matrix);
        return;
    }
    GetNodeTM(time, matrix, true);
    const C3DSceneNode* parent = GetParent();
    if (!parent || IsRoot(parent))
        return;
    C4x4TMatrix<float> parentTM, inverse;
    parent->GetNodeTM(time, parentTM, true);
    C4x4TMatrix<float>::GetInverse(parentTM, inverse);    // a singular parent counts as the identity
    matrix = inverse * matrix;
}

// World matrices along a walk

void CNodeWalkTM::Get(const C3DSceneNode* node, C4x4TMatrix<float>& matrix)
{
    node->GetObjectLocalTM(m_time, matrix);
    if (IsRoot(node))
        return;
    if (const C3DSceneNode* parent = node->GetParent()) {
        Enter(parent);
        matrix = m_levels.back().matrix * matrix;
    }
    node->ApplyPivot(m_time, matrix);
}

/// Makes `parent` the last level, keeping what the levels share with its ancestors.
void CNodeWalkTM::Enter(const C3DSceneNode* parent)
{
    // Down: the walk went on to the first child. Up: it is back at a former parent. Any other step pays for the depth.
    m_missing.assign(1, parent);
    if (m_levels.empty() || parent->GetParent() != m_levels.back().node) {
        std::size_t level = m_levels.size();
        while (level && m_levels[level - 1].node != parent)
            level--;
        if (level) {
            m_levels.resize(level);
            return;
        }
        for (const C3DSceneNode* node = parent->GetParent(); node; node = node->GetParent())
            m_missing.push_back(node);
        std::size_t shared = 0;
        while (shared < m_levels.size() && !m_missing.empty() && m_levels[shared].node == m_missing.back()) {
            m_missing.pop_back();
            shared++;
        }
        m_levels.resize(shared);
    }
    for (; !m_missing.empty(); m_missing.pop_back()) {
        Level level{m_missing.back(), {}};
        if (m_withRoot || !IsRoot(level.node))
            level.node->GetObjectLocalTM(m_time, level.matrix);
        if (!m_levels.empty())
            level.matrix = m_levels.back().matrix * level.matrix;
        m_levels.push_back(level);
    }
}

// Pivots and centres

void C3DSceneNode::CenterPivotOnCG(const C3DTVector<float>& relative, const C3DTVector<float>& offset)
{
    C3DGeomObject* object = GetGeomObject();
    C3DPointList* points = object ? object->GetPointList() : nullptr;
    C3DTPoint<float> min, max;
    if (!points || !object->GetBoundingBox(min, max, BOX_POINTS))
        return;
    C3DTVector<float> pivot;
    for (int i = 0; i < 3; i++)
        pivot[i] = (max[i] - min[i]) * relative[i] + min[i] + offset[i];
    if (IsZero(pivot))
        return;

    // By hand: the list's own transform passes over translations that are small in scene units.
    C3DTPoint<float>* point = points->GetFirst();
    for (int i = 0; i < points->GetSize(); i++)
        point[i] -= pivot;
    object->Invalidate(CHANGE_POINTS, true);

    CreateKey(0, KEY_PIVOT, KEY_KEEP_DEFAULT);
    for (int i = 0; i < GetKeyNbr(KEY_PIVOT); i++)
        static_cast<C3DVectorKey*>(GetKeyByIndex(i, nullptr, KEY_PIVOT))->SetVector(pivot);
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
