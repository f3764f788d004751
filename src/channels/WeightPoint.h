#pragma once

#include "geometry/Point.h"

/// Weight: one float behind the flags.
class ZEL_API CWeightPoint : public CPt {
public:
    CWeightPoint() = default;
    explicit CWeightPoint(float weight) : m_weight(weight) {}
    CWeightPoint(const CWeightPoint&) = default;
    CWeightPoint& operator=(const CWeightPoint&) = default;

    void To4DPoint(C4DPoint& point) const override;    // dimension 1
    /// Weight and flags of another weight; of another kind of element, its first coordinate.
    CWeightPoint& operator=(const CPt& other) override;
    CWeightPoint& operator=(const C4DPoint& point) override;
    /// Flags, then the weight.
    void Serialize(CXArchive& ar) override;

    float GetWeight() const { return m_weight; }
    void SetWeight(float weight) { m_weight = weight; }
    float* ValPtr() { return &m_weight; }
    const float* ValPtr() const { return &m_weight; }

    /// Weights exactly equal; flags do not count.
    bool operator==(const CWeightPoint& other) const { return m_weight == other.m_weight; }

private:
    float m_weight = 0;
};

static_assert(sizeof(CWeightPoint) == 16 || sizeof(void*) != 8);
