#pragma once

#include <vector>

#include "scene/Forward.h"
#include "tools/Array.h"

class C3DView;

enum _PICK_MODE : int {
    PICK_NEAREST = 1,
    PICK_ALL = 2,
};

/// A search for what lies in a rectangle of the window, by GL's selection mode. While a view has one, C3DView::RenderScene draws nothing: it
/// fills the buffer and counts the hits. Each node that is drawn loads its id as the one name on the stack.
struct glPickInfo {
    C3DView* view = nullptr;
    _PICK_MODE mode = PICK_ALL;
    unsigned int x = 0, y = 0, width = 2, height = 2;    ///< pixels of the window, y down; no side below 2
    std::vector<unsigned int> buffer;                    ///< each hit: number of names, nearest and farthest depth, names
    int hits = 0;                                        ///< in the buffer; negative when it was too small
    CXArray<C3DSceneNode*>* nodes = nullptr;

    int GetBufferSize() const { return static_cast<int>(buffer.size()); }
    unsigned int* GetBuffer() { return buffer.data(); }
    /// Multiplies the projection by the pick matrix: the rectangle fills the viewport (GL's: left, bottom, width, height).
    void ApplyMatrix(const int* viewport) const;
};
