#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>

#include "images/2DIo.h"
#include "render/Turntable.h"
#include "scene/Camera.h"
#include "tools/FourCC.h"
#include "viewer/CommandCase.h"
#include "viewer/FileCommands.h"
#include "viewer/SaveAsBitmap.h"
#include "viewer/SaveAsBitmapDlg.h"

namespace {

constexpr unsigned int SAVB = FourCC("SAVB");

/// What one pixel holds: red, green, blue, alpha.
using Pixel = std::array<int, 4>;

Pixel At(const Bitmap& picture, int x, int y)
{
    const unsigned char* const p = picture.GetLine(y) + x * picture.GetBytesPerPixel();
    return {p[0], p[1], p[2], picture.GetType() == BITMAP_RGBA ? p[3] : 255};
}

/// Largest difference of a channel anywhere.
int Difference(const Bitmap& a, const Bitmap& b)
{
    if (a.GetWidth() != b.GetWidth() || a.GetHeight() != b.GetHeight() || a.GetType() != b.GetType())
        return 255;
    int most = 0;
    for (int y = 0; y < a.GetHeight(); y++)
        for (int i = 0; i < a.GetWidth() * a.GetBytesPerPixel(); i++)
            most = std::max(most, std::abs(a.GetLine(y)[i] - b.GetLine(y)[i]));
    return most;
}

/// A host's command: it has a point of view of its own, and gives what it renders.
class HostCommand : public C3DSaveAsBitmap {
public:
    int InitUserView(int number, GlViewSettings& settings) override
    {
        settings.viewNumber = RVIEW_TOP;
        return number == 0;
    }
    int GetUserViewSize() override { return 1; }
    void GetUserViewName(CXArray<Text>& names) override { names.Add(L"From above"); }
};

class SaveAsBitmap : public CommandCase {
protected:
    void SetUp() override
    {
        CommandCase::SetUp();
        frame->GetCommandMgr().AddCommand(&command, nullptr);
        parameters.SetUnsigned(FourCC("WIDT"), 90);
        parameters.SetUnsigned(FourCC("HEIG"), 60);
        parameters.SetUnsigned(FourCC("BKCO"), 0x0000FF);    // red
    }

    /// One image, as a script gets it.
    std::unique_ptr<Bitmap> Render(unsigned int index = 0)
    {
        CCustomData input;
        input.SetPointer(DATA_SCENE, scene.get());
        input.SetUnsigned(C3DSaveAsBitmap::DATA_IMAGE_INDEX, index);
        command.SetInputData(input);
        command.SetParameters(parameters);
        frame->GetCommandMgr().SetScriptMode(SCRIPT_APPLY);
        const CommandResult result = frame->GetCommandMgr().StackCommand(&command, STACK_APPLY, nullptr);
        frame->GetCommandMgr().SetScriptMode(SCRIPT_NONE);
        command.SetInputData(CCustomData());
        void* bitmap = nullptr;
        command.GetOutputData().GetPointer(C3DSaveAsBitmap::DATA_BITMAP, bitmap);
        EXPECT_EQ(bitmap != nullptr, result == COMMAND_DONE);
        return std::unique_ptr<Bitmap>(static_cast<Bitmap*>(bitmap));
    }
    CommandResult Apply()
    {
        command.SetParameters(parameters);
        return frame->GetCommandMgr().StackCommand(&command, STACK_APPLY, nullptr);
    }
    /// The first one of a file; null when there is none.
    std::unique_ptr<CFrameBitmap> Read(const std::string& name)
    {
        C2DIo io(CFileNameSpec(folder.Wide(name)), FILEIO_READ | FILEIO_SILENT, nullptr);
        return std::unique_ptr<CFrameBitmap>(io.PrepareReading() == IORESULT_OK ? io.ReadFrames() : nullptr);
    }

    HostCommand command;
    CCustomData parameters;
};

TEST_F(SaveAsBitmap, AlphaTellsWhatWasDrawn)
{
    // Faults in mind: alpha of the view's own sense, inverted; a background that shows in the averaged edges, or in the object.
    for (const bool smooth : {true, false}) {
        SCOPED_TRACE(smooth);
        parameters.SetBool(FourCC("SMOO"), smooth);
        const std::unique_ptr<Bitmap> picture = Render();
        ASSERT_TRUE(picture);
        ASSERT_EQ(picture->GetType(), BITMAP_RGBA);
        EXPECT_EQ(picture->GetWidth(), 90);
        EXPECT_EQ(picture->GetHeight(), 60);
        EXPECT_EQ(At(*picture, 0, 0), (Pixel{255, 0, 0, 0}));
        EXPECT_EQ(At(*picture, 45, 30)[3], 255);
        bool hasEdges = false;
        for (int x = 0; x < 90; x++) {
            const Pixel pixel = At(*picture, x, 30);
            hasEdges |= pixel[3] != 0 && pixel[3] != 255;
            if (pixel[3] != 0) {
                EXPECT_NEAR(pixel[0], pixel[1], 2) << x;    // the box is grey
            }
        }
        EXPECT_TRUE(smooth || !hasEdges);
    }
}

TEST_F(SaveAsBitmap, PresentViewIsCarriedExactly)
{
    // Faults in mind: the fit of a new view moves the eye; the view turns about the scene's centre, not about its own; the shown view changes.
    GlViewSettings moved;
    moved.changeMask = GLSET_MATRIX | GLSET_CAMERA;
    moved.matrix = View().GetViewSettings()->matrix;
    TurnMatrix(moved.matrix, {0, 0, 1}, 0.3);
    moved.matrix.m[0][3] += 2;
    moved.matrix.m[2][3] *= 0.7f;
    moved.SetCurrentCamera(nullptr);
    moved.GetCurrentCamera()->SetZoom(1.3);
    View().SetViewSettings(&moved);
    scene->Select(scene->GetFirstNode(OBJECT_ANY).GetNode(), 0);
    scene->AddNode(nullptr, CreateCube({40, 0, 0}, 2, 2, 2, false, 0, 0));    // the scene's centre is another one now

    class PlainView : public C3DView {
    public:
        void Take(const GlViewSettings& settings) { m_settings.sceneCenter = settings.sceneCenter; }
    } plain;
    ASSERT_TRUE(plain.CreateMemoryRendering(90, 60, 32));
    GlViewSettings settings = *View().GetViewSettings();
    const C4x4TMatrix<float> before = settings.matrix;
    settings.changeMask = GLSET_MATRIX | GLSET_CAMERA | GLSET_VIEW_FLAGS;
    plain.SetViewSettings(&settings);
    plain.SetBackgroundColor(255, 0, 0);
    plain.SetScene(scene.get(), 0);
    plain.Take(settings);
    plain.UpdateView(0);
    const std::unique_ptr<Bitmap> expected(plain.CreateBitmapFromScene());
    expected->InvertAlpha();

    parameters.SetBool(FourCC("SMOO"), false);
    const std::unique_ptr<Bitmap> picture = Render();
    ASSERT_TRUE(picture);
    EXPECT_EQ(Difference(*picture, *expected), 0);
    EXPECT_TRUE(before == View().GetViewSettings()->matrix);
    parameters.SetUnsigned(FourCC("RDPS"), 4);
    EXPECT_GT(Difference(*Render(), *expected), 20);    // and only when asked for
    EXPECT_TRUE(before == View().GetViewSettings()->matrix);
}

TEST_F(SaveAsBitmap, PointsOfViewAndRenderModes)
{
    // The box is 2 wide, 4 deep, 6 high. Faults in mind: a row of the table that is another view; a host's view that isn't asked for.
    parameters.SetBool(FourCC("SMOO"), false);
    const auto extent = [&](unsigned int view) {
        parameters.SetUnsigned(FourCC("RDPS"), view);
        const std::unique_ptr<Bitmap> picture = Render();
        int width = 0, height = 0;
        for (int x = 0; x < 90; x++)
            width += At(*picture, x, 30)[3] != 0;
        for (int y = 0; y < 60; y++)
            height += At(*picture, 45, y)[3] != 0;
        return 1.0 * width / height;
    };
    struct {
        unsigned int view;
        double ratio;
    } const rows[] = {{0, 2 / 6.0}, {1, 2 / 6.0}, {2, 4 / 6.0}, {3, 4 / 6.0}, {4, 2 / 4.0}, {5, 2 / 4.0}, {15, 2 / 4.0}, {16, 2 / 6.0}};
    for (const auto& row : rows)
        EXPECT_NEAR(extent(row.view), row.ratio, 0.06) << row.view;

    parameters.SetUnsigned(FourCC("RDPS"), 0);
    parameters.SetUnsigned(FourCC("RDMD"), 0);
    EXPECT_EQ(At(*Render(), 45, 36)[3], 0);    // between the wires
}

TEST_F(SaveAsBitmap, SeriesTurnsStepByStep)
{
    // Faults in mind: the last image is the first again; a script's index counts from 1, or the step isn't that of the series.
    parameters.SetBool(FourCC("SMOO"), false);
    parameters.SetUnsigned(FourCC("IMGN"), 4);
    std::unique_ptr<Bitmap> alone = Render();
    unsigned int count = 0;
    command.GetOutputData().GetUnsigned(C3DSaveAsBitmap::DATA_IMAGE_COUNT, count);
    EXPECT_EQ(count, 1U);
    EXPECT_FALSE(Render(1));    // there is no second one

    parameters.SetBool(FourCC("ANIM"), true);
    parameters.SetUnsigned(FourCC("MVMT"), CTurntable::UP);
    parameters.SetString(PARAM_PATH, folder.Wide("turn.webp"));
    ASSERT_EQ(Apply(), COMMAND_DONE);
    const std::unique_ptr<CFrameBitmap> frames = Read("turn.webp");
    ASSERT_TRUE(frames);
    ASSERT_EQ(frames->GetFrameCount(), 4);
    EXPECT_EQ(frames->GetDuration(0), 1000);
    EXPECT_EQ(Difference(*Render(0), *alone), 0);

    const std::unique_ptr<Bitmap> third = Render(2);
    command.GetOutputData().GetUnsigned(C3DSaveAsBitmap::DATA_IMAGE_COUNT, count);
    EXPECT_EQ(count, 4U);
    GlViewSettings turned;
    turned.changeMask = GLSET_MATRIX;
    turned.matrix = View().GetViewSettings()->matrix;
    TurnMatrix(turned.matrix, {1, 0, 0}, std::numbers::pi);
    View().SetViewSettings(&turned);
    parameters.SetBool(FourCC("ANIM"), false);
    EXPECT_LE(Difference(*Render(), *third), 1);
}

TEST_F(SaveAsBitmap, SavesWhereAsked)
{
    EXPECT_EQ(Apply(), COMMAND_CANCELLED);    // nothing chosen
    windows.fileAnswers.push_back({CFileNameSpec(folder.Wide("image.png"))});
    parameters.SetBool(FourCC("ANIM"), false);
    EXPECT_EQ(Apply(), COMMAND_DONE);
    const std::unique_ptr<CFrameBitmap> png = Read("image.png");
    ASSERT_TRUE(png);
    EXPECT_EQ(At(*png->GetFrame(0)->GetStandardLayer(), 0, 0)[3], 0);

    // A JPEG has no alpha: its background is the chosen colour.
    parameters.SetString(PARAM_PATH, folder.Wide("image.jpg"));
    EXPECT_EQ(Apply(), COMMAND_DONE);
    const std::unique_ptr<CFrameBitmap> jpeg = Read("image.jpg");
    ASSERT_TRUE(jpeg);
    const Pixel corner = At(*jpeg->GetFrame(0)->GetStandardLayer(), 0, 0);
    EXPECT_GT(corner[0], 240);
    EXPECT_LT(corner[1], 15);

    parameters.SetString(PARAM_PATH, folder.Wide("missing/image.png"));
    EXPECT_EQ(Apply(), COMMAND_DECLINED);
    EXPECT_EQ(frame->GetHelpText().Find(L"The image could not be saved."), 0);
    parameters.SetUnsigned(FourCC("WIDT"), 0xFFFFFFFF);
    EXPECT_EQ(Apply(), COMMAND_DECLINED);
    EXPECT_EQ(frame->GetHelpText().Find(L"An image of"), 0);
    EXPECT_EQ(windows.waitCursors, 0);
}

TEST_F(SaveAsBitmap, DialogWritesWhatIsChosen)
{
    using Dialog = C3DSaveAsBitmapDlg;
    windows.dialogUsers.push_back([&](const std::vector<CDialogTable*>& pages) {
        CDialogTable& page = *pages[0];
        EXPECT_EQ(page.Find(Dialog::ID_POINT_OF_VIEW)->items.size(), 16U);
        EXPECT_EQ(page.Find(Dialog::ID_POINT_OF_VIEW)->selected, 14);
        EXPECT_FALSE(page.Find(Dialog::ID_ANGLE)->enabled);
        EXPECT_FALSE(page.Find(Dialog::ID_COUNT)->enabled);
        EXPECT_TRUE(CScriptWindowSystem::Choose(pages, Dialog::ID_POINT_OF_VIEW, 13));
        EXPECT_TRUE(page.Find(Dialog::ID_ANGLE)->enabled);
        EXPECT_TRUE(CScriptWindowSystem::Check(pages, Dialog::ID_ANIMATED));
        EXPECT_TRUE(page.Find(Dialog::ID_COUNT)->enabled);
        page.Find(Dialog::ID_COUNT)->number = 7;
        return true;
    });
    command.SetParameters(parameters);
    EXPECT_EQ(frame->RunCommand(&command), COMMAND_CANCELLED);    // at the file dialog
    Text summary;
    EXPECT_EQ(command.OnGetHelp(HELP_CONTENTS, summary), 1);
    EXPECT_EQ(summary, L"Color: 255 0 0\nAnti-aliasing: Yes\nRender mode: Smooth\nPoint of view: Right / bottom / back\n"
                       L"Image size: 90 60\nAnimated: Yes\n7 images\nDirection: Horizontal (towards the right)\nAmplitude: 360\n");

    // A script has no present point of view.
    CCustomData own;
    command.StampParameters(own);
    windows.dialogUsers.push_back([&](const std::vector<CDialogTable*>& pages) {
        const CControl& view = *pages[0]->Find(Dialog::ID_POINT_OF_VIEW);
        EXPECT_EQ(view.items.size(), 15U);
        EXPECT_EQ(view.selected, 0);
        EXPECT_TRUE(CScriptWindowSystem::Choose(pages, Dialog::ID_POINT_OF_VIEW, 14));
        return true;
    });
    EXPECT_NE(Show3DCommandDialog(&frame->GetCommandMgr(), SAVB, own), 0);
    unsigned int value = 0;
    own.GetUnsigned(FourCC("RDPS"), value);
    EXPECT_EQ(value, 15U);
}

}
