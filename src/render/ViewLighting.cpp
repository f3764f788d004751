// Lights. They are set before the view's transform and so stay fixed to the eye.

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

#include "render/GLColor.h"
#include "render/View.h"

namespace {

constexpr GLColor BLACK{0, 0, 0, 1}, WHITE{1, 1, 1, 1};

struct Light {
    GLColor diffuse, specular;
    std::array<float, 4> position;
    std::array<float, 3> direction;
};

void SetLight(GLenum light, const Light& values)
{
    glEnable(light);
    glLightfv(light, GL_DIFFUSE, values.diffuse.data());
    glLightfv(light, GL_SPECULAR, values.specular.data());
    glLightfv(light, GL_POSITION, values.position.data());
    glLightfv(light, GL_SPOT_DIRECTION, values.direction.data());
    glLightf(light, GL_SPOT_EXPONENT, 0);
    glLightf(light, GL_SPOT_CUTOFF, 180);
}

}

void C3DView::InitLighting()
{
    if (!IsSolid())
        return;
    constexpr GLColor AMBIENT{0.2f, 0.2f, 0.2f, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, AMBIENT.data());

    // One light alone is the brighter for it.
    const bool oneLight = (m_settings.viewFlags & VIEWFLAG_ECONOMY) != 0;
    GLColor diffuse = GetColor4f(m_settings.lightColor, 255 * ((oneLight ? 0.8f : 1.2f) / m_settings.brightness));
    diffuse[3] = 1;
    const float size = m_settings.sceneSize, s = 1 / std::sqrt(3.0f);
    SetLight(GL_LIGHT0, {diffuse, oneLight ? WHITE : BLACK, {0, 0, size, 0}, {0, 0, -1}});
    if (oneLight)
        glDisable(GL_LIGHT1);
    else
        SetLight(GL_LIGHT1, {diffuse, WHITE, {-size, size, size, 1}, {s, -s, -s}});
}

void C3DView::Brightness(int step)
{
    constexpr float FACTOR = 1.3f, DIMMEST = 0.0001f, BRIGHTEST = 10000;
    float& brightness = m_settings.brightness;
    brightness = step == 0 ? 1 : std::clamp(step > 0 ? brightness * FACTOR : brightness / FACTOR, DIMMEST, BRIGHTEST);
    UpdateView(0);
}
