#pragma once

#include "scene/Forward.h"
#include "windows/Command.h"

class C3DFrameViewer;
class C3DView;

/// Owner of the viewer's commands in CCommandID.
constexpr unsigned int COMMANDS_3D = 0x3344434F;    // '3DCO'

/// Keys of a command's data.
enum CommandDataKey : unsigned int {
    DATA_SCENE = 0x494F5343,        ///< 'IOSC', of input and output: the scene, a pointer
    DATA_NODES = 0x5241444E,        ///< 'RADN', of parameters: nodes that the command made, an array of pointers
    DATA_CAMERA_ID = 0x76636964,    ///< 'vcid': id of a camera's node
};

/// A command on a scene: of its input when a script gives one, else the frame's.
class ZEL_API C3DCommand : public CZelCommand {
public:
    /// `id`: identifier of CCommandID. Key, place, texts and icon come from the table of commands (viewer/CommandTable.h), where it is known there.
    explicit C3DCommand(unsigned int id);
    ~C3DCommand() override;

    CXTString<wchar_t> GetName() override;
    CCommandID GetCommandID() override;
    /// Takes the frame, when it shows 3D scenes, and its view.
    int OnInitCommand(CCommandFrameWnd* frame) override;
    /// Applies the command to the scene; COMMAND_NO_SCENE without one. DATA_SCENE of the output holds the scene once it is done.
    CommandResult OnApplyCommand() override;
    int OnOpenDialog() override;
    int OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const override;
    virtual CommandResult OnApplyCommand(C3DScene* scene);
    virtual int OnOpenDialog(C3DScene* scene);

    C3DFrameViewer* Get3DFrameWnd() const { return m_frame; }
    C3DView* GetViewer() const { return m_viewer; }
    void SetViewer(C3DView* viewer) { m_viewer = viewer; }

protected:
    /// Of the input, else the frame's; null for none.
    C3DScene* GetScene();
    /// The frame's scene; null without a frame or a scene.
    C3DScene* GetFrameScene() const;

private:
    const unsigned int m_id;
    C3DFrameViewer* m_frame = nullptr;
    C3DView* m_viewer = nullptr;
};

/// Applies the command `id` of a frame to a scene, with parameters, without asking. The scene that it gives; null, after a message, when it fails.
/// The command's own parameters stay as they were.
ZEL_API C3DScene* Apply3DCommand(CCommandMgr* manager, unsigned int id, const C3DScene* scene, const CCustomData& params);
/// Shows the command's dialog on `params` (on the command's present ones when those aren't its own). Non-zero, with `params` as chosen, on OK.
ZEL_API int Show3DCommandDialog(CCommandMgr* manager, unsigned int id, CCustomData& params);
