// Commands that a script or another command runs, with a scene and parameters of its own.

#include "scene/3DScene.h"
#include "tools/FileNameSpec.h"
#include "viewer/3DCommand.h"
#include "viewer/Texts.h"
#include "windows/CommandFrame.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

void Tell(CCommandMgr& manager, const Text& text)
{
    GetWindowSystem().ShowMessage(manager.GetFrame(), LoadText(TEXT_PROGRAM), text, MESSAGE_OK);
}

/// Runs one command in a script mode. Its parameters, its input and the mode are the former ones again at the end.
class CScriptedCommand {
public:
    CScriptedCommand(CCommandMgr& manager, CZelCommand& command)
        : m_manager(manager), m_command(command), m_mode(manager.GetScriptMode()), m_input(command.GetInputData())
    {
        command.GetParameters(m_parameters);
    }
    ~CScriptedCommand()
    {
        m_command.SetParameters(m_parameters);
        m_command.SetInputData(m_input);
        m_manager.SetScriptMode(m_mode);
    }
    CScriptedCommand(const CScriptedCommand&) = delete;
    CScriptedCommand& operator=(const CScriptedCommand&) = delete;

    CommandResult Run(const C3DScene* scene, ScriptMode mode, StackMode stackMode)
    {
        CCustomData input;
        input.SetPointer(DATA_SCENE, const_cast<C3DScene*>(scene));
        m_command.SetInputData(input);
        m_manager.SetScriptMode(mode);
        return m_manager.StackCommand(&m_command, stackMode, nullptr);
    }

private:
    CCommandMgr& m_manager;
    CZelCommand& m_command;
    const int m_mode;
    const CCustomData m_input;
    CCustomData m_parameters;
};

}

C3DScene* Apply3DCommand(CCommandMgr* manager, unsigned int id, const C3DScene* scene, const CCustomData& params)
{
    if (!manager)
        return nullptr;
    CZelCommand* const command = manager->GetCommandById(id);
    if (!command) {
        Tell(*manager, LoadText(TEXT_COMMAND_MISSING));
        return nullptr;
    }
    CommandResult result;
    void* given = nullptr;
    {
        CScriptedCommand scripted(*manager, *command);
        command->SetParameters(params);
        result = scripted.Run(scene, SCRIPT_APPLY, STACK_APPLY);
        command->GetOutputData().GetPointer(DATA_SCENE, given);
    }
    if (result == COMMAND_DONE && given)
        return static_cast<C3DScene*>(given);
    Tell(*manager, FormatText(TEXT_COMMAND_FAILED, command->GetName(), scene ? scene->GetFilename().GetFileName() : Text()));
    return nullptr;
}

int Show3DCommandDialog(CCommandMgr* manager, unsigned int id, CCustomData& params)
{
    if (!manager)
        return 0;
    CZelCommand* const command = manager->GetCommandById(id);
    if (!command) {
        Tell(*manager, LoadText(TEXT_COMMAND_MISSING));
        return 0;
    }
    CommandResult result;
    {
        CScriptedCommand scripted(*manager, *command);
        if (command->AreParametersValid(params))
            command->SetParameters(params);
        else
            command->GetParameters(params);
        // Bags hold no references: the scene lives until the dialog is gone.
        C3DScene* const scene = C3DScene::Create();
        result = scripted.Run(scene, SCRIPT_DIALOG, STACK_USER);
        DeleteMe(scene);
        if (result == COMMAND_DONE)
            params = command->GetCustomData();
    }
    if (result != COMMAND_DONE)
        Tell(*manager, FormatText(TEXT_PARAMETERS_KEPT, command->GetName()));
    return result == COMMAND_DONE;
}
