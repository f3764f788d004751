#pragma once

#include <limits>

#include "geometry/Point.h"

/// Box that grows by points. A coordinate that is not finite does not count; an axis without any other is 0.
class CFiniteBox {
public:
    void Add(const C3DTPoint<float>& point)
    {
        m_any = true;
        for (int axis = 0; axis < 3; axis++) {
            const float value = point[axis];
            if (value - value != 0)
                continue;
            m_min[axis] = value < m_min[axis] ? value : m_min[axis];
            m_max[axis] = value > m_max[axis] ? value : m_max[axis];
        }
    }
    /// False, with (0, 0, 0) in both, when no point was added.
    bool Get(C3DTPoint<float>& min, C3DTPoint<float>& max) const
    {
        min = max = C3DTPoint<float>();
        for (int axis = 0; axis < 3; axis++)
            if (m_min[axis] <= m_max[axis]) {
                min[axis] = m_min[axis];
                max[axis] = m_max[axis];
            }
        return m_any;
    }

private:
    static constexpr float FAR = std::numeric_limits<float>::infinity();

    bool m_any = false;
    float m_min[3] = {FAR, FAR, FAR}, m_max[3] = {-FAR, -FAR, -FAR};
};
