// Pictures as a user gets them: what the options change in them, what they hold where, and what becomes of the target.

#include <cstdlib>
#include <memory>
#include <vector>

#include <3dzel.h>

#include "support/Owned.h"
#include "zel/ZelCase.h"

namespace {

using Pixel = const unsigned char*;
using Kind = bool (*)(Pixel);

constexpr Kind RED = [](Pixel p) { return p[0] > p[1] + 60 && p[0] > p[2] + 60; };
constexpr Kind GREEN = [](Pixel p) { return p[1] > p[0] + 60 && p[1] > p[2] + 60; };
constexpr Kind BLUE = [](Pixel p) { return p[2] > p[0] + 60 && p[2] > p[1] + 60; };
constexpr Kind WHITE = [](Pixel p) { return p[0] == 255 && p[1] == 255 && p[2] == 255; };
constexpr Kind SHOWN = [](Pixel p) { return !WHITE(p); };

/// How many pixels pass, and the middle of them.
struct Patch {
    int count = 0;
    double x = 0, y = 0;

    Patch(const Bitmap& picture, Kind kind)
    {
        for (int row = 0; row < picture.GetHeight(); row++)
            for (int column = 0; column < picture.GetWidth(); column++)
                if (kind(picture.GetLine(row) + column * picture.GetBytesPerPixel())) {
                    count++;
                    x += column;
                    y += row;
                }
        x /= std::max(1, count);
        y /= std::max(1, count);
    }
};

/// Mean difference of two pictures of a size, a channel.
double Difference(const Bitmap& a, const Bitmap& b)
{
    double sum = 0;
    for (int y = 0; y < a.GetHeight(); y++)
        for (int x = 0; x < a.GetWidth() * 3; x++)
            sum += std::abs(a.GetLine(y)[x] - b.GetLine(y)[x]);
    return sum / (a.GetHeight() * a.GetWidth() * 3);
}

C3DSceneNode* CreateCamera(double distance)
{
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(C3DBaseObject::Create(OBJECT_CAMERA), true);
    C3DTranslateKey key;
    key.SetVector({0, static_cast<float>(-distance), 0});
    node->AddKey(0, key);
    return node;
}

class Render : public Zel {
protected:
    // A red cube on the left, a blue one on the right, a smaller green one below, two cameras before them; in frame 10 the red one is above.
    void SetUp() override
    {
        const Owned<C3DScene> scene(C3DScene::Create());
        const auto add = [&](const wchar_t* name, C3DSceneNode* node) {
            node->SetName(name);
            scene->AddNode(nullptr, node);
            return node;
        };
        const auto paint = [&](unsigned char r, unsigned char g, unsigned char b) {
            C3DMaterial* const material = scene->CreateNewMaterial(0xFFFFFFFF);
            material->SetDiffuseColor(0, CRGBColor(r, g, b));
            return material->GetMaterialID();
        };
        C3DSceneNode* const red = add(L"red", CreateCube({-2, 0, 0}, 2, 2, 2, false, paint(255, 0, 0), 0));
        add(L"blue", CreateCube({2, 0, 0}, 2, 2, 2, false, paint(0, 0, 255), 0));
        add(L"green", CreateCube({0, 0, -2}, 1, 1, 1, false, paint(0, 255, 0), 0));
        add(L"far", CreateCamera(40));
        add(L"near", CreateCamera(12));
        red->AddKey(0, C3DTranslateKey());
        C3DTranslateKey up;
        up.SetVector({0, 0, 6});
        red->AddKey(10, up);
        input = Write("scene.3dif", *scene);
    }
    std::string Write(const std::string& name, C3DScene& scene, CSceneExportOptions* options = nullptr)
    {
        C3DIo io(folder.Wide(name), FILEIO_SILENT, nullptr);
        EXPECT_TRUE(io.Save(false, &scene, options));
        return folder.Name(name);
    }

    std::unique_ptr<Bitmap> Draw(const std::string& options) { return DrawFile(input, options); }
    std::unique_ptr<Bitmap> DrawFile(const std::string& file, const std::string& options)
    {
        const Outcome run = Call("render --size 96x64 --background white " + options + " " + file + " " + folder.Name("out.png"));
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(run.out + run.talk, "");
        return std::move(ReadFrames("out.png").front());
    }
    /// All frames of a picture, with their alpha if they have one; one null when it cannot be read.
    std::vector<std::unique_ptr<Bitmap>> ReadFrames(const std::string& name)
    {
        C2DIo io(folder.Wide(name), FILEIO_READ | FILEIO_SILENT, nullptr);
        std::unique_ptr<CFrameBitmap> frames(io.ReadFrames());
        std::vector<std::unique_ptr<Bitmap>> pictures;
        durations.clear();
        for (int i = 0; frames && i < frames->GetFrameCount(); i++) {
            pictures.emplace_back(frames->GetFrame(i)->DetachStandardLayer());
            durations.push_back(frames->GetDuration(i));
        }
        if (pictures.empty()) {
            ADD_FAILURE() << name << ": " << WideToUtf8(io.GetResultText());
            pictures.emplace_back(rgbBitmap::Create(96, 64));
        }
        return pictures;
    }

    std::string input;
    std::vector<int> durations;
};

}

TEST_F(Render, EachViewShowsItsSide)
{
    enum Where { NOWHERE, LEFT, RIGHT, MIDDLE };
    const struct {
        const char* view;
        Where red, blue;
    } rows[] = {
        {"front", LEFT, RIGHT}, {"back", RIGHT, LEFT},   {"left", MIDDLE, NOWHERE}, {"right", NOWHERE, MIDDLE},
        {"top", LEFT, RIGHT},   {"bottom", LEFT, RIGHT}, {"rtf", LEFT, RIGHT},      {"ltf", LEFT, RIGHT},
        {"rtb", RIGHT, LEFT},   {"ltb", RIGHT, LEFT},    {"rbf", LEFT, RIGHT},      {"lbf", LEFT, RIGHT},
        {"rbb", RIGHT, LEFT},   {"lbb", RIGHT, LEFT},    {"camera", LEFT, RIGHT},   {"camera=far", LEFT, RIGHT},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.view);
        const auto picture = Draw(std::string("--view ") + row.view);
        const auto check = [&](Kind color, Where where) {
            const Patch patch(*picture, color);
            if (where == NOWHERE) {
                EXPECT_EQ(patch.count, 0);
                return;
            }
            EXPECT_GT(patch.count, 10);
            if (where == MIDDLE) {
                EXPECT_NEAR(patch.x, 47.5, 1);
            } else {
                EXPECT_EQ(patch.x < 47.5, where == LEFT);
            }
        };
        check(RED, row.red);
        check(BLUE, row.blue);
    }
    // What is in front is larger; above and below by the green cube, which stands below.
    EXPECT_GT(Patch(*Draw("--view rtf"), BLUE).count, Patch(*Draw("--view rtf"), RED).count);
    EXPECT_GT(Patch(*Draw("--view ltf"), RED).count, Patch(*Draw("--view ltf"), BLUE).count);
    EXPECT_GT(Patch(*Draw("--view front"), GREEN).y, Patch(*Draw("--view front"), RED).y);
    EXPECT_GT(Patch(*Draw("--view camera=near"), RED).count, 5 * Patch(*Draw("--view camera=far"), RED).count);
    EXPECT_GT(Difference(*Draw("--view rtf --angle 30"), *Draw("--view rtf --angle 60")), 5);
}

TEST_F(Render, NobodyCountsThePointsOfIcons)
{
    EXPECT_EQ(Info(input)["by_kind"]["OBJECT_CAMERA"], 2);
    EXPECT_EQ(Info(input)["points"], 24);
}

TEST_F(Render, ObjectsWithoutPointsAreNoFault)
{
    const Owned<C3DScene> scene(C3DScene::Create());
    scene->AddNode(nullptr, CreateCube({0, 0, 0}, 2, 2, 2, false, 0, 0));
    for (const auto kind : {OBJECT_POLYGONAL, OBJECT_CURVE, OBJECT_PATCH, OBJECT_GROUP, OBJECT_DUMMY, OBJECT_CAMERA, OBJECT_LIGHT}) {
        C3DSceneNode* const node = C3DSceneNode::Create();
        node->SetObject(C3DBaseObject::Create(kind), true);
        scene->AddNode(nullptr, node);
    }
    EXPECT_GT(Patch(*DrawFile(Write("empty.3dif", *scene), "--mode smooth-wire --boxes --labels --normals"), SHOWN).count, 100);
}

TEST_F(Render, FillsThePicture)
{
    const Kind shown = SHOWN, red = RED;
    for (const auto& [options, kind] : {std::pair("--size 30x90", shown), std::pair("--select red", red), std::pair("--time 10", shown)}) {
        SCOPED_TRACE(options);
        const auto picture = Draw(options);
        const int width = picture->GetWidth(), height = picture->GetHeight();
        int left = width, right = -1, top = height, bottom = -1;
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                if (kind(picture->GetLine(y) + 3 * x)) {
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
        EXPECT_TRUE(left > 0 && top > 0 && right < width - 1 && bottom < height - 1);    // whole, with a margin
        EXPECT_TRUE(right - left > 0.9 * width - 3 || bottom - top > 0.9 * height - 3);
    }
}

TEST_F(Render, OptionsShowInThePicture)
{
    const auto plain = Draw("--view front");
    const Patch shown(*plain, SHOWN);
    EXPECT_EQ(plain->GetType(), BITMAP_RGB);
    const struct {
        const char* options;
        double least, most;    // of pixels shown, against those without options
    } rows[] = {
        {"--mode wireframe", 0.02, 0.7}, {"--mode flat", 0.99, 1.01}, {"--mode flat-wire", 0.99, 1.2}, {"--mode smooth-wire", 0.99, 1.2},
        {"--boxes", 1.01, 1.6},          {"--normals", 1.005, 1.6},   {"--labels", 1.001, 1.6},        {"--labels=faces --view top", 0, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options);
        const auto picture = Draw(std::string("--view front ") + row.options);
        const Patch now(*picture, SHOWN);
        EXPECT_GE(now.count, row.least * shown.count);
        EXPECT_LE(now.count, row.most * shown.count);
    }
    EXPECT_LT(Patch(*Draw("--view front --time 10"), RED).y, Patch(*plain, RED).y);
    for (const char* color : {"'#00f'", "'#0000ff'", "0,0,255"})
        EXPECT_TRUE(BLUE(Draw(std::string("--background ") + color)->GetLine(0))) << color;
    // Samples make colours between those of sides and background; a flat side has one.
    const Kind between = [](Pixel p) { return p[0] > p[1] && p[1] > 30 && p[1] < 240; };
    EXPECT_EQ(Patch(*Draw("--view front --antialias 1"), between).count, 0);
    EXPECT_GT(Patch(*Draw("--view front --antialias 4"), between).count, 10);
}

TEST_F(Render, TexturesAndColorsOfCornersCanBeLeftOut)
{
    const std::unique_ptr<Bitmap> green(rgbBitmap::Create(2, 2));
    for (int i = 0; i < 4; i++)
        green->GetLine(i / 2)[i % 2 * 3 + 1] = 255;
    C2DIo io(folder.Wide("green.png"), FILEIO_SILENT, nullptr);
    ASSERT_EQ(io.Save(green.get()), IORESULT_OK);
    folder.Write("t.mtl", "newmtl t\nKd 1 1 1\nmap_Kd green.png\n");
    const std::string textured = folder.Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                                                       "usemtl t\nf 1/1 2/2 3/3 4/4\n");
    const std::string colored = folder.Write("c.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
                                                      "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
                                                      "element face 1\nproperty list uchar int vertex_indices\nend_header\n"
                                                      "0 0 0 0 255 0\n1 0 0 0 255 0\n0 1 0 0 255 0\n3 0 1 2\n");
    const struct {
        const std::string& file;
        const char* option;
    } rows[] = {{textured, "--no-textures"}, {colored, "--no-vertex-colors"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        EXPECT_GT(Patch(*DrawFile(row.file, ""), GREEN).count, 100);
        EXPECT_EQ(Patch(*DrawFile(row.file, row.option), GREEN).count, 0);
    }
}

TEST_F(Render, WhatIsHalfTransparentIsSoInThePicture)
{
    // A red sheet that lets half through, half of it over a green one.
    folder.Write("t.mtl", "newmtl g\nKd 0 1 0\nKs 0 0 0\nnewmtl r\nKd 1 0 0\nKs 0 0 0\nd 0.5\n");
    const std::string sheets =
        folder.Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 2 0 1\nv 2 1 1\nv 0 1 1\n"
                              "usemtl g\nf 1 2 3 4\nusemtl r\nf 5 6 7 8\n");
    ASSERT_EQ(Call("render --size 96x64 --view front --background transparent " + sheets + " " + folder.Name("t.png")).code, 0);
    const auto picture = std::move(ReadFrames("t.png").front());
    const Pixel alone = picture->GetLine(32) + 4 * 75, over = picture->GetLine(32) + 4 * 25;
    EXPECT_NEAR(alone[3], 128, 3);
    EXPECT_TRUE(RED(alone));
    EXPECT_LE(alone[1] + alone[2], 6);    // the whole colour, nothing of a background in it but rounding
    EXPECT_EQ(over[3], 255);
    EXPECT_GT(over[0], 60);
    EXPECT_GT(over[1], 60);
}

TEST_F(Render, TransparentMeansStraightColorsWithoutSeams)
{
    ASSERT_EQ(Call("render --size 96x64 --view front --background transparent --antialias 4 " + input + " " + folder.Name("t.png")).code,
              0);
    const auto picture = std::move(ReadFrames("t.png").front());
    ASSERT_EQ(picture->GetType(), BITMAP_RGBA);
    int edges = 0, least = 255, most = 0;
    for (int y = 0; y < picture->GetHeight(); y++)
        for (int x = 0; x < picture->GetWidth(); x++) {
            const Pixel pixel = picture->GetLine(y) + 4 * x;
            if (!RED(pixel) || pixel[3] < 32)
                continue;
            edges += pixel[3] < 255;
            least = std::min<int>(least, pixel[0]);
            most = std::max<int>(most, pixel[0]);
        }
    EXPECT_GT(edges, 10);
    EXPECT_LE(most - least,
              24);    // the edge has the colour of the side, which the light makes uneven: neither black nor white has come in
    EXPECT_EQ(picture->GetLine(0)[3], 0);
}

TEST_F(Render, TurntablesAreSeriesOrAnimations)
{
    const std::string command = "render --size 96x64 --background white --view front ";
    const auto back = Draw("--view back");
    EXPECT_EQ(Call(command + "--turntable 2 " + input + " " + folder.Name("turn.png")).code, 0);
    EXPECT_LT(Difference(*ReadFrames("turn0001.png").front(), *back), 6);
    EXPECT_GT(Difference(*ReadFrames("turn0000.png").front(), *back), 20);

    const struct {
        const char *options, *file;
        int count, duration;
        double red[2];    // where the middle of the red cube is in the first and the second picture
    } rows[] = {
        {"--turntable 4", "t.gif", 4, 1000, {22, 47.5}},
        {"--turntable 8 --movement left", "t.webp", 8, 500, {22, 30}},
        {"--turntable 10 --amplitude 90", "t.webp", 10, 100, {22, 23}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options);
        EXPECT_EQ(Call(command + row.options + " " + input + " " + folder.Name(row.file)).code, 0);
        const auto frames = ReadFrames(row.file);
        ASSERT_EQ(static_cast<int>(frames.size()), row.count);
        EXPECT_EQ(durations[1], row.duration);
        for (int i = 0; i < 2; i++)
            EXPECT_NEAR(Patch(*frames[static_cast<std::size_t>(i)], RED).x, row.red[i], 5);
    }
    // What is in front goes where the movement says: upwards, the side below comes to the front.
    for (const auto& [movement, view] : {std::pair("up", "bottom"), std::pair("down", "top")}) {
        EXPECT_EQ(Call(command + "--turntable 4 --movement " + movement + " " + input + " " + folder.Name("turn.png")).code, 0);
        const Patch turned(*ReadFrames("turn0001.png").front(), GREEN), seen(*Draw(std::string("--view ") + view), GREEN);
        EXPECT_EQ(turned.count > 20, seen.count > 20) << movement;
    }
}

TEST_F(Render, EndsWithTheCodeOfWhatHappened)
{
    const std::string to = " " + input + " " + folder.Name("x.png");
    const struct {
        std::string arguments;
        int code;
        const char* says;    // on standard error; null: nothing
    } rows[] = {
        {"render --size 16x16" + to, 0, nullptr},
        {"render --size 16x16 --time 99" + to, 0, "no frame 99; drawn is 10"},
        {"render " + input + " " + folder.Name("x.unknown"), 2, "there are .png, .jpg"},
        {"render --size 16" + to, 2, "not WIDTHxHEIGHT"},
        {"render --background '#12345'" + to, 2, "no color #12345"},
        {"render --background transparent " + input + " " + folder.Name("x.jpg"), 2, "no transparency"},
        {"render --view top --angle 20" + to, 2, "top is none"},
        {"render --select nobody" + to, 2, "no node nobody, but blue, far, green, near, red"},
        {"render --view camera " + MODEL + " " + folder.Name("x.png"), 2, "no camera"},
        {"render --size 16x16 " + input + " " + folder.Name("none/x.png"), 1, "none/x.png"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome run = Call(row.arguments);
        EXPECT_EQ(run.code, row.code);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.talk.begin(), run.talk.end(), '\n'), row.says ? 1 : 0) << run.talk;
        EXPECT_NE(run.talk.find(row.says ? row.says : ""), std::string::npos) << run.talk;
    }
}

TEST_F(Render, WithoutADriverItSaysSoAndWritesNothing)
{
    const ScopedVariable none("__EGL_VENDOR_LIBRARY_DIRS", folder.Name("no-such-folder"));
    const Outcome run = Call("thumbnail " + input + " " + folder.Name("x.png"));
    EXPECT_EQ(run.code, 5);
    EXPECT_NE(run.talk.find("no OpenGL driver"), std::string::npos) << run.talk;
    EXPECT_EQ(Call("render " + folder.Name("missing.obj") + " " + folder.Name("x.png")).code, 3);
    EXPECT_EQ(folder.Read("x.png"), "");
}

TEST_F(Render, AnEmptySceneIsTheBackgroundAndALine)
{
    const Owned<C3DScene> scene(C3DScene::Create());
    C3DSceneNode* const node = CreateCube({}, 1, 1, 1, false, 0, 0);
    node->SetFlag(NODE_HIDDEN, true);
    scene->AddNode(nullptr, node);
    CSceneExportOptions options;
    options.flags = EXPORT_HIDDEN_OBJECTS;
    const std::string hidden = Write("hidden.3dif", *scene, &options);
    const Outcome run = Call("render --size 16x16 --background red " + hidden + " " + folder.Name("x.png"));
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.talk.find("nothing to see"), std::string::npos) << run.talk;
    EXPECT_EQ(Patch(*ReadFrames("x.png").front(), RED).count, 256);
}

TEST_F(Render, AMaterialThatNobodyWouldSeeIsDrawnAllTheSame)
{
    folder.Write("t.mtl", "newmtl g\nKd 0 1 0\nd 0\n");
    const std::string file = folder.Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl g\nf 1 2 3\n");
    const Outcome run = Call("render --size 16x16 " + file + " " + folder.Name("x.png"));
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.talk.find("all of it is transparent"), std::string::npos) << run.talk;
    EXPECT_GT(Patch(*ReadFrames("x.png").front(), GREEN).count, 10);
}

TEST_F(Render, ThumbnailsAreSquaresWithoutBackground)
{
    const std::string plain = folder.Name("thumbnail.tmp");    // as programs name it that ask for one
    EXPECT_EQ(Call("thumbnail --size 64 " + input + " " + plain).code, 0);
    const auto picture = std::move(ReadFrames("thumbnail.tmp").front());
    EXPECT_EQ(picture->GetWidth(), 64);
    EXPECT_EQ(picture->GetType(), BITMAP_RGBA);
    EXPECT_EQ(folder.Read("thumbnail.tmp").substr(1, 3), "PNG");
    EXPECT_GT(Patch(*picture, [](Pixel p) { return p[3] == 0; }).count, 1000);
    EXPECT_GT(Patch(*picture, RED).count, 100);
}

TEST_F(Render, AFailedWriteKeepsWhatWasThere)
{
    const std::string target = folder.Write("kept.png", "as it was");
    const std::string command = "ulimit -f 1; trap '' XFSZ; " ZEL " render --size 400x400 " + input + " " + target + " 2>/dev/null";
    EXPECT_NE(std::system(("sh -c \"" + command + "\"").c_str()), 0);
    EXPECT_EQ(folder.Read("kept.png"), "as it was");
}
