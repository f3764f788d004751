// Labels. Each character is a list of the context that ends by moving on to the next; the lists stay for the life of the context.

#include "render/DrawText.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <string>

#include "render/OutlineFont.h"
#include "render/RenderingMode.h"
#include "render/View.h"

namespace {

constexpr std::uint64_t NORMAL_FONT = 0;    // key of its lists

/// First of the lists of all characters.
unsigned int CompileFont(const COutlineFont& font)
{
    const unsigned int lists = glGenLists(COutlineFont::CHARACTERS);
    for (int character = 0; lists && character < COutlineFont::CHARACTERS; character++) {
        const COutlineFont::Glyph& glyph = font.GetGlyph(character);
        glNewList(lists + static_cast<unsigned int>(character), GL_COMPILE);
        glBegin(GL_TRIANGLES);
        for (const auto& corner : glyph.triangles)
            glVertex2fv(corner.data());
        glEnd();
        glTranslatef(glyph.advance, 0, 0);
        glEndList();
    }
    return lists;
}

void FillPolygons()
{
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    for (const GLenum capability : {GL_CULL_FACE, GL_POLYGON_STIPPLE, GL_POLYGON_OFFSET_FILL})
        glDisable(capability);
}

}

CGLDrawText::CGLDrawText(C3DView& view, bool ignoreDepth) : m_view(view), m_lists(view.GetFontLists())
{
    glGetDoublev(GL_MODELVIEW_MATRIX, m_modelview);
    glGetDoublev(GL_PROJECTION_MATRIX, m_projection);
    glGetIntegerv(GL_VIEWPORT, m_viewport);
    m_view.SwitchTo2DMode(true, ignoreDepth ? GLMODE_NO_DEPTH_TEST : 0u, 0);
    glGetDoublev(GL_PROJECTION_MATRIX, m_pixelProjection);
    glPushAttrib(GL_ENABLE_BIT | GL_POLYGON_BIT | GL_LIST_BIT | GL_TRANSFORM_BIT);
    FillPolygons();
    glListBase(m_lists);
    glMatrixMode(GL_MODELVIEW);
}

CGLDrawText::~CGLDrawText()
{
    glPopAttrib();
    m_view.SwitchTo2DMode(false, 0, 0);
}

void CGLDrawText::DrawLabel(const C3DTPoint<float>& point, const CXTString<char>& text, const CSize& offset)
{
    constexpr double NEARER = 0.001;    // than what the label belongs to
    constexpr float LETTER_SIZE = 20;
    constexpr double IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    double x, y, depth, unusedX, unusedY, z;
    if (!m_lists || !gluProject(point.x, point.y, point.z, m_modelview, m_projection, m_viewport, &x, &y, &depth) ||
        !gluUnProject(x, y, depth - NEARER, IDENTITY, m_pixelProjection, m_viewport, &unusedX, &unusedY, &z))
        return;
    std::string characters;
    for (const char c : std::string_view(text))
        if (static_cast<unsigned char>(c) < COutlineFont::CHARACTERS)
            characters += c;
    glPushMatrix();
    glLoadIdentity();
    glTranslated(x + offset.cx, y + offset.cy, z);
    glScalef(LETTER_SIZE, LETTER_SIZE, 1);
    glCallLists(static_cast<int>(characters.size()), GL_UNSIGNED_BYTE, characters.data());
    glPopMatrix();
}

unsigned int C3DView::GetFontLists()
{
    CHashID entry{NORMAL_FONT, GetGLContext(), CALLLIST_FONT};
    if (unsigned int place = m_callLists.GetPosition(entry); place != HASH_END)
        return m_callLists.GetNext(place).name;
    const COutlineFont& font = COutlineFont::GetNormal();
    entry.name = font.IsEmpty() ? 0 : CompileFont(font);
    entry.count = COutlineFont::CHARACTERS;
    if (entry.name)
        m_callLists.Insert(entry);
    return entry.name;
}
