#pragma once

#include <cstdint>

/// Edge between two points, without direction: the lower index stands first.
class C3DEdge {
public:
    C3DEdge() = default;
    C3DEdge(int a, int b) : m_low(a < b ? a : b), m_high(a < b ? b : a) {}

    /// The ends in that order, for who follows a direction: with b below a it equals no edge made from two ends.
    static C3DEdge Directed(int a, int b)
    {
        C3DEdge edge;
        edge.m_low = a;
        edge.m_high = b;
        return edge;
    }

    int GetFirst() const { return m_low; }
    int GetSecond() const { return m_high; }
    bool operator==(const C3DEdge&) const = default;
    /// Start of the probe in hash tables.
    std::uint32_t GetHash() const { return static_cast<std::uint32_t>(m_low) * 256u + static_cast<std::uint32_t>(m_high); }

private:
    int m_low = 0;
    int m_high = 0;
};
