#pragma once

#include <assimp/types.h>

#include <3dzel.h>

/// The matrix of a node in a file. Pivots go into it; cameras and lights, which look along +y here, are turned as files want them, along -z
/// with +y up, and what is below them is turned back.
class NodePlace {
public:
    explicit NodePlace(const C3DSceneNode& node);

    aiMatrix4x4 At(int time) const;
    /// The node's keys are all there is to it: no matrix keys, no pivots, no turn.
    bool IsPlain() const { return m_isPlain; }

private:
    const C3DSceneNode& m_node;
    bool m_hasPivot, m_turnsItself, m_turnsBack, m_isPlain;
};

/// The matrix as a file can hold it: numbers that are none are those of the identity.
aiMatrix4x4 ToFiniteMatrix(const C4x4TMatrix<float>& from);

/// Translation, rotation, scale or matrix changes over time.
bool IsAnimated(const C3DSceneNode& node);
