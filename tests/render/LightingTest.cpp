#include <cmath>

#include "render/ViewProbe.h"

namespace {

class CLitProbe : public CViewProbe {
public:
    explicit CLitProbe(unsigned int flags) : CViewProbe(VIEWFLAG_SMOOTH | flags)
    {
        m_settings.sceneSize = 4;
        m_settings.lightColor = {102, 153, 204};
        m_material.SetAmbientColor(0, {50, 100, 150});
        m_material.SetDiffuseColor(0, {200, 100, 50});
        m_material.SetSpecularColor(0, {255, 255, 255});
        m_material.SetSpecularFactor(0, 1);
    }
    /// The colour of a small square in the middle, with that normal.
    Pixel Lit(float x, float y, float z)
    {
        Clear();
        InitLighting();
        InitMaterial(&m_material, true);
        glPushMatrix();
        glEnable(GL_NORMALIZE);
        glScalef(0.05f, 0.05f, 0.05f);
        glNormal3f(x, y, z);
        DrawSquare();
        glPopMatrix();
        return AtMiddle();
    }

private:
    C3DMaterial m_material;
};

/// Ambient 0.2 of the material's, and of each light its part.
Pixel Expected(double diffusePart, double k, double specular = 0)
{
    const double ambient[] = {50, 100, 150}, diffuse[] = {200, 100, 50}, light[] = {102 / 255.0, 153 / 255.0, 204 / 255.0};
    Pixel pixel{0, 0, 0, 255};
    for (int i = 0; i < 3; i++)
        pixel[i] =
            static_cast<int>(std::lround(std::min(255.0, 0.2 * ambient[i] + diffuse[i] * light[i] / k * diffusePart + 255 * specular)));
    return pixel;
}

}

TEST(ViewLighting, OneLightStandsBehindTheEye)
{
    CLitProbe view(VIEWFLAG_ECONOMY);
    // A highlight of shininess 89.6: none at 60 degrees, all of it straight ahead.
    EXPECT_TRUE(IsPixel(view.Lit(0.8660254f, 0, 0.5f), Expected(0.5, 0.8), 2));
    EXPECT_TRUE(IsPixel(view.Lit(0, -0.8660254f, 0.5f), Expected(0.5, 0.8), 2));
    EXPECT_TRUE(IsPixel(view.Lit(1, 0, 0), Expected(0, 0.8), 2));
    EXPECT_TRUE(IsPixel(view.Lit(0, 0, 1), Expected(1, 0.8, 1), 2));
    view.m_settings.brightness = 0.5f;
    EXPECT_TRUE(IsPixel(view.Lit(0.8660254f, 0, 0.5f), Expected(0.5, 1.6), 2));
}

TEST(ViewLighting, ASecondLightStandsLeftAboveAndBefore)
{
    CLitProbe view(0);
    const double inverse = 1 / std::sqrt(3.0);
    // The light on the axis has no highlight; the other one, at (-4, 4, 4), no diffuse part on faces that look away.
    EXPECT_TRUE(IsPixel(view.Lit(0, 0, 1), Expected(1 + inverse, 1.2, std::pow(std::cos(std::acos(inverse) / 2), 89.6)), 2));
    EXPECT_TRUE(IsPixel(view.Lit(0.8660254f, 0, 0.5f), Expected(0.5, 1.2), 2));
    EXPECT_TRUE(IsPixel(view.Lit(-1, 0, 0), Expected(inverse, 1.2), 2));
    EXPECT_TRUE(IsPixel(view.Lit(0, 1, 0), Expected(inverse, 1.2), 2));
    EXPECT_TRUE(IsPixel(view.Lit(0, -1, 0), Expected(0, 1.2), 2));
}
