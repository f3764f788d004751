#include "viewer/3DCommand.h"

#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/FourCC.h"
#include "viewer/CommandTable.h"
#include "viewer/FrameViewer.h"
#include "windows/WindowSystem.h"

namespace {

constexpr unsigned int COMMAND_VERSION = 1;
constexpr unsigned int DATA_IS_BAG = 2;
// Menus and bars sort by the position alone; the group says that there is one.
constexpr unsigned int HAS_PLACE = 8;

}

C3DCommand::C3DCommand(unsigned int id) : m_id(id)
{
    SetInputDataFormat(DATA_IS_BAG, 0);
    SetOutputDataFormat(DATA_IS_BAG);
    const CommandRow* const row = FindCommandRow(id);
    if (!row)
        return;
    m_access.SetAccess(row->key, row->modifiers, 0);
    if (row->icon)
        m_access.SetBitmap(row->icon, 0);
    if (row->menuOrder)
        m_access.SetMenuPosition(HAS_PLACE, row->menuOrder, 0);
    if (row->toolbarOrder)
        m_access.SetToolbarPosition(HAS_PLACE, row->toolbarOrder, 0);
    SetState(row->states, true);
}

C3DCommand::~C3DCommand() = default;

CXTString<wchar_t> C3DCommand::GetName()
{
    CXTString<wchar_t> name;
    if (const CommandRow* const row = FindCommandRow(m_id))
        name.LoadStringW(row->name);
    return name;
}

CCommandID C3DCommand::GetCommandID()
{
    const CommandRow* const row = FindCommandRow(m_id);
    constexpr unsigned int SIMPLE = FourCC("SIMP");
    return {COMMANDS_3D, COMMANDS_3D, row ? row->type : SIMPLE, row ? row->group : 0, m_id, COMMAND_VERSION};
}

int C3DCommand::OnInitCommand(CCommandFrameWnd* frame)
{
    m_frame = XDynamicCast<C3DFrameViewer>(frame);
    m_viewer = frame ? XDynamicCast<C3DView>(frame->GetViewer()) : nullptr;
    return 0;
}

CommandResult C3DCommand::OnApplyCommand()
{
    const CWaitCursor wait;
    GetCustomData().Remove(DATA_NODES);
    GetOutputData().Remove(DATA_SCENE);
    C3DScene* const scene = GetScene();
    if (!scene)
        return COMMAND_NO_SCENE;
    const CommandResult result = OnApplyCommand(scene);
    if (result == COMMAND_DONE)
        GetOutputData().SetPointer(DATA_SCENE, scene);
    return result;
}

int C3DCommand::OnOpenDialog()
{
    void* scene = nullptr;
    GetInputData().GetPointer(DATA_SCENE, scene);
    if (!scene && !IsScripting())
        scene = GetFrameScene();
    return OnOpenDialog(static_cast<C3DScene*>(scene));
}

int C3DCommand::OnGetHelp(HelpInfo kind, CXTString<wchar_t>& text) const
{
    const CommandRow* const row = FindCommandRow(m_id);
    if (kind != HELP_DESCRIPTION || !row)
        return 0;
    text = GetCommandHelp(row->description);
    return 1;
}

CommandResult C3DCommand::OnApplyCommand(C3DScene*) { return COMMAND_DECLINED; }
int C3DCommand::OnOpenDialog(C3DScene*) { return 0; }

C3DScene* C3DCommand::GetScene()
{
    void* scene = nullptr;
    GetInputData().GetPointer(DATA_SCENE, scene);
    return scene ? static_cast<C3DScene*>(scene) : GetFrameScene();
}

C3DScene* C3DCommand::GetFrameScene() const { return m_frame ? m_frame->GetCurrentScene() : nullptr; }
