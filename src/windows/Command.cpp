#include "windows/Command.h"

#include <algorithm>

#include "tools/FourCC.h"

namespace {

constexpr unsigned int COMMAND_OF_PARAMETERS = FourCC("CMID");
constexpr unsigned int TYPE_INTERACTIVE = FourCC("INTE");
constexpr unsigned int MODIFIER_SHIFT = 1, MODIFIER_CTRL = 2, MODIFIER_ALT = 4;
constexpr int SCRIPT_SHOWS_DIALOGS = 1;

std::vector<CCommandMgr::Name>& GroupNames()
{
    static std::vector<CCommandMgr::Name>& names = *new std::vector<CCommandMgr::Name>;
    return names;
}

std::vector<CCommandMgr::Name>& CategoryNames()
{
    static std::vector<CCommandMgr::Name>& names = *new std::vector<CCommandMgr::Name>;
    return names;
}

void SetName(std::vector<CCommandMgr::Name>& names, unsigned int id, const CXTString<wchar_t>& name)
{
    const auto found = std::find_if(names.begin(), names.end(), [&](const CCommandMgr::Name& own) { return own.id == id; });
    if (found != names.end())
        found->name = name;
    else
        names.push_back({id, name});
}

// Name of a virtual key: letters, digits and function keys have their own.
CXTString<wchar_t> KeyName(unsigned int key)
{
    constexpr unsigned int F1 = 0x70, F24 = 0x87;
    static constexpr struct {
        unsigned int key;
        const wchar_t* name;
    } names[] = {
        {0x08, L"Backspace"}, {0x09, L"Tab"},  {0x0D, L"Enter"}, {0x1B, L"Esc"}, {0x20, L"Space"}, {0x21, L"Page Up"}, {0x22, L"Page Down"},
        {0x23, L"End"},       {0x24, L"Home"}, {0x25, L"Left"},  {0x26, L"Up"},  {0x27, L"Right"}, {0x28, L"Down"},    {0x2D, L"Insert"},
        {0x2E, L"Del"},       {0x6A, L"*"},    {0x6B, L"+"},     {0x6D, L"-"},   {0x6F, L"/"},
    };
    CXTString<wchar_t> text;
    if (key >= F1 && key <= F24)
        text.FormatString(L"F%u", key - F1 + 1);
    else if ((key >= L'A' && key <= L'Z') || (key >= L'0' && key <= L'9'))
        text += static_cast<wchar_t>(key);
    else
        for (const auto& known : names)
            if (known.key == key)
                text = known.name;
    return text;
}

}

void CCommandAccess::SetAccess(unsigned int key, unsigned int modifiers, unsigned int options)
{
    m_key = key;
    m_modifiers = modifiers;
    m_options = options;
}

void CCommandAccess::SetBitmap(unsigned int id, int index)
{
    m_bitmap = id;
    m_bitmapIndex = index;
}

void CCommandAccess::SetMenuPosition(unsigned int group, unsigned int position, int)
{
    m_menuGroup = group;
    m_menuPosition = position;
}

void CCommandAccess::SetToolbarPosition(unsigned int group, unsigned int position, int)
{
    m_toolbarGroup = group;
    m_toolbarPosition = position;
}

CXTString<wchar_t> CCommandAccess::GetKeyText() const
{
    const CXTString<wchar_t> name = KeyName(m_key);
    CXTString<wchar_t> text;
    if (name.IsEmpty())
        return text;
    if (m_modifiers & MODIFIER_CTRL)
        text += CXTString<wchar_t>(L"Ctrl+");
    if (m_modifiers & MODIFIER_ALT)
        text += CXTString<wchar_t>(L"Alt+");
    if (m_modifiers & MODIFIER_SHIFT)
        text += CXTString<wchar_t>(L"Shift+");
    return text + name;
}

CZelCommand::CZelCommand() = default;

CZelCommand::~CZelCommand()
{
    if (m_manager)
        m_manager->RemoveCommand(this);
}

void CZelCommand::UpdateState() {}

unsigned int CZelCommand::GetInputDataFormat(unsigned int& options) const
{
    options = m_inputOptions;
    return m_inputFormat;
}

unsigned int CZelCommand::GetOutputDataFormat() const { return m_outputFormat; }
int CZelCommand::OnInitCommand(CCommandFrameWnd*) { return 0; }
CommandResult CZelCommand::OnOpenCommand(unsigned int&, void*) { return COMMAND_DONE; }
CommandResult CZelCommand::OnCloseCommand() { return COMMAND_DONE; }
CommandResult CZelCommand::OnValidateCommand() { return COMMAND_DONE; }
CommandResult CZelCommand::OnCancelCommand() { return COMMAND_CANCELLED; }
void CZelCommand::AskForValidation(CXTString<wchar_t>&) const {}
void CZelCommand::OnGetFocus(int, CZelCommand*, CommandResult) {}
void CZelCommand::OnLooseFocus(int, CZelCommand*) {}
CommandResult CZelCommand::OnApplyCommand() { return COMMAND_DECLINED; }
int CZelCommand::OnCustomMessage(unsigned int, void*) { return 0; }
int CZelCommand::SetCursor(const CPoint&) { return 0; }
bool CZelCommand::OnMouseActivate(int) { return false; }
void CZelCommand::OnMouseMove(unsigned int, const CPoint&) {}
int CZelCommand::OnMouseWheel(unsigned int, short, CPoint) { return 0; }
int CZelCommand::OnLButtonUp(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnRButtonUp(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnMButtonUp(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnLButtonDown(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnRButtonDown(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnMButtonDown(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnLButtonDblClk(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnRButtonDblClk(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnMButtonDblClk(unsigned int, const CPoint&) { return 0; }
int CZelCommand::OnKey(unsigned char) { return 0; }
void CZelCommand::OnDraw(CDC*) {}
void CZelCommand::OnEraseBkgnd(CDC*) {}
void CZelCommand::OnTimer(unsigned int) {}
int CZelCommand::HasDialog() { return 0; }
int CZelCommand::OnOpenDialog() { return 0; }
void CZelCommand::OnCloseDialog(unsigned int) {}
int CZelCommand::OnValidateDialog(unsigned int) { return 1; }
int CZelCommand::OnCancelDialog(unsigned int) { return 1; }
void CZelCommand::OnUpdateFromDialog(unsigned int) {}
unsigned int CZelCommand::GetOptions() const { return m_access.GetOptions(); }
CXTString<wchar_t> CZelCommand::GetMenuName(int) { return GetName(); }
int CZelCommand::OnToolbarMenu(CPoint&) { return 0; }
CCustomMenu* CZelCommand::OnPopupMenu(CCustomMenu*, unsigned int) { return nullptr; }
unsigned int CZelCommand::GetPopupCmdState(unsigned int) { return COMMAND_ENABLED; }
bool CZelCommand::GetPopupCmdHelp(unsigned int, HelpInfo, CXTString<wchar_t>&) { return false; }
int CZelCommand::DoPopupCmd(unsigned int) { return 0; }
int CZelCommand::OnGetHelp(HelpInfo, CXTString<wchar_t>&) const { return 0; }

void CZelCommand::SetInputDataFormat(unsigned int format, unsigned int options)
{
    m_inputFormat = format;
    m_inputOptions = options;
}

bool CZelCommand::AreParametersValid(const CCustomData& parameters)
{
    const unsigned int own = GetCommandID().identifier;
    unsigned int id = 0;
    parameters.GetUnsigned(COMMAND_OF_PARAMETERS, id, own);
    return id == own;
}

void CZelCommand::StampParameters(CCustomData& parameters) { parameters.SetUnsigned(COMMAND_OF_PARAMETERS, GetCommandID().identifier); }

bool CZelCommand::IsScripting() const { return m_manager && m_manager->GetScriptMode() != 0; }

CXTString<wchar_t> CZelCommand::GetCommandHelp(unsigned int id)
{
    CXTString<wchar_t> text;
    text.LoadStringW(id);
    return text;
}

CCommandMgr::~CCommandMgr()
{
    for (CZelCommand* const command : m_commands)
        command->m_manager = nullptr;
}

bool CCommandMgr::AddCommand(CZelCommand* command, void*)
{
    if (!command || command->m_manager || GetCommandById(command->GetCommandID().identifier))
        return false;
    m_commands.push_back(command);
    command->m_manager = this;
    return true;
}

void CCommandMgr::RemoveCommand(CZelCommand* command)
{
    if (std::erase(m_commands, command) == 0)
        return;
    command->m_manager = nullptr;
    if (m_current == command)
        m_current = nullptr;
}

CZelCommand* CCommandMgr::GetCommandById(unsigned int id) const
{
    const auto found =
        std::find_if(m_commands.begin(), m_commands.end(), [&](CZelCommand* command) { return command->GetCommandID().identifier == id; });
    return found != m_commands.end() ? *found : nullptr;
}

CommandResult CCommandMgr::StackCommand(unsigned int id, unsigned int mode, void* data)
{
    return StackCommand(GetCommandById(id), mode, data);
}

CommandResult CCommandMgr::StackCommand(CZelCommand* command, unsigned int mode, void* data)
{
    if (!command || command->m_manager != this)
        return COMMAND_DECLINED;
    command->UpdateState();
    if (!command->IsStateSet(COMMAND_ENABLED))
        return COMMAND_DECLINED;
    CommandResult result = command->OnOpenCommand(mode, data);
    if (result != COMMAND_DONE)
        return result;
    const bool asks = mode == 0 && command->HasDialog();
    if (asks && !command->OnOpenDialog())
        result = COMMAND_CANCELLED;
    else if (!asks || m_scriptMode != SCRIPT_SHOWS_DIALOGS)
        result = command->OnApplyCommand();
    if (command->GetCommandID().type != TYPE_INTERACTIVE) {
        command->OnCloseCommand();
        return result;
    }
    CZelCommand* const former = m_current;
    if (former == command)
        return result;
    if (former)
        former->OnLooseFocus(0, command);
    m_current = command;
    command->OnGetFocus(0, former, result);
    return result;
}

void CCommandMgr::RegisterGroupName(unsigned int id, const CXTString<wchar_t>& name) { SetName(GroupNames(), id, name); }

void CCommandMgr::RegisterCategoryName(unsigned int id, const CXTString<wchar_t>& name) { SetName(CategoryNames(), id, name); }

const std::vector<CCommandMgr::Name>& CCommandMgr::GetGroupNames() { return GroupNames(); }

const std::vector<CCommandMgr::Name>& CCommandMgr::GetCategoryNames() { return CategoryNames(); }
