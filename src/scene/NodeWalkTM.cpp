#include "scene/NodeWalkTM.h"

#include <algorithm>
#include <cstring>

#include "scene/TransformKeys.h"

void CNodeWalkTM::Get(const C3DSceneNode* node, C4x4TMatrix<float>& matrix)
{
    const C3DSceneNode* parent = node->GetParent();
    if (!parent && IsSceneRoot(node)) {
        node->GetObjectLocalTM(m_time, matrix);
        return;
    }
    if (parent && (m_levels.empty() || m_levels.back().node != parent))
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
        Cut(0);
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

/// Makes `parent` the last level, keeping the levels that are its ancestors.
void CNodeWalkTM::Enter(const C3DSceneNode* parent)
{
    Cut(FindAncestor(parent));
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

/// Number of levels up to the lowest one that is `parent` or an ancestor; those between come into `m_missing`. The cost is that of the nodes
/// between: a search through the levels would cost the depth of the tree at each step of a walk that leaves nodes out.
std::size_t CNodeWalkTM::FindAncestor(const C3DSceneNode* parent)
{
    constexpr std::size_t NEAR = 8;    // levels that are looked at before a table is worth it: a walk mostly goes up by few
    m_missing.clear();
    for (std::size_t count = m_levels.size(), last = count > NEAR ? count - NEAR : 0; count > last; count--)
        if (m_levels[count - 1].node == parent)
            return count;
    for (; m_placed < m_levels.size(); m_placed++)
        m_places[m_levels[m_placed].node] = m_placed;
    for (const C3DSceneNode* node = parent; node; node = node->GetParent()) {
        const auto place = m_places.find(node);
        if (place != m_places.end() && place->second < m_levels.size() && m_levels[place->second].node == node)
            return place->second + 1;
        m_missing.push_back(node);
    }
    return 0;
}

void CNodeWalkTM::Cut(std::size_t count)
{
    m_levels.resize(count);
    m_placed = std::min(m_placed, count);
}
