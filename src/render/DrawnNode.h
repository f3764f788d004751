#pragma once

#include "geometry/4x4Matrix.h"
#include "render/View.h"
#include "scene/BaseObject.h"

enum NormalScaling { NORMALS_AS_THEY_ARE, NORMALS_RESCALED, NORMALS_NORMALIZED };

/// A node as the passes of one drawing see it.
struct C3DView::DrawnNode {
    C3DSceneNode* node = nullptr;
    C3DBaseObject* base = nullptr;
    C3DBaseObject* final = nullptr;
    _OBJECT_KINDOF kind = {};
    bool isHidden = false, isSelected = false, wiresOnly = false, hasTransparent = false, isMirrored = false;
    NormalScaling normals = NORMALS_AS_THEY_ARE;
    float matrix[16];    ///< node to eye, in GL's order

    /// Joined in double, rounded once.
    void SetMatrix(const double* sceneToEye, const C4x4TMatrix<float>& nodeToScene)
    {
        for (int column = 0; column < 4; column++)
            for (int row = 0; row < 4; row++) {
                double sum = 0;
                for (int k = 0; k < 4; k++)
                    sum += sceneToEye[k * 4 + row] * nodeToScene.m[k][column];
                matrix[column * 4 + row] = static_cast<float>(sum);
            }
    }
};
