#pragma once

#include <cstddef>
#include <vector>

#include "channels/UVWPoint.h"
#include "geometry/Point.h"
#include "tools/BlockVector.h"
#include "tools/Color.h"

/// What a call list draws of triangles or lines: vertices in GL's memory. A list that GL compiles itself takes a million triangles ten times as
/// long, for it hashes every corner to find equal ones; here they are known by their point and normal.
///
/// Ranges of primitives alternate with display lists, which hold the changes of state between them.
class CMeshBuffer {
public:
    /// @param primitive  GL_TRIANGLES or GL_LINES
    /// @param points     number of points of the object
    CMeshBuffer(unsigned int primitive, int points, bool hasNormals, bool hasUVW, bool hasColors);
    CMeshBuffer(const CMeshBuffer&) = delete;
    CMeshBuffer& operator=(const CMeshBuffer&) = delete;

    // Filling

    /// The next range comes behind a display list, which with `owned` goes with this object.
    void BeginRange(unsigned int displayList, bool owned) { m_ranges.push_back({displayList, owned, m_indexes.size(), 0}); }
    void EndRange() { m_ranges.back().count = m_indexes.size() - m_ranges.back().first; }
    /// A corner. Corners of one point with the same colour, and the same normal and texture coordinate, told by their addresses, are one vertex.
    /// `reversed`: the normal counts the other way round.
    void AddCorner(int number, const C3DTPoint<float>& point, const C3DTVector<float>* normal, bool reversed, const CUVWPoint* uvw,
                   const CRGBColor& color)
    {
        unsigned int vertex = m_firstVertex[number];
        for (unsigned int step = 0; vertex != NONE && step < MOST_STEPS; vertex = m_sources[vertex].next, step++)
            if (m_sources[vertex].normal == normal && m_sources[vertex].reversed == reversed && m_sources[vertex].uvw == uvw &&
                m_sources[vertex].color == color) {
                m_indexes.push_back(vertex);
                return;
            }
        AddVertex(number, point, normal, reversed, uvw, color);
    }
    /// A corner whose normal does not count, for another one gives its triangle the colour: any vertex of the point that has the coordinate.
    void AddCornerOfAnyNormal(int number, const C3DTPoint<float>& point, const C3DTVector<float>* normal, const CUVWPoint* uvw)
    {
        unsigned int vertex = m_firstVertex[number];
        for (unsigned int step = 0; vertex != NONE && step < MOST_STEPS; vertex = m_sources[vertex].next, step++)
            if (m_sources[vertex].uvw == uvw) {
                m_indexes.push_back(vertex);
                return;
            }
        AddVertex(number, point, normal, false, uvw, {});
    }
    /// Gives GL the vertices and forgets them here.
    void Upload();

    // Use, in the context in which it was uploaded

    void Draw() const;
    /// The same in GL's selection mode: from the buffers' memory, for a driver may keep a buffer for ever that it has drawn from in that mode.
    void DrawForSelection() const;
    /// Gives GL's memory back.
    void Delete();

private:
    static constexpr unsigned int NONE = 0x7FFFFFFF;
    static constexpr unsigned int MOST_STEPS = 8;    // a point with more is a hub, whose corners share little

    struct Range {
        unsigned int displayList;
        bool owned;
        std::size_t first, count;
    };
    /// What a vertex was made of, and the next one of the same point.
    struct Source {
        const C3DTVector<float>* normal;
        const CUVWPoint* uvw;
        CRGBColor color;
        unsigned int next : 31, reversed : 1;
    };
    void AddVertex(int number, const C3DTPoint<float>& point, const C3DTVector<float>* normal, bool reversed, const CUVWPoint* uvw,
                   const CRGBColor& color);
    void PointAt(const char* vertices) const;
    void DrawRanges(const char* indexes) const;
    int GetFloats() const { return 3 + (m_hasNormals ? 3 : 0) + (m_hasUVW ? 3 : 0) + (m_hasColors ? 4 : 0); }

    unsigned int m_primitive;
    bool m_hasNormals, m_hasUVW, m_hasColors;
    std::vector<Range> m_ranges;
    CBlockVector<unsigned int> m_indexes, m_firstVertex;
    CBlockVector<float> m_vertices;
    CBlockVector<Source> m_sources;
    unsigned int m_vertexCount = 0;    ///< once uploaded
    unsigned int m_buffers[2] = {};    ///< GL's names: vertices, indexes
};
