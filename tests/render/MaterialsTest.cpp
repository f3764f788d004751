#include "channels/VCPointList.h"
#include "render/ViewProbe.h"
#include "scene/3DObject.h"
#include "scene/Primitives.h"

namespace {

using Floats = std::array<float, 4>;

void ExpectNear(const Floats& got, const Floats& expected)
{
    for (int i = 0; i < 4; i++)
        EXPECT_NEAR(got[i], expected[i], 0.002) << i;
}

/// As GL has it while a material is set by hand, to see what is sent afterwards.
void Spoil(GLenum name)
{
    const Floats spoilt{0.123f, 0.456f, 0.789f, 1};
    glMaterialfv(GL_FRONT_AND_BACK, name, spoilt.data());
}
bool IsSpoilt(GLenum name) { return CViewProbe::MaterialOf(name)[0] == 0.123f; }

}

TEST(ViewMaterials, ColoursAreNeverBlackAndNeverAlmostInvisible)
{
    CViewProbe view;
    struct {
        const char* name;
        CRGBColor color;
        float transparency, factor;
        Floats expected;
    } const rows[] = {
        {"plain", {255, 128, 0, 255}, 0, 1, {1, 128 / 255.0f, 0, 1}},
        {"factor", {200, 100, 50, 255}, 0, 0.5f, {100 / 255.0f, 50 / 255.0f, 25 / 255.0f, 1}},
        {"black", {0, 0, 0, 255}, 0, 1, {13 / 255.0f, 13 / 255.0f, 13 / 255.0f, 1}},
        {"nearly black keeps its hue", {10, 0, 0, 255}, 0, 1, {26 / 255.0f, 0, 0, 1}},
        {"dark enough", {26, 0, 0, 255}, 0, 1, {26 / 255.0f, 0, 0, 1}},
        {"half", {255, 255, 255, 255}, 0.5f, 1, {1, 1, 1, 127 / 255.0f}},
        {"thin", {255, 255, 255, 255}, 0.9f, 1, {1, 1, 1, 0.3f}},
        {"nothing", {255, 255, 255, 255}, 1, 1, {1, 1, 1, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        C3DMaterial material;
        material.SetAmbientColor(0, row.color);
        material.SetDiffuseColor(0, row.color);
        material.SetSpecularColor(0, row.color);
        material.SetAmbientFactor(0, row.factor);
        material.SetDiffuseFactor(0, row.factor);
        material.SetSpecularFactor(0, row.factor);
        material.SetTransparencyFactor(0, row.transparency);
        view.InitMaterial(&material, false);
        for (const GLenum face : {GL_FRONT, GL_BACK})
            ExpectNear(view.MaterialOf(GL_DIFFUSE, face), row.expected);
        Floats opaque = row.expected;
        opaque[3] = 1;    // of these two the transparency is no matter
        ExpectNear(view.MaterialOf(GL_AMBIENT), opaque);
        ExpectNear(view.MaterialOf(GL_SPECULAR), opaque);
        ExpectNear(view.MaterialOf(GL_EMISSION), {0, 0, 0, 1});

        view.InitDiffuseColor(view.GetSelectionMaterial());    // another becomes current
        view.InitDiffuseColor(material);
        Floats color;
        glGetFloatv(GL_CURRENT_COLOR, color.data());
        ExpectNear(color, row.expected);
        EXPECT_EQ(view.GetCurrentMaterial(), material.GetMaterialID());
    }
}

TEST(ViewMaterials, TheCurrentOneIsNotSentAgainUnlessForced)
{
    CViewProbe view;
    C3DMaterial material;
    view.InitMaterial(&material, false);
    Spoil(GL_DIFFUSE);
    view.InitMaterial(&material, false);
    EXPECT_TRUE(IsSpoilt(GL_DIFFUSE));
    view.InitMaterial(&material, true);
    EXPECT_FALSE(IsSpoilt(GL_DIFFUSE));
    Spoil(GL_DIFFUSE);
    view.ReinitCurrentMaterial();
    EXPECT_EQ(view.GetCurrentMaterial(), 0xFFFFFFFF);
    view.InitMaterial(&material, false);
    EXPECT_FALSE(IsSpoilt(GL_DIFFUSE));
    view.InitMaterial(nullptr, true);    // costs nothing, does nothing
    view.InitDiffuseColor(0xFFFFFFF0u);
}

namespace {

/// Corners with colours, as a smooth list sends them.
class CCornerProbe : public CViewProbe {
public:
    CCornerProbe() : m_points(CVCPointList::Create()), m_faces(CVCFaceList::Create())
    {
        m_points->SetSize(3);
        m_faces->SetSize(1);
        m_faces->GetFace(0, m_element.vcFace);
        m_element.vcFace.SetTriangle(0, 1, 2);
        m_element.vcPointList = m_points.get();
        m_element.vcInUse = true;
        m_element.vcFactor = 1;
    }

    void SendCorner(C3DMaterial& material, const CRGBColor& color)
    {
        m_element.material = &material;
        m_element.cornerNumber = 1;
        m_points->ElementAt(1)->SetColor(color);
        InitPointMaterial();
    }

private:
    Owned<CVCPointList> m_points;
    Owned<CVCFaceList> m_faces;
};

}

TEST(ViewMaterials, VertexColoursMixWithTheMaterialsByTheirAlpha)
{
    CCornerProbe view;
    C3DMaterial material, other;
    material.SetAmbientColor(0, {40, 50, 60});
    material.SetDiffuseColor(0, {200, 100, 0});
    material.SetSpecularFactor(0, 0.5f);
    other.SetDiffuseColor(0, {0, 0, 240});
    // Faults in mind: the corner after a change of material, after a forgotten one, or after one of the same colour takes what it should not.
    struct {
        C3DMaterial* material;
        float factor;
        CRGBColor color;
        Floats diffuse;
    } const rows[] = {
        {&material, 1, {0, 100, 200, 255}, {0, 100, 200, 255}},      {&material, 1, {0, 100, 200, 0}, {200, 100, 0, 255}},
        {&material, 0.5f, {0, 100, 200, 255}, {100, 100, 100, 255}}, {&material, 0.5f, {0, 100, 200, 0}, {200, 100, 0, 255}},
        {&material, 0.25f, {0, 100, 200, 255}, {150, 100, 50, 255}}, {&other, 0.25f, {0, 100, 200, 255}, {0, 25, 230, 255}},
        {&material, 0.25f, {0, 100, 200, 255}, {150, 100, 50, 255}}, {&material, 1, {0, 0, 0, 255}, {13, 13, 13, 255}},
    };
    for (const auto& row : rows) {
        view.m_element.vcFactor = row.factor;
        view.SendCorner(*row.material, row.color);
        Floats expected = row.diffuse;
        for (float& value : expected)
            value /= 255;
        for (int i = 0; i < 4; i++)
            EXPECT_NEAR(view.MaterialOf(GL_DIFFUSE)[i], expected[i], 1.1 / 255) << &row - rows;
        EXPECT_EQ(view.GetCurrentMaterial(), view.GetUserMaterial().GetMaterialID());
    }
    ExpectNear(view.MaterialOf(GL_AMBIENT), {40 / 255.0f, 50 / 255.0f, 60 / 255.0f, 1});
    ExpectNear(view.MaterialOf(GL_SPECULAR), {96 / 255.0f, 96 / 255.0f, 96 / 255.0f, 1});
    EXPECT_EQ(view.MaterialOf(GL_SHININESS)[0], 64);
}

TEST(ViewMaterials, CornersSendOnlyWhatDiffers)
{
    CCornerProbe view;
    C3DMaterial material;
    view.SendCorner(material, {10, 20, 250});
    Spoil(GL_DIFFUSE);
    Spoil(GL_AMBIENT);
    view.SendCorner(material, {10, 20, 250});
    EXPECT_TRUE(IsSpoilt(GL_DIFFUSE));
    view.SendCorner(material, {10, 20, 251});
    EXPECT_FALSE(IsSpoilt(GL_DIFFUSE));
    EXPECT_TRUE(IsSpoilt(GL_AMBIENT));
    view.ReinitCurrentMaterial();    // another list
    view.SendCorner(material, {10, 20, 251});
    EXPECT_FALSE(IsSpoilt(GL_AMBIENT));

    view.InitMaterial(&material, false);    // a face without colours between
    Spoil(GL_AMBIENT);
    view.SendCorner(material, {10, 20, 251});
    EXPECT_FALSE(IsSpoilt(GL_AMBIENT));

    // Outside the lists of the channel: the material as it is.
    view.m_element.vcFace[1] = 7;
    view.InitPointMaterial();
    ExpectNear(view.MaterialOf(GL_DIFFUSE), {192 / 255.0f, 192 / 255.0f, 192 / 255.0f, 1});
}
