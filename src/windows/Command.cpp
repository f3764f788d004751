#include "windows/Command.h"

#include "tools/FourCC.h"
#include "windows/CommandMgr.h"

namespace {

constexpr unsigned int COMMAND_OF_PARAMETERS = FourCC("CMID");
constexpr unsigned int MODIFIER_SHIFT = 1, MODIFIER_CTRL = 2, MODIFIER_ALT = 4;

// Letters, digits and function keys have names of their own.
CXTString<wchar_t> KeyName(unsigned int key)
{
    static constexpr struct {
        unsigned int key;
        const wchar_t* name;
    } names[] = {
        {VK_BACK, L"Backspace"}, {VK_TAB, L"Tab"},        {VK_RETURN, L"Enter"},   {VK_ESCAPE, L"Esc"},    {VK_SPACE, L"Space"},
        {VK_PRIOR, L"Page Up"},  {VK_NEXT, L"Page Down"}, {VK_END, L"End"},        {VK_HOME, L"Home"},     {VK_LEFT, L"Left"},
        {VK_UP, L"Up"},          {VK_RIGHT, L"Right"},    {VK_DOWN, L"Down"},      {VK_INSERT, L"Ins"},    {VK_DELETE, L"Del"},
        {VK_MULTIPLY, L"Num *"}, {VK_ADD, L"Num +"},      {VK_SUBTRACT, L"Num -"}, {VK_DECIMAL, L"Num ."}, {VK_DIVIDE, L"Num /"},
    };
    CXTString<wchar_t> text;
    if (key >= VK_F1 && key <= VK_F24)
        text.FormatString(L"F%u", key - VK_F1 + 1);
    else if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9)
        text.FormatString(L"Num %u", key - VK_NUMPAD0);
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

bool CZelCommand::SetTimer(unsigned int id, unsigned int milliseconds, bool on)
{
    if (on)
        return m_manager && m_manager->SetTimer(this, id, milliseconds);
    CloseTimer(id);
    return true;
}

void CZelCommand::CloseTimer(unsigned int id)
{
    if (m_manager)
        m_manager->CloseTimer(this, id);
}

bool CZelCommand::IsTimerEnabled(unsigned int id) const { return m_manager && m_manager->IsTimerEnabled(this, id); }
