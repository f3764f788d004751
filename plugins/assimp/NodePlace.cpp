#include "NodePlace.h"

#include <algorithm>
#include <cmath>

#include "Convert.h"

namespace {

constexpr std::uint64_t TRANSFORMS[] = {KEY_MATRIX, KEY_TRANSLATE, KEY_ROTATE, KEY_SCALE};

bool HasPivot(const C3DSceneNode* node) { return node && node->GetKeyNbr(KEY_PIVOT) > 0; }
bool Looks(const C3DSceneNode* node) { return node && node->GetObjectKindOf() & (OBJECT_CAMERA | OBJECT_LIGHT); }

// +y of ours is -z of files, +z is +y.
const aiMatrix4x4 TURN(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1);
const aiMatrix4x4 TURN_BACK(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);

}

NodePlace::NodePlace(const C3DSceneNode& node)
    : m_node(node), m_hasPivot(HasPivot(&node) || HasPivot(node.GetParent())), m_turnsItself(Looks(&node)),
      m_turnsBack(Looks(node.GetParent())), m_isPlain(!m_hasPivot && !m_turnsItself && !m_turnsBack && node.GetKeyNbr(KEY_MATRIX) == 0)
{
}

aiMatrix4x4 NodePlace::At(int time) const
{
    C4x4TMatrix<float> local;
    m_hasPivot ? m_node.GetNodeLocalTM(time, local) : m_node.GetObjectLocalTM(time, local);
    aiMatrix4x4 matrix = ToFiniteMatrix(local);
    if (m_turnsBack)
        matrix = TURN_BACK * matrix;
    return m_turnsItself ? matrix * TURN : matrix;
}

aiMatrix4x4 ToFiniteMatrix(const C4x4TMatrix<float>& from)
{
    aiMatrix4x4 matrix = ToMatrix(from);
    for (unsigned int i = 0; i < 12; i++)
        if (float& element = matrix[i / 4][i % 4]; !std::isfinite(element))
            element = i % 5 == 0 ? 1.0f : 0.0f;
    return matrix;
}

bool IsAnimated(const C3DSceneNode& node)
{
    return std::ranges::any_of(TRANSFORMS, [&node](std::uint64_t id) { return node.GetKeyNbr(id) > 1; });
}
