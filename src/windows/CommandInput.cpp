// How mouse, keys, paints and timers reach the current command.

#include <algorithm>
#include <iterator>

#include "windows/CommandFrame.h"
#include "windows/CommandMgr.h"
#include "windows/CommandView.h"

namespace {

constexpr unsigned int BUTTONS = CLICK_LEFT | CLICK_RIGHT | CLICK_MIDDLE;
constexpr unsigned int FIRST_TIMER = 36864;

unsigned int ClickOf(MouseButton button) { return button == MOUSE_LEFT ? CLICK_LEFT : button == MOUSE_RIGHT ? CLICK_RIGHT : CLICK_MIDDLE; }

bool Send(CZelCommand& command, MouseButton button, bool down, bool doubleClick, unsigned int state, const CPoint& point)
{
    using Handler = int (CZelCommand::*)(unsigned int, const CPoint&);
    static constexpr struct {
        Handler up, down, doubleClick;
    } left{&CZelCommand::OnLButtonUp, &CZelCommand::OnLButtonDown, &CZelCommand::OnLButtonDblClk},
        right{&CZelCommand::OnRButtonUp, &CZelCommand::OnRButtonDown, &CZelCommand::OnRButtonDblClk},
        middle{&CZelCommand::OnMButtonUp, &CZelCommand::OnMButtonDown, &CZelCommand::OnMButtonDblClk};
    const auto& handlers = button == MOUSE_LEFT ? left : button == MOUSE_RIGHT ? right : middle;
    return (command.*(!down ? handlers.up : doubleClick ? handlers.doubleClick : handlers.down))(state, point) != 0;
}

}

bool CCommandMgr::IsDualClick() const { return (m_click & BUTTONS) == (CLICK_LEFT | CLICK_RIGHT); }

unsigned int CCommandMgr::IsSingleClick() const
{
    const unsigned int buttons = m_click & BUTTONS;
    return buttons & (buttons - 1) ? 0 : buttons;
}

void CCommandMgr::OnMouseMove(CCommandView*, unsigned int state, const CPoint& point)
{
    m_state = state;
    if (IsClick() && point != m_press)
        m_click |= CLICK_MOVED;
    if (m_current)
        m_current->OnMouseMove(state, point);
    m_last = point;
}

bool CCommandMgr::OnMouseButton(CCommandView* view, MouseButton button, bool down, bool doubleClick, unsigned int state,
                                const CPoint& point)
{
    m_state = state;
    const unsigned int flag = ClickOf(button);
    // The second press of a double click begins no click: its release would be another.
    if (down && !doubleClick) {
        if (!IsClick()) {
            m_press = point;
            m_click = 0;
            if (view)
                view->SetCapture();
        }
        m_click |= flag;
    }
    if (IsClick() && point != m_press)
        m_click |= CLICK_MOVED;
    const bool used = m_current && Send(*m_current, button, down, doubleClick, state, point);
    m_last = point;
    if (!down && m_click & flag) {
        m_click &= ~flag;
        if (!IsClick()) {
            m_click = 0;
            if (view)
                view->ReleaseCapture();
        }
    }
    return used;
}

bool CCommandMgr::OnMouseWheel(CCommandView*, unsigned int state, short delta, const CPoint& point)
{
    m_state = state;
    return m_current && m_current->OnMouseWheel(state, delta, point) != 0;
}

void CCommandMgr::OnCaptureLost() { m_click = 0; }

bool CCommandMgr::OnSetCursor(const CPoint& point) { return m_current && m_current->SetCursor(point) != 0; }

CZelCommand* CCommandMgr::GetCommandByKey(unsigned int key, unsigned int state) const
{
    constexpr unsigned int SHIFT = 1, CTRL = 2, ALT = 4, ALL = SHIFT | CTRL | ALT;
    const unsigned int held = (state & INPUT_SHIFT ? SHIFT : 0) | (state & INPUT_CTRL ? CTRL : 0) | (state & INPUT_ALT ? ALT : 0);
    const auto found = std::find_if(m_commands.begin(), m_commands.end(), [&](CZelCommand* command) {
        const CCommandAccess& access = command->GetAccess();
        return access.GetKey() != 0 && access.GetKey() == key && (access.GetModifiers() & ALL) == held;
    });
    return found != m_commands.end() ? *found : nullptr;
}

bool CCommandMgr::OnKey(unsigned int key, unsigned int state)
{
    m_state = state;
    if (m_current && m_current->OnKey(static_cast<unsigned char>(key)))
        return true;
    CZelCommand* const command = GetCommandByKey(key, state);
    if (!command)
        return false;
    if (m_frame)
        m_frame->RunCommand(command);
    else
        StackCommand(command, STACK_USER, nullptr);
    return true;
}

void CCommandMgr::OnDraw(CDC* dc)
{
    if (m_current)
        m_current->OnDraw(dc);
}

void CCommandMgr::OnEraseBkgnd(CDC* dc)
{
    if (m_current)
        m_current->OnEraseBkgnd(dc);
}

// Timers run on the frame's window. The window's numbers are ours: commands may all have a timer 1.

bool CCommandMgr::SetTimer(CZelCommand* command, unsigned int id, unsigned int milliseconds)
{
    if (!m_frame || !m_frame->HasPeer())
        return false;
    const auto known =
        std::find_if(m_timers.begin(), m_timers.end(), [&](const Timer& timer) { return timer.command == command && timer.id == id; });
    unsigned int windowsId = FIRST_TIMER;
    if (known != m_timers.end())
        windowsId = known->windowsId;
    else {
        while (std::any_of(m_timers.begin(), m_timers.end(), [&](const Timer& timer) { return timer.windowsId == windowsId; }))
            windowsId++;
        m_timers.push_back({command, id, windowsId});
    }
    m_frame->SetTimer(windowsId, milliseconds);
    return true;
}

void CCommandMgr::CloseTimer(CZelCommand* command, unsigned int id)
{
    const auto found =
        std::find_if(m_timers.begin(), m_timers.end(), [&](const Timer& timer) { return timer.command == command && timer.id == id; });
    if (found == m_timers.end())
        return;
    if (m_frame)
        m_frame->KillTimer(found->windowsId);
    m_timers.erase(found);
}

bool CCommandMgr::IsTimerEnabled(const CZelCommand* command, unsigned int id) const
{
    return std::any_of(m_timers.begin(), m_timers.end(), [&](const Timer& timer) { return timer.command == command && timer.id == id; });
}

void CCommandMgr::CloseAllTimers()
{
    while (!m_timers.empty())
        CloseTimer(m_timers.back().command, m_timers.back().id);
}

bool CCommandMgr::OnTimer(unsigned int id)
{
    const auto found = std::find_if(m_timers.begin(), m_timers.end(), [&](const Timer& timer) { return timer.windowsId == id; });
    if (found == m_timers.end())
        return false;
    const Timer timer = *found;    // the command may close it
    timer.command->OnTimer(timer.id);
    return true;
}
