// Save as image: a view of its own, off screen, renders the images; the shown view is only read.
//
//   settings   which point of view, in which render mode
//   render     each image of the series, with alpha
//   save       asks for a file; a script gets the first image instead

#include "viewer/SaveAsBitmap.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <numbers>

#include "files/FileExt.h"
#include "images/2DIo.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "tools/CaughtException.h"
#include "tools/FilePath.h"
#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FileCommands.h"
#include "viewer/FrameViewer.h"
#include "viewer/SaveAsBitmapDlg.h"
#include "windows/ProgressDlg.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

enum : unsigned int {
    TEXT_NOT_SAVED = 7252,
    TEXT_YES_NO = 9855,
    TEXT_COLOR,
    TEXT_SMOOTH,
    TEXT_RENDER_MODE,
    TEXT_POINT_OF_VIEW,
    TEXT_SIZE,
    TEXT_ANIMATED,
    TEXT_COUNT,
    TEXT_DIRECTION,
    TEXT_AMPLITUDE,
    TEXT_RENDERING,
    TEXT_TITLE,
    TEXT_TOO_LARGE = 9878,
};

constexpr int SAMPLES = 2;    // of a smooth image, a pixel and way
constexpr int ALPHA_DEPTH = 32;

/// A view for images.
class CImageView : public C3DView {
public:
    /// Besides what SetViewSettings takes.
    void TakeLight(const GlViewSettings& settings) { m_settings.brightness = settings.brightness; }
    void TakeCenter(const GlViewSettings& settings) { m_settings.sceneCenter = settings.sceneCenter; }
};

unsigned int GetRenderMode(unsigned int mode)
{
    constexpr unsigned int MODES[] = {VIEWFLAG_WIREFRAME, VIEWFLAG_FLAT, VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME, VIEWFLAG_SMOOTH,
                                      VIEWFLAG_SMOOTH | VIEWFLAG_WIREFRAME};
    return mode < std::size(MODES) ? MODES[mode] : VIEWFLAG_SMOOTH;
}

_RVIEW_FLAG GetViewNumber(unsigned int pointOfView)
{
    constexpr _RVIEW_FLAG SIDES[] = {RVIEW_FRONT, RVIEW_BACK, RVIEW_LEFT, RVIEW_RIGHT, RVIEW_TOP, RVIEW_BOTTOM};
    if (pointOfView < CImageSettings::FIRST_SLANTED)
        return SIDES[pointOfView];
    if (pointOfView <= CImageSettings::LAST_SLANTED)
        return static_cast<_RVIEW_FLAG>(RVIEW_LEFT_TOP_FRONT + pointOfView - CImageSettings::FIRST_SLANTED);
    return RVIEW_FRONT;
}

/// Of all pixels of a picture with alpha.
template <class CHANGE> void ForEachPixel(Bitmap& picture, CHANGE change)
{
    for (int y = 0; y < picture.GetHeight(); y++) {
        unsigned char* pixel = picture.GetLine(y);
        for (int x = 0; x < picture.GetWidth(); x++, pixel += 4)
            change(pixel);
    }
}

/// What the view shows, of the size asked for. Averaging weighs colours by their alpha, so that the background's is none of an edge; where nothing
/// was drawn it stays, for programs that don't know of alpha. Null when it can't be had.
std::unique_ptr<Bitmap> DrawImage(C3DView& view, const CImageSettings& params)
{
    std::unique_ptr<Bitmap> picture(view.CreateBitmapFromScene());
    if (!picture)
        return nullptr;
    picture->InvertAlpha();
    if (params.smooth && !picture->Resize(params.width, params.height, 1))
        return nullptr;
    const CRGBColor& background = params.background;
    ForEachPixel(*picture, [&](unsigned char* pixel) {
        if (pixel[3] == 0)
            std::copy_n(background.ValPtr(), 3, pixel);
    });
    return picture;
}

/// For formats without alpha.
void PutOnBackground(CFrameBitmap& frames, const CRGBColor& background)
{
    for (int i = 0; i < frames.GetFrameCount(); i++)
        ForEachPixel(*frames.GetFrame(i)->GetStandardLayer(), [&](unsigned char* pixel) {
            for (int c = 0; c < 3; c++)
                pixel[c] = static_cast<unsigned char>((pixel[c] * pixel[3] + background.ValPtr()[c] * (255 - pixel[3]) + 127) / 255);
            pixel[3] = 255;
        });
}

/// The scene's own name, as a PNG.
CFileNameSpec GetProposedName(const C3DScene& scene)
{
    const Text path = scene.GetFilename().GetFullName();
    return CFileNameSpec(path.IsEmpty() ? path : fileStripExtension(path) + L".png");
}

/// The command runs under a wait cursor, but a question is the user's turn.
class CUserTurn {
public:
    CUserTurn() { GetWindowSystem().SetWaitCursor(false); }
    ~CUserTurn() { GetWindowSystem().SetWaitCursor(true); }
    CUserTurn(const CUserTurn&) = delete;
    CUserTurn& operator=(const CUserTurn&) = delete;
};

}

C3DSaveAsBitmap::C3DSaveAsBitmap() : C3DCommand(FourCC("SAVB")) {}
C3DSaveAsBitmap::~C3DSaveAsBitmap() = default;

CXTString<wchar_t> C3DSaveAsBitmap::GetName() { return C3DCommand::GetName(); }
CCommandID C3DSaveAsBitmap::GetCommandID() { return C3DCommand::GetCommandID(); }
int C3DSaveAsBitmap::HasDialog() { return 1; }
int C3DSaveAsBitmap::OnOpenDialog(C3DScene*) { return C3DSaveAsBitmapDlg(this).OpenDialog(Get3DFrameWnd()); }

int C3DSaveAsBitmap::InitUserView(int, GlViewSettings&) { return 0; }
int C3DSaveAsBitmap::GetDefaultUserView() { return 0; }
int C3DSaveAsBitmap::GetUserViewSize() { return 0; }
void C3DSaveAsBitmap::GetUserViewName(CXArray<CXTString<wchar_t>>&) {}

void C3DSaveAsBitmap::InitParams() { m_params.Read(GetCustomData()); }

void C3DSaveAsBitmap::Move(GlViewSettings& settings, unsigned int direction, float angle)
{
    CTurntable::Turn(settings.matrix, static_cast<CTurntable::Movement>(direction), angle);
}

// Settings

CommandResult C3DSaveAsBitmap::OnApplyCommand(C3DScene* scene)
{
    InitParams();
    GetOutputData().Remove(DATA_BITMAP);
    if (IsScripting())
        GetOutputData().SetUnsigned(DATA_IMAGE_COUNT, static_cast<unsigned int>(m_params.GetTurntable().count));
    GlViewSettings settings;
    InitSettings(settings);
    return OnApplyCommand(settings, scene);
}

bool C3DSaveAsBitmap::ShowsPresentView() const { return m_params.pointOfView == CImageSettings::VIEW_PRESENT && GetViewer(); }

void C3DSaveAsBitmap::InitSettings(GlViewSettings& settings)
{
    constexpr double RADIANS = std::numbers::pi / 180;
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER;
    settings.viewFlags = VIEWFLAG_TEXTURE | VIEWFLAG_SMOOTH_TEXTURES;
    if (GetViewer()) {
        settings = *GetViewer()->GetViewSettings();
        settings.changeMask =
            GLSET_TRANSLATION | GLSET_VIEW_FLAGS | GLSET_CAMERA | GLSET_HIDDEN_KINDS | GLSET_WIREFRAME_COLOR | GLSET_LIGHT_COLOR;
        settings.changeMask |= ShowsPresentView() ? GLSET_MATRIX : GLSET_VIEW_NUMBER;
    }
    if (GetViewer() && !ShowsPresentView()) {
        // Another point of view is fitted, whatever the camera's zoom.
        settings.SetCurrentCamera(GetViewer()->GetViewSettings()->GetCurrentCamera());
        settings.GetCurrentCamera()->SetZoom(1);
    }
    settings.viewNumber = GetViewNumber(m_params.pointOfView);
    settings.viewAngle = static_cast<float>(m_params.viewAngle * RADIANS);
    if (m_params.pointOfView >= CImageSettings::FIRST_USER_VIEW) {
        settings.viewNumber = RVIEW_CUSTOM;
        if (!InitUserView(static_cast<int>(m_params.pointOfView - CImageSettings::FIRST_USER_VIEW), settings))
            settings.viewNumber = RVIEW_FRONT;
    }
    settings.viewFlags = (settings.viewFlags & ~VIEWFLAG_RENDER_MODE) | GetRenderMode(m_params.renderMode);
}

// Rendering

CommandResult C3DSaveAsBitmap::OnApplyCommand(GlViewSettings& settings, C3DScene* scene)
{
    CFrameBitmap frames;
    CommandResult result = COMMAND_DECLINED;
    if (CatchAll([&] { result = Render(settings, scene, frames); }))    // for want of memory
        result = COMMAND_DECLINED;
    if (result == COMMAND_DECLINED)
        return Fail(FormatText(TEXT_TOO_LARGE, m_params.width, m_params.height));
    if (result != COMMAND_DONE)
        return result;
    return IsScripting() ? GiveToScript(frames) : Save(frames, *scene);
}

CommandResult C3DSaveAsBitmap::Render(GlViewSettings& settings, C3DScene* scene, CFrameBitmap& frames)
{
    const CTurntable turntable = m_params.GetTurntable();
    const int samples = m_params.smooth ? SAMPLES : 1;
    CImageView view;
    if (!view.CreateMemoryRendering(m_params.width * samples, m_params.height * samples, ALPHA_DEPTH))
        return COMMAND_DECLINED;
    view.SetViewSettings(&settings);
    view.TakeLight(settings);
    view.SetBackgroundColor(m_params.background.red, m_params.background.green, m_params.background.blue);
    view.SetScene(scene, ShowsPresentView() ? 0U : GLSET_FIT);
    if (ShowsPresentView())
        view.TakeCenter(settings);
    const GlViewSettings start = *view.GetViewSettings();

    unsigned int asked = 0;
    if (IsScripting())
        GetInputData().GetUnsigned(DATA_IMAGE_INDEX, asked, 0);
    std::unique_ptr<CProgressDlg> progress;
    if (turntable.count > 1 && !IsScripting()) {
        progress = std::make_unique<CProgressDlg>(LoadText(TEXT_TITLE), Get3DFrameWnd());
        progress->SetRange(0, turntable.count);
    }
    for (auto i = asked; i < static_cast<unsigned int>(turntable.count); i++) {
        if (progress) {
            progress->SetStatus(FormatText(TEXT_RENDERING, static_cast<int>(i)));
            progress->SetPos(static_cast<int>(i));
            if (progress->CheckCancelButton())
                return COMMAND_CANCELLED;
        }
        // From the first point of view each time, so that no error adds up.
        GlViewSettings turned = start;
        turned.changeMask = GLSET_MATRIX;
        Move(turned, m_params.movement, static_cast<float>(turntable.GetAngle(static_cast<int>(i))));
        view.SetViewSettings(&turned);
        view.UpdateView(0);
        std::unique_ptr<Bitmap> picture = DrawImage(view, m_params);
        if (!picture)
            return COMMAND_DECLINED;
        frames.AddFrame(new CLayerBitmap(picture.release()), turntable.GetDuration());
        if (IsScripting())
            break;
    }
    return frames.GetFrameCount() > 0 ? COMMAND_DONE : COMMAND_DECLINED;
}

CommandResult C3DSaveAsBitmap::GiveToScript(CFrameBitmap& frames)
{
    GetOutputData().SetPointer(DATA_BITMAP, frames.GetFrame(0)->DetachStandardLayer());
    return COMMAND_DONE;
}

// Saving

CommandResult C3DSaveAsBitmap::Save(CFrameBitmap& frames, const C3DScene& scene)
{
    constexpr unsigned int JPEG = FourCC("JPEG");
    Text path;
    GetCustomData().GetString(PARAM_PATH, path);
    C2DIo io(path.IsEmpty() ? GetProposedName(scene) : CFileNameSpec(path), 0, Get3DFrameWnd());
    if (path.IsEmpty()) {
        const CUserTurn turn;
        if (!io.FileDialogBox(FILE_FAMILY_BITMAP, 0))
            return COMMAND_CANCELLED;
    }
    if (io.GetClass() == JPEG)
        PutOnBackground(frames, m_params.background);
    const int prepared = io.PrepareSaving(&frames, frames.GetFrameCount());
    if (prepared == IORESULT_OK && io.Save(&frames, 0) == IORESULT_OK)
        return COMMAND_DONE;
    return prepared == IORESULT_OK || prepared == IORESULT_FAILED ? Fail(LoadText(TEXT_NOT_SAVED) + L" " + io.GetResultText())
                                                                  : COMMAND_DECLINED;
}

CommandResult C3DSaveAsBitmap::Fail(const CXTString<wchar_t>& text) const
{
    if (Get3DFrameWnd())
        Get3DFrameWnd()->SetHelpText(text);
    return COMMAND_DECLINED;
}

// Help

int C3DSaveAsBitmap::OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const
{
    if (kind != HELP_CONTENTS)
        return C3DCommand::OnGetHelp(kind, text);
    CCustomData parameters;
    GetParameters(parameters);
    CImageSettings params;
    params.Read(parameters);
    const std::vector<Text> yesNo = LoadTexts(TEXT_YES_NO), modes = CImageSettings::GetRenderModeNames(),
                            movements = CImageSettings::GetMovementNames();
    std::vector<Text> views = CImageSettings::GetPointOfViewNames();
    CXArray<Text> userViews;
    const_cast<C3DSaveAsBitmap*>(this)->GetUserViewName(userViews);
    for (int i = 0; i < userViews.GetSize(); i++)
        views.push_back(userViews[i]);
    const auto name = [](const std::vector<Text>& names, unsigned int index) { return index < names.size() ? names[index] : Text(); };

    text = FormatText(TEXT_COLOR, params.background.red, params.background.green, params.background.blue);
    text += FormatText(TEXT_SMOOTH, name(yesNo, params.smooth ? 0 : 1));
    text += FormatText(TEXT_RENDER_MODE, name(modes, params.renderMode));
    text += FormatText(TEXT_POINT_OF_VIEW, name(views, params.pointOfView));
    text += FormatText(TEXT_SIZE, params.width, params.height);
    text += FormatText(TEXT_ANIMATED, name(yesNo, params.animated ? 0 : 1));
    if (params.animated) {
        text += FormatText(TEXT_COUNT, params.imageCount);
        text += FormatText(TEXT_DIRECTION, name(movements, params.movement));
        text += FormatText(TEXT_AMPLITUDE, params.amplitude);
    }
    return 1;
}
