#include "render/RenderingMode.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>

#include <cmath>

#include "render/GLColor.h"
#include "render/View.h"
#include "scene/3DScene.h"

namespace {

/// What each mode changes, as glPushAttrib names it.
constexpr struct {
    unsigned int mode;
    GLbitfield attributes;
} CHANGES[] = {
    {GLMODE_SMOOTH_LINES, GL_LINE_BIT | GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT},
    {GLMODE_DEPTH_CUE, GL_ENABLE_BIT | GL_FOG_BIT | GL_DEPTH_BUFFER_BIT},
    {GLMODE_BLEND, GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT},
    {GLMODE_NO_LIGHT, GL_LIGHTING_BIT},
    {GLMODE_NO_DEPTH_TEST, GL_DEPTH_BUFFER_BIT},
    {GLMODE_NO_DEPTH_WRITE, GL_DEPTH_BUFFER_BIT},
    {GLMODE_NO_ALPHA_WRITE, GL_COLOR_BUFFER_BIT},
    {GLMODE_NO_TEXTURE, GL_ENABLE_BIT},
    {GLMODE_TINT, GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT | GL_FOG_BIT},
    {GLMODE_NO_MULTISAMPLE, GL_MULTISAMPLE_BIT},
    {GLMODE_IDENTITY, GL_TRANSFORM_BIT | GL_VIEWPORT_BIT},
    {GLMODE_PIXELS, GL_TRANSFORM_BIT | GL_VIEWPORT_BIT},
};

GLbitfield GetChanges(unsigned int mode)
{
    GLbitfield attributes = 0;
    for (const auto& change : CHANGES)
        if (mode & change.mode)
            attributes |= change.attributes;
    return attributes;
}

void Blend()
{
    glDisable(GL_SAMPLE_ALPHA_TO_COVERAGE);    // what blends would be thinned twice
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

void SmoothLines()
{
    glEnable(GL_POINT_SMOOTH);
    glEnable(GL_LINE_SMOOTH);
    glLineWidth(0.5f);
    Blend();
}

void CueDepth(const GlViewSettings& settings)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, settings.nearPlane);
    glFogf(GL_FOG_END, settings.farPlane);
    glFogfv(GL_FOG_COLOR, GetColor4f(settings.background).data());    // far lines go into the background
}

void Tint()
{
    constexpr GLfloat COLOR[4] = {0, 0.4f, 0.8f, 1}, STRENGTH = 0.6f;
    Blend();
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDepthFunc(GL_EQUAL);    // over what is drawn already, and nowhere else
    // Lists set colours and textures of their own. A fog that is thick before the eye covers them all.
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, -2);
    glFogf(GL_FOG_END, -1);
    glFogfv(GL_FOG_COLOR, COLOR);
    glBlendColor(0, 0, 0, STRENGTH);
    glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
}

void SetState(unsigned int mode, const GlViewSettings& settings)
{
    if (mode & GLMODE_SMOOTH_LINES)
        SmoothLines();
    if (mode & GLMODE_DEPTH_CUE)
        CueDepth(settings);
    if (mode & GLMODE_BLEND) {
        Blend();
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(GL_NOTEQUAL, 0);
    }
    if (mode & GLMODE_NO_LIGHT)
        glDisable(GL_LIGHTING);
    if (mode & GLMODE_NO_DEPTH_TEST)
        glDisable(GL_DEPTH_TEST);
    if (mode & GLMODE_NO_DEPTH_WRITE)
        glDepthMask(GL_FALSE);
    if (mode & GLMODE_NO_ALPHA_WRITE)
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    if (mode & GLMODE_NO_TEXTURE)
        glDisable(GL_TEXTURE_2D);
    if (mode & GLMODE_TINT)
        Tint();
    if (mode & GLMODE_NO_MULTISAMPLE)
        glDisable(GL_MULTISAMPLE);
}

bool PushIdentity(GLenum matrix)
{
    glMatrixMode(matrix);
    glPushMatrix();
    glLoadIdentity();
    return true;
}

void Pop(GLenum matrix)
{
    glMatrixMode(matrix);
    glPopMatrix();
}

}

CGLRenderingMode::CGLRenderingMode(C3DView& view, unsigned int mode, unsigned int attributes)
{
    attributes |= GetChanges(mode);
    if (attributes)
        glPushAttrib(attributes);
    m_attributes = attributes != 0;
    SetState(mode, view.m_settings);

    if (!(mode & (GLMODE_IDENTITY | GLMODE_PIXELS)))
        return;
    int formerMatrix;
    glGetIntegerv(GL_MATRIX_MODE, &formerMatrix);
    if (mode & GLMODE_IDENTITY)
        m_modelview = PushIdentity(GL_MODELVIEW);
    if (mode & GLMODE_PIXELS) {
        m_projection = PushIdentity(GL_PROJECTION);
        double nearPlane = 0, farPlane = 1;
        if (!(mode & GLMODE_NO_DEPTH_TEST))
            GetSceneDepth(view, nearPlane, farPlane);
        const CSize size = view.GetViewSize();
        const bool down = (mode & GLMODE_PIXELS_DOWN) != 0;
        glOrtho(0, size.cx, down ? size.cy : 0, down ? 0 : size.cy, nearPlane, farPlane);
    }
    glMatrixMode(formerMatrix);
}

CGLRenderingMode::~CGLRenderingMode()
{
    int formerMatrix;
    glGetIntegerv(GL_MATRIX_MODE, &formerMatrix);
    if (m_projection)
        Pop(GL_PROJECTION);
    if (m_modelview)
        Pop(GL_MODELVIEW);
    glMatrixMode(formerMatrix);
    if (m_attributes)
        glPopAttrib();
}

void CGLRenderingMode::GetSceneDepth(const C3DView& view, double& nearPlane, double& farPlane)
{
    const GlViewSettings& settings = view.m_settings;
    C3DTPoint<float> min, max, center = settings.sceneCenter;
    view.GetBBox(false, min, max, center, 0, settings.hiddenKinds);
    const double dx = center.x - settings.sceneCenter.x, dy = center.y - settings.sceneCenter.y, dz = center.z - settings.sceneCenter.z;
    const double reach = std::sqrt(dx * dx + dy * dy + dz * dz) + settings.sceneSize * 0.5, z = settings.matrix.m[2][3];
    nearPlane = z - reach;
    farPlane = z + (reach > 0 ? reach : 1);
}
