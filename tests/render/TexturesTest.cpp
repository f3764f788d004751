#include <map>
#include <string>

#include "images/2DIo.h"
#include "render/ViewProbe.h"
#include "scene/3DObject.h"
#include "scene/Primitives.h"
#include "support/TempFolder.h"
#include "tools/Application.h"

namespace {

/// A program whose profile holds what a test puts there.
class CProfile : public IApplication {
public:
    CProfile() : m_former(SetApplication(this)) {}
    ~CProfile() override { SetApplication(m_former); }
    unsigned int GetProfileInt(const CXTString<wchar_t>&, const CXTString<wchar_t>& key, unsigned int standard) override
    {
        const auto found = m_values.find(key.Str());
        return found == m_values.end() ? standard : found->second;
    }
    bool WriteProfileInt(const CXTString<wchar_t>&, const CXTString<wchar_t>& key, unsigned int value) override
    {
        m_values[key.Str()] = value;
        return true;
    }
    unsigned int& operator[](const wchar_t* key) { return m_values[key]; }

private:
    IApplication* m_former;
    std::map<std::wstring, unsigned int> m_values;
};

constexpr CRGBColor RED{255, 0, 0}, GREEN{0, 255, 0}, BLUE{0, 0, 255}, YELLOW{255, 255, 0};

/// Four fields: red and green above, blue and yellow below. An alpha goes into all of them, or for -1 there is none.
void SavePicture(const CXTString<wchar_t>& name, int width, int height, int alpha = -1)
{
    const Picture picture(alpha < 0 ? static_cast<Bitmap*>(rgbBitmap::Create(width, height)) : rgbaBitmap::Create(width, height));
    const int bytes = picture->GetBytesPerPixel();
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            CRGBColor color = y < height / 2 ? (x < width / 2 ? RED : GREEN) : (x < width / 2 ? BLUE : YELLOW);
            color.alpha = static_cast<unsigned char>(alpha);
            std::copy_n(color.ValPtr(), bytes, picture->GetLine(y) + x * bytes);
        }
    C2DIo file(CFileNameSpec(name), 0, nullptr);
    ASSERT_EQ(file.Save(picture.get()), IORESULT_OK);
}

struct TextureFacts {
    int width = 0, height = 0, alphaBits = 0, filter = 0, wrap = 0;
};

/// A view and one material with a texture.
class CTextureProbe : public CViewProbe {
public:
    explicit CTextureProbe(unsigned int flags = VIEWFLAG_SMOOTH | VIEWFLAG_TEXTURE)
        : CViewProbe(flags), m_material(*m_held->CreateNewMaterial(5))
    {
        m_element.viewFlags = flags;
        m_element.material = &m_material;
    }

    void SetPicture(int width, int height, int alpha = -1)
    {
        const std::string file = std::to_string(m_files++) + ".png";
        SavePicture(m_folder.Wide(file), width, height, alpha);
        SetPicture(m_folder.Wide(file));
    }
    void SetPicture(const CXTString<wchar_t>& file)
    {
        m_material.AddMaterialMap(file, 1, MAP_DIFFUSE, PROJECTION_UVW)->SetFileName(file, L"");
    }
    /// Loads it anew; 0 by 0 for none.
    TextureFacts Load()
    {
        TextureFacts facts;
        const unsigned int name = InitMaterialMapping(5, true);
        if (name == 0xFFFFFFFF)
            return facts;
        glBindTexture(GL_TEXTURE_2D, name);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &facts.width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &facts.height);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_ALPHA_SIZE, &facts.alphaBits);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &facts.filter);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, &facts.wrap);
        return facts;
    }
    /// The square in the material, with its texture as a face of a list would have it.
    void DrawTextured(bool uvw = true)
    {
        Clear();
        ReinitCurrentMaterial();
        m_element.uvwInUse = uvw;
        glDisable(GL_LIGHTING);
        glColor3f(1, 1, 1);
        BeginPrimitive(GL_TRIANGLES);
        InitTexture();
        SendSquare();
        EndPrimitive();
    }

    C3DMaterial& m_material;
    TempFolder m_folder;

private:
    int m_files = 0;
};

/// Scaling up mixes neighbours, those across the edges too: 9/16 stay at a corner.
testing::AssertionResult IsMostly(const Pixel& pixel, const CRGBColor& color)
{
    return IsPixel(pixel, {color.red, color.green, color.blue, 255}, 115);
}

}

TEST(ViewTextures, SidesGoToTheNextPowerOfTwoWithinTheirLimits)
{
    CProfile profile;
    struct {
        const char* name;
        int width, height;
        bool economy;
        unsigned int lowres;
        int textureWidth, textureHeight;
    } const rows[] = {
        {"least", 1, 3, false, 512, 4, 4},
        {"up", 5, 9, false, 512, 8, 16},
        {"far up", 513, 512, false, 512, 1024, 512},
        {"no more than 1024", 1500, 2, false, 512, 1024, 4},
        {"limited by more", 600, 600, true, 100, 128, 128},
        {"tiny limit", 600, 20, true, 1, 4, 4},
        {"limit of nothing", 600, 20, true, 0, 0, 0},
        {"negative limit", 600, 20, true, 0xFFFFFFFF, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CTextureProbe view(VIEWFLAG_SMOOTH | VIEWFLAG_TEXTURE | (row.economy ? VIEWFLAG_ECONOMY : 0u));
        profile[L"lowres"] = row.lowres;
        view.SetPicture(row.width, row.height);
        const TextureFacts facts = view.Load();
        EXPECT_EQ(facts.width, row.textureWidth);
        EXPECT_EQ(facts.height, row.textureHeight);
    }
}

TEST(ViewTextures, TexelsAreAtTheirCorners)
{
    CTextureProbe view;
    // Faults in mind: upside down; rows that slip by their padding; scaled from the wrong end.
    for (const CSize size : {CSize{4, 4}, {16, 4}, {2, 2}, {3, 5}, {6, 10}, {700, 30}}) {
        SCOPED_TRACE(testing::Message() << size.cx << " by " << size.cy);
        view.SetPicture(size.cx, size.cy);
        ASSERT_NE(view.Load().width, 0);
        view.DrawTextured();
        EXPECT_TRUE(IsMostly(view.At(2, 61), RED));
        EXPECT_TRUE(IsMostly(view.At(61, 61), GREEN));
        EXPECT_TRUE(IsMostly(view.At(2, 2), BLUE));
        EXPECT_TRUE(IsMostly(view.At(61, 2), YELLOW));
    }
}

TEST(ViewTextures, FiltersAsTheViewSays)
{
    for (const bool smooth : {true, false}) {
        CTextureProbe view(VIEWFLAG_SMOOTH | VIEWFLAG_TEXTURE | (smooth ? VIEWFLAG_SMOOTH_TEXTURES : 0u));
        view.SetPicture(4, 4);
        const TextureFacts facts = view.Load();
        EXPECT_EQ(facts.filter, smooth ? GL_LINEAR : GL_NEAREST);
        EXPECT_EQ(facts.wrap, GL_REPEAT);
        view.DrawTextured();
        const Pixel seam = view.At(31, 60);    // left of the middle, where red meets green
        EXPECT_EQ(seam[0] < 250, smooth);
    }
}

TEST(ViewTextures, WithoutAPictureTheMaterialsColourShows)
{
    CTextureProbe view;
    EXPECT_EQ(view.Load().width, 0);    // no map
    view.SetPicture(4, 4);
    const unsigned int name = view.InitMaterialMapping(5, true);
    EXPECT_EQ(view.InitMaterialMapping(5, true), name);    // call lists know it
    EXPECT_EQ(view.InitMaterialMapping(5, false), name);
    EXPECT_TRUE(view.TextureExist());
    for (const std::string& file : {view.m_folder.Name("missing.png"), view.m_folder.Write("bad.png", "\x89PNG\r\n\x1A\nnothing")}) {
        view.SetPicture(Utf8ToWide(file));
        EXPECT_EQ(view.Load().width, 0) << file;
        EXPECT_FALSE(view.TextureExist());
        EXPECT_FALSE(glIsTexture(name));
    }
    view.m_material.SetDiffuseColor(0, {0, 0, 0});
    view.DrawTextured();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_NEAR(view.MaterialOf(GL_DIFFUSE)[0], 13 / 255.0, 0.001);
    EXPECT_EQ(view.InitMaterialMapping(77, true), 0xFFFFFFFF);    // no such material
}

TEST(ViewTextures, LieOnAWhiteOrOnTheBrightestOfTheMaterialsHue)
{
    CTextureProbe view;
    view.SetPicture(4, 4);
    view.Load();
    view.m_material.SetDiffuseColor(0, {50, 50, 50});
    view.m_material.SetTransparencyFactor(0, 0.5f);
    view.DrawTextured();
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(view.MaterialOf(GL_DIFFUSE), (std::array<float, 4>{1, 1, 1, 127 / 255.0f}));
    EXPECT_TRUE(view.IsMaterialCurrent());
    view.m_material.SetDiffuseColor(0, {100, 50, 0});
    view.DrawTextured();
    EXPECT_EQ(view.MaterialOf(GL_DIFFUSE)[2], 0);
    EXPECT_EQ(view.MaterialOf(GL_DIFFUSE)[1], 1);
    view.m_material.SetFlag(MATERIAL_PLAIN_TEXTURE, true);
    view.DrawTextured();
    EXPECT_EQ(view.MaterialOf(GL_DIFFUSE), (std::array<float, 4>{1, 1, 1, 1}));

    view.DrawTextured(false);    // a face without coordinates
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(view.MaterialOf(GL_DIFFUSE)[0], 100 / 255.0f);
    EXPECT_TRUE(IsPixel(view.At(2, 61), {255, 255, 255, 255}, 0));
}

TEST(ViewTextures, AreLoadedOnceAndGoWithTheFlag)
{
    CTextureProbe view;
    view.SetPicture(4, 4);
    view.GetScene()->AddNode(nullptr, CreateCube({0, 0, 0}, 1, 1, 1, true, 5, 1));
    view.DestroyMapping(true);    // of the empty scene
    view.InitMapping();
    ASSERT_TRUE(view.TextureExist());
    const unsigned int name = view.InitMaterialMapping(5, false);
    view.InitMapping();
    EXPECT_EQ(view.InitMaterialMapping(5, false), name);
    int hint;
    glGetIntegerv(GL_PERSPECTIVE_CORRECTION_HINT, &hint);
    EXPECT_EQ(hint, GL_FASTEST);

    view.m_settings.viewFlags &= ~VIEWFLAG_TEXTURE;
    view.InitMapping();
    EXPECT_FALSE(view.TextureExist());
    EXPECT_FALSE(glIsTexture(name));
    view.m_settings.viewFlags |= VIEWFLAG_TEXTURE | VIEWFLAG_PERSPECTIVE_HINT;
    view.InitMapping();
    EXPECT_TRUE(view.TextureExist());
    glGetIntegerv(GL_PERSPECTIVE_CORRECTION_HINT, &hint);
    EXPECT_EQ(hint, GL_NICEST);
}

TEST(ViewTextures, NewsOfAMaterialRemakeWhatTheyMustAndNothingElse)
{
    CTextureProbe view;
    view.SetPicture(4, 4);
    C3DMaterial& bare = *view.GetScene()->CreateNewMaterial(6);
    view.GetScene()->AddNode(nullptr, CreateCube({0, 0, 0}, 1, 1, 1, true, 5, 1));
    view.GetScene()->AddNode(nullptr, CreateCube({3, 0, 0}, 1, 1, 1, true, 6, 1));
    static int s_flushed;
    view.SetFlushCallback([](C3DSceneNode*, void*) { s_flushed++; });
    view.UpdateView(GLSET_FLUSH_ALL | GLSET_RELOAD_TEXTURES);
    const auto tell = [&](C3DMaterial& material, unsigned int news) {
        s_flushed = 0;
        material.SetFlags(news, true);
        view.MaterialChanged(material.GetMaterialID());
        EXPECT_FALSE(material.IsOneFlagSet(MATERIAL_CHANGES));
        return s_flushed;
    };
    const auto textureWidth = [&] {
        int width = 0;
        glBindTexture(GL_TEXTURE_2D, view.InitMaterialMapping(5, false));
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        return width;
    };
    EXPECT_EQ(tell(view.m_material, MATERIAL_NAME_CHANGED), 0);
    EXPECT_EQ(tell(view.m_material, MATERIAL_COLOR_CHANGED), 1);
    EXPECT_EQ(tell(bare, MATERIAL_PARAMETER_CHANGED), 1);
    view.SetPicture(8, 8);
    EXPECT_EQ(tell(view.m_material, MATERIAL_COLOR_CHANGED), 1);
    EXPECT_EQ(textureWidth(), 4);
    EXPECT_EQ(tell(view.m_material, MATERIAL_TEXTURE_CHANGED), 0);
    EXPECT_EQ(textureWidth(), 8);

    // Images: those in memory stay, whatever became of their files.
    SavePicture(view.m_material.GetDiffuseMaps()->GetFileName(), 16, 16);
    EXPECT_EQ(tell(view.m_material, MATERIAL_IMAGES_CHANGED), 0);
    EXPECT_EQ(textureWidth(), 8);
    view.SetPicture(32, 32);
    EXPECT_EQ(tell(view.m_material, MATERIAL_IMAGES_CHANGED), 0);
    EXPECT_EQ(textureWidth(), 32);

    // A texture that comes or goes is in the lists.
    view.SetPicture(view.m_folder.Wide("missing.png"));
    EXPECT_EQ(tell(view.m_material, MATERIAL_TEXTURE_CHANGED), 1);
    view.SetPicture(4, 4, 0);
    EXPECT_EQ(tell(view.m_material, MATERIAL_TEXTURE_CHANGED), 1);
    view.MaterialChanged(99);
}

TEST(ViewTextures, HolesOfATextureAreSeenThrough)
{
    CProfile profile;
    for (const unsigned int cut : {0u, 1u}) {
        TempFolder folder;
        SavePicture(folder.Wide("holes.png"), 8, 8, 0);
        Owned<C3DScene> scene(C3DScene::Create());
        scene->CreateNewMaterial(5)->AddMaterialMap(folder.Wide("holes.png"), 1, MAP_DIFFUSE, PROJECTION_UVW);
        scene->AddNode(nullptr, CreatePlane({0, 0, 0}, {0, -1, 0}, 2, 2, 1, 1, true, 5, 1));
        profile[L"alphacut"] = cut;
        C3DView view;
        ASSERT_TRUE(view.CreateMemoryRendering(64, 64, 24));
        view.SetScene(scene.get(), 0);
        GlViewSettings settings;
        settings.viewFlags = VIEWFLAG_DEFAULT;
        settings.viewNumber = RVIEW_FRONT;
        settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_UPDATE | GLSET_FIT;
        view.SetViewSettings(&settings);
        const Picture picture(view.CreateBitmapFromScene());
        const int drawn = CountPixels(*picture, [](const unsigned char* p) { return p[0] != 128 || p[1] != 128 || p[2] != 128; });
        if (cut)
            EXPECT_EQ(drawn, 0);
        else
            EXPECT_GT(drawn, 500);
    }
}
