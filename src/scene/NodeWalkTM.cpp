#include "scene/NodeWalkTM.h"

#include <cstring>

#include "scene/TransformKeys.h"

void CNodeWalkTM::Get(const C3DSceneNode* node, C4x4TMatrix<float>& matrix)
{
    const C3DSceneNode* parent = node->GetParent();
    if (!parent && IsSceneRoot(node)) {
        node->GetObjectLocalTM(m_time, matrix);
        return;
    }
    if (parent && !IsInside(parent))
        Enter(parent);
    const CKeyPlaces& places = node->GetKeyPlaces();
    if (const C4x4TMatrix<float>* single = CTransformKeys::GetSingleMatrix(places)) {
        Place(node, single, matrix);
        return;
    }
    if (places.IsEmpty()) {
        Place(node, nullptr, matrix);
        return;
    }
    const CTransformKeys keys(places, m_time, node->FindBehind(m_time));
    keys.GetLocal(matrix);
    Place(node, &matrix, matrix);
    keys.ApplyPivot(matrix);
}

/// The matrix of a node, without pivot, whose parent is the last level; null is the identity. A node with children becomes a level: a walk
/// goes there next.
void CNodeWalkTM::Place(const C3DSceneNode* node, const C4x4TMatrix<float>* local, C4x4TMatrix<float>& matrix)
{
    if (!node->GetParent()) {
        m_levels.clear();
        if (local)
            CopyMatrix(local->m, matrix.m);
        else
            matrix.SetIdentity();
    } else if (local)
        MultiplyMatrices(m_levels.back().matrix, local->m, matrix.m);
    else
        CopyMatrix(m_levels.back().matrix, matrix.m);
    if (node->GetFirstChild()) {
        Level& level = m_levels.emplace_back();
        level.node = node;
        std::memcpy(level.matrix, matrix.m, sizeof(level.matrix));
    }
}

/// Makes `parent` the last level where it is one.
bool CNodeWalkTM::IsInside(const C3DSceneNode* parent)
{
    std::size_t level = m_levels.size();
    while (level && m_levels[level - 1].node != parent)
        level--;
    if (level)
        m_levels.resize(level);
    return level != 0;
}

/// Makes `parent` the last level, keeping what the levels share with its ancestors.
void CNodeWalkTM::Enter(const C3DSceneNode* parent)
{
    m_missing.clear();
    for (const C3DSceneNode* node = parent; node; node = node->GetParent())
        m_missing.push_back(node);
    std::size_t shared = 0;
    while (shared < m_levels.size() && !m_missing.empty() && m_levels[shared].node == m_missing.back()) {
        m_missing.pop_back();
        shared++;
    }
    m_levels.resize(shared);
    for (; !m_missing.empty(); m_missing.pop_back()) {
        const C3DSceneNode* node = m_missing.back();
        C4x4TMatrix<float> matrix;
        if (m_withRoot || !IsSceneRoot(node))
            node->GetObjectLocalTM(m_time, matrix);
        if (!m_levels.empty())
            MultiplyMatrices(m_levels.back().matrix, matrix.m, matrix.m);
        Level& level = m_levels.emplace_back();
        level.node = node;
        std::memcpy(level.matrix, matrix.m, sizeof(level.matrix));
    }
}
