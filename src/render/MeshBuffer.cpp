#include "render/MeshBuffer.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>

#include <cstdint>

#include "render/GLColor.h"

CMeshBuffer::CMeshBuffer(unsigned int primitive, int points, bool hasNormals, bool hasUVW, bool hasColors)
    : m_primitive(primitive), m_hasNormals(hasNormals), m_hasUVW(hasUVW), m_hasColors(hasColors), m_firstVertex(points, NONE)
{
    m_vertices.reserve(static_cast<std::size_t>(points) * GetFloats());
    m_sources.reserve(points);
}

void CMeshBuffer::AddVertex(int number, const C3DTPoint<float>& point, const C3DTVector<float>* normal, bool reversed, const CUVWPoint* uvw,
                            const CRGBColor& color)
{
    const auto vertex = static_cast<unsigned int>(m_sources.size());
    m_sources.push_back({normal, uvw, color, m_firstVertex[number], reversed});
    m_firstVertex[number] = vertex;
    m_indexes.push_back(vertex);
    const auto add = [this](const float* values) { m_vertices.insert(m_vertices.end(), values, values + 3); };
    static constexpr float NOTHING[3] = {};
    add(point.ValPtr());
    if (m_hasNormals)
        add(!normal ? NOTHING : reversed ? (-*normal).ValPtr() : normal->ValPtr());
    if (m_hasUVW)
        add(uvw ? uvw->ValPtr() : NOTHING);
    if (m_hasColors) {
        const GLColor drawn = GetDrawnColor(color);
        m_vertices.insert(m_vertices.end(), drawn.begin(), drawn.end());
    }
}

template <class T> static void Free(CBlockVector<T>& values) { CBlockVector<T>().swap(values); }

void CMeshBuffer::Upload()
{
    if (!m_indexes.empty()) {
        glGenBuffers(2, m_buffers);
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(m_vertices.size() * sizeof(float)), m_vertices.data(), GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(m_indexes.size() * sizeof(unsigned int)), m_indexes.data(),
                     GL_STATIC_DRAW);
        glPopClientAttrib();
    }
    m_vertexCount = static_cast<unsigned int>(m_sources.size());
    Free(m_indexes);
    Free(m_firstVertex);
    Free(m_vertices);
    Free(m_sources);
}

/// A place in a buffer as GL takes it: behind an address, or as a number for null.
static const void* At(const char* memory, std::size_t bytes)
{
    return reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(memory) + bytes);
}

void CMeshBuffer::Draw() const
{
    if (!m_vertexCount)
        return DrawRanges(nullptr);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
    PointAt(nullptr);
    DrawRanges(nullptr);
    glPopClientAttrib();
}

void CMeshBuffer::DrawForSelection() const
{
    if (!m_vertexCount)
        return DrawRanges(nullptr);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    const void* memory[2];
    for (int i = 0; i < 2; i++) {
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[i]);
        memory[i] = glMapBuffer(GL_ARRAY_BUFFER, GL_READ_ONLY);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    if (memory[0] && memory[1]) {
        PointAt(static_cast<const char*>(memory[0]));
        DrawRanges(static_cast<const char*>(memory[1]));
    }
    for (int i = 0; i < 2; i++) {
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[i]);
        glUnmapBuffer(GL_ARRAY_BUFFER);
    }
    glPopClientAttrib();
}

/// Where the parts of a vertex are: behind an address, or in the buffer that is bound for null.
void CMeshBuffer::PointAt(const char* vertices) const
{
    const auto stride = static_cast<GLsizei>(GetFloats() * sizeof(float));
    const auto at = [vertices](int floats) { return At(vertices, floats * sizeof(float)); };
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, stride, at(0));
    if (m_hasNormals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, stride, at(3));
    }
    if (m_hasUVW) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(3, GL_FLOAT, stride, at(m_hasNormals ? 6 : 3));
    }
    // On surfaces colours are those that light falls on; without light, as for a tint, the current colour counts.
    if (m_hasColors && (!m_hasNormals || glIsEnabled(GL_LIGHTING))) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_FLOAT, stride, at(GetFloats() - 4));
    }
}

void CMeshBuffer::DrawRanges(const char* indexes) const
{
    for (const Range& range : m_ranges) {
        glCallList(range.displayList);
        if (range.count)
            glDrawRangeElements(m_primitive, 0, m_vertexCount - 1, static_cast<GLsizei>(range.count), GL_UNSIGNED_INT,
                                At(indexes, range.first * sizeof(unsigned int)));
    }
}

void CMeshBuffer::Delete()
{
    for (const Range& range : m_ranges)
        if (range.owned)
            glDeleteLists(range.displayList, 1);
    if (m_buffers[0])
        glDeleteBuffers(2, m_buffers);
    m_ranges.clear();
    m_buffers[0] = m_buffers[1] = 0;
}
