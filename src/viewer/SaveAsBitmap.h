#pragma once

#include "tools/Array.h"
#include "viewer/3DCommand.h"
#include "viewer/ImageSettings.h"

class CFrameBitmap;
class GlViewSettings;

/// Renders a scene off screen and saves what comes out: one image, or a series in which the scene turns. What nothing was drawn on is transparent.
///
/// No frame has it: a host makes one and adds it to the frame's commands (CCommandFrameWnd::AddPluginCommands). It can derive from it to offer
/// points of view of its own. With PARAM_PATH nothing is asked.
///
/// A script gets one image as a pointer.
class ZEL_API C3DSaveAsBitmap : public C3DCommand {
public:
    /// Keys of a script's data.
    enum Data : unsigned int {
        DATA_IMAGE_COUNT = 0x4954535A,    ///< 'ITSZ', of output: how many images there are
        DATA_IMAGE_INDEX = 0x43524954,    ///< 'CRIT', of input: which one to render
        DATA_BITMAP = 0x4D424F49,         ///< 'MBOI', of output: the Bitmap, the caller's
    };

    C3DSaveAsBitmap();
    ~C3DSaveAsBitmap() override;

    CXTString<wchar_t> GetName() override;
    CCommandID GetCommandID() override;
    int HasDialog() override;
    int OnOpenDialog(C3DScene* scene) override;
    int OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const override;
    CommandResult OnApplyCommand(C3DScene* scene) override;

    // Points of view of a host, 0 to GetUserViewSize() - 1

    /// Puts one into the settings, and what it changed into their mask. 0 when there is none of that number: then the front is shown.
    virtual int InitUserView(int number, GlViewSettings& settings);
    /// Value of CImageSettings::pointOfView with which a script's dialog begins: a script has no present one.
    virtual int GetDefaultUserView();
    virtual int GetUserViewSize();
    /// Appends their names.
    virtual void GetUserViewName(CXArray<CXTString<wchar_t>>& names);

protected:
    using C3DCommand::OnApplyCommand;
    using C3DCommand::OnOpenDialog;

    void InitParams();
    /// `direction`: CTurntable::Movement.
    static void Move(GlViewSettings& settings, unsigned int direction, float angle);
    CommandResult OnApplyCommand(GlViewSettings& settings, C3DScene* scene);

private:
    bool ShowsPresentView() const;
    void InitSettings(GlViewSettings& settings);
    CommandResult Render(GlViewSettings& settings, C3DScene* scene, CFrameBitmap& frames);
    CommandResult GiveToScript(CFrameBitmap& frames);
    CommandResult Save(CFrameBitmap& frames, const C3DScene& scene);
    CommandResult Fail(const CXTString<wchar_t>& text) const;

    CImageSettings m_params;
};
