#include "windows/ScriptWindowSystem.h"

#include <algorithm>
#include <utility>

#include "tools/Progress.h"
#include "windows/CustomList.h"
#include "windows/CustomTree.h"
#include "windows/Keys.h"

namespace {

using Text = CXTString<wchar_t>;

template <class T> bool Take(std::deque<T>& answers, T& answer)
{
    if (answers.empty())
        return false;
    answer = std::move(answers.front());
    answers.pop_front();
    return true;
}

/// A progress that shows nothing and may be told to stop.
class CScriptProgress : public IProgressSink {
public:
    explicit CScriptProgress(CScriptWindowSystem& system) : m_system(system) {}
    bool OnProgress(const Text&, double) override
    {
        m_system.PumpEvents();
        return m_system.cancelProgressAfter != 0 && (m_system.cancelProgressAfter < 0 || m_system.cancelProgressAfter-- > 0);
    }

private:
    CScriptWindowSystem& m_system;
};

// What a user can reach.
CControl* FindUsable(const std::vector<CDialogTable*>& pages, unsigned int id, CDialogTable*& page)
{
    for (CDialogTable* const candidate : pages)
        if (CControl* const control = candidate->Find(id); control && control->visible && control->enabled) {
            page = candidate;
            return control;
        }
    return nullptr;
}

}

/// What stands for a window on a screen that isn't there.
class CScriptPeer {
public:
    struct Timer {
        unsigned int period;
        unsigned long long due;
    };

    CScriptPeer(CScriptWindowSystem& system, CWnd* window, CWnd* parent, const Text& title) : system(system), window(window), title(title)
    {
        window->SetParent(parent);
        system.m_peers[window] = this;
    }
    ~CScriptPeer()
    {
        system.m_peers.erase(window);
        if (system.m_focus == window)
            system.m_focus = nullptr;
    }
    CScriptPeer(const CScriptPeer&) = delete;
    CScriptPeer& operator=(const CScriptPeer&) = delete;

    CScriptWindowSystem& system;
    CWnd* const window;
    Text title;
    CSize size;
    std::map<unsigned int, Timer> timers;
    MouseCursor cursor = CURSOR_ARROW;
    bool dirty = true, captured = false, shown = false, enabled = true, fullScreen = false;
    CWindowPlacement placement;
    std::map<unsigned int, bool> panes;
};

namespace {

/// The window system's side of one kind of window.
template <class Interface> class CPeerOf : public Interface {
public:
    CPeerOf(CScriptWindowSystem& system, CWnd* window, CWnd* parent, const Text& title) : m_peer(system, window, parent, title) {}
    CScriptPeer& Get() { return m_peer; }

    void Invalidate(const CRect*) override { m_peer.dirty = true; }
    CRect GetClientRect() const override { return {0, 0, m_peer.size.cx, m_peer.size.cy}; }
    void SetTimer(unsigned int id, unsigned int milliseconds) override;
    void KillTimer(unsigned int id) override { m_peer.timers.erase(id); }
    void SetCapture(bool on) override { m_peer.captured = on; }
    void SetCursor(MouseCursor cursor) override { m_peer.cursor = cursor; }
    void SetFocus() override { m_peer.system.FocusWindow(m_peer.window); }
    void SetTitle(const Text& title) override { m_peer.title = title; }
    void Show(bool on) override { m_peer.shown = on; }
    void Enable(bool on) override
    {
        m_peer.enabled = on;
        m_peer.window->OnEnable(on);
    }
    CPoint ClientToScreen(const CPoint& point) const override { return point; }
    CPoint ScreenToClient(const CPoint& point) const override { return point; }
    void PostClose() override
    {
        m_peer.system.Post(m_peer.window, [&system = m_peer.system, window = m_peer.window] { system.CloseWindow(window); });
    }
    void PostCommand(unsigned int id) override
    {
        m_peer.system.Post(m_peer.window, [window = m_peer.window, id] { window->OnCommand(id); });
    }
    void* GetNativeHandle() const override { return nullptr; }
    void PresentPixels(const unsigned char*, int, int) override {}

protected:
    CScriptPeer m_peer;
};

template <class Interface> void CPeerOf<Interface>::SetTimer(unsigned int id, unsigned int milliseconds)
{
    m_peer.timers[id] = {milliseconds, m_peer.system.GetTime() + milliseconds};
}

class CScriptFramePeer : public CPeerOf<IFramePeer> {
public:
    using CPeerOf::CPeerOf;

    void MenuChanged() override {}
    void ToolbarsChanged() override {}
    void StatusChanged() override {}
    void SetCentralWindow(CWnd*) override {}
    void AttachPane(unsigned int id, CCustomDockablePane* pane, DockSide, bool shown) override
    {
        m_peer.panes[id] = shown;
        const CSize size = pane->GetDefaultSize();
        if (pane->HasPeer() || m_peer.system.CreateWindowPeer(pane, m_peer.window, pane->GetPaneTitle(), {0, 0, size.cx, size.cy}))
            pane->CreateContent();
    }
    void DetachPane(unsigned int id) override { m_peer.panes.erase(id); }
    void ShowPane(unsigned int id, bool on) override
    {
        const auto pane = m_peer.panes.find(id);
        if (pane == m_peer.panes.end() || pane->second == on)
            return;
        pane->second = on;
        static_cast<CFrameWndEx*>(m_peer.window)->OnPaneShown(id, on);
    }
    bool IsPaneShown(unsigned int id) const override
    {
        const auto pane = m_peer.panes.find(id);
        return pane != m_peer.panes.end() && pane->second;
    }
    void SetFullScreen(bool on) override { m_peer.fullScreen = on; }
    CWindowPlacement GetPlacement() const override { return m_peer.placement; }
    void SetPlacement(const CWindowPlacement& placement) override { m_peer.placement = placement; }
};

class CScriptTreePeer : public CPeerOf<ITreePeer> {
public:
    using CPeerOf::CPeerOf;
    void TreeChanged() override { m_peer.dirty = true; }
    void ItemChanged(HTREEITEM) override { m_peer.dirty = true; }
    void SelectionChanged() override { m_peer.dirty = true; }
    void EnsureVisible(HTREEITEM) override {}
};

class CScriptListPeer : public CPeerOf<IListPeer> {
public:
    using CPeerOf::CPeerOf;
    void ListChanged() override { m_peer.dirty = true; }
    void SelectionChanged() override { m_peer.dirty = true; }
};

// Null for a separator, a popup, or a number that isn't there.
const CMenuItem* FindChosen(CFrameWndEx& frame, CCustomMenu& menu, unsigned int id)
{
    frame.OnInitMenuPopup(menu);
    for (const CMenuItem& item : menu.items) {
        if (item.popup) {
            if (const CMenuItem* const found = FindChosen(frame, *item.popup, id))
                return found;
        } else if (!item.separator && item.id == id)
            return &item;
    }
    return nullptr;
}

unsigned int FlagOf(MouseButton button) { return button == MOUSE_LEFT ? INPUT_LEFT : button == MOUSE_RIGHT ? INPUT_RIGHT : INPUT_MIDDLE; }

}

CScriptWindowSystem::CScriptWindowSystem() = default;

CScriptWindowSystem::~CScriptWindowSystem()
{
    while (!m_peers.empty())
        m_peers.begin()->second->window->SetPeer(nullptr);
}

bool CScriptWindowSystem::Check(const std::vector<CDialogTable*>& pages, unsigned int id, bool on)
{
    CDialogTable* page = nullptr;
    CControl* const control = FindUsable(pages, id, page);
    if (!control)
        return false;
    if (control->kind == CONTROL_RADIO && on)
        for (CControl& other : page->controls)
            if (other.kind == CONTROL_RADIO && other.group == control->group)
                other.checked = false;
    control->checked = on;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Press(const std::vector<CDialogTable*>& pages, unsigned int id)
{
    CDialogTable* page = nullptr;
    if (!FindUsable(pages, id, page))
        return false;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Enter(const std::vector<CDialogTable*>& pages, unsigned int id, const Text& value)
{
    CDialogTable* page = nullptr;
    CControl* const control = FindUsable(pages, id, page);
    if (!control)
        return false;
    control->value = value;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Choose(const std::vector<CDialogTable*>& pages, unsigned int id, int entry)
{
    CDialogTable* page = nullptr;
    CControl* const control = FindUsable(pages, id, page);
    if (!control || entry < 0 || entry >= static_cast<int>(control->items.size()))
        return false;
    control->selected = entry;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Slide(const std::vector<CDialogTable*>& pages, unsigned int id, const std::vector<int>& values)
{
    CDialogTable* page = nullptr;
    for (const int value : values) {
        CControl* const control = FindUsable(pages, id, page);
        if (!control || value < control->minimum || value > control->maximum)
            return false;
        control->number = value;
        page->OnControl(id);
    }
    if (page)
        page->OnSliderEnd(id);
    return page != nullptr;
}

// The user's hands

CScriptPeer* CScriptWindowSystem::Find(const CWnd* window) const
{
    const auto found = m_peers.find(window);
    return found != m_peers.end() ? found->second : nullptr;
}

CWnd* CScriptWindowSystem::FindEnabled(CWnd* window) const
{
    for (const CWnd* above = window; above; above = above->GetParent())
        if (const CScriptPeer* const peer = Find(above); !peer || !peer->enabled)
            return nullptr;
    return window;
}

void CScriptWindowSystem::FocusWindow(CWnd* window)
{
    if (window == m_focus)
        return;
    if (CWnd* const former = std::exchange(m_focus, window))
        former->OnFocus(false);
    window->OnFocus(true);
}

void CScriptWindowSystem::Post(CWnd* window, std::function<void()> action) { m_posted.push_back({window, std::move(action)}); }

bool CScriptWindowSystem::MoveMouse(CWnd* window, const CPoint& point)
{
    if (!FindEnabled(window))
        return false;
    window->OnMouseMove(GetState(), point);
    if (CScriptPeer* const peer = Find(window); peer && !window->OnSetCursor(point))
        peer->cursor = CURSOR_ARROW;
    return true;
}

bool CScriptWindowSystem::PressMouse(CWnd* window, MouseButton button, const CPoint& point, bool doubleClick)
{
    if (!FindEnabled(window))
        return false;
    m_buttons |= FlagOf(button);
    window->OnMouseButton(button, true, doubleClick, GetState(), point);
    return true;
}

bool CScriptWindowSystem::ReleaseMouse(CWnd* window, MouseButton button, const CPoint& point)
{
    m_buttons &= ~FlagOf(button);
    if (!FindEnabled(window))
        return false;
    window->OnMouseButton(button, false, false, GetState(), point);
    return true;
}

bool CScriptWindowSystem::Click(CWnd* window, MouseButton button, const CPoint& point)
{
    return PressMouse(window, button, point) && ReleaseMouse(window, button, point);
}

bool CScriptWindowSystem::DoubleClick(CWnd* window, MouseButton button, const CPoint& point)
{
    return Click(window, button, point) && PressMouse(window, button, point, true) && ReleaseMouse(window, button, point);
}

bool CScriptWindowSystem::Drag(CWnd* window, MouseButton button, const std::vector<CPoint>& points)
{
    if (points.empty() || !PressMouse(window, button, points.front()))
        return false;
    for (const CPoint& point : points)
        MoveMouse(window, point);
    return ReleaseMouse(window, button, points.back());
}

bool CScriptWindowSystem::TurnWheel(CWnd* window, short delta, const CPoint& point)
{
    if (!FindEnabled(window))
        return false;
    window->OnMouseWheel(GetState(), delta, point);
    return true;
}

bool CScriptWindowSystem::PressKey(CWnd* window, unsigned int key)
{
    if (!FindEnabled(window))
        return false;
    for (CWnd* target = window; target; target = target->GetParent())
        if (target->OnKey(key, GetState()))
            return true;
    return false;
}

DropEffect CScriptWindowSystem::DropFiles(CWnd* window, const std::vector<Text>& files, const CPoint& point)
{
    for (CWnd* target = FindEnabled(window); target; target = target->GetParent())
        if (const DropEffect effect = target->OnDragOver(files, GetState(), point); effect != DROP_NONE) {
            target->OnDropFiles(files, GetState(), point);
            return effect;
        }
    return DROP_NONE;
}

bool CScriptWindowSystem::Resize(CWnd* window, int width, int height)
{
    CScriptPeer* const peer = Find(window);
    if (!peer)
        return false;
    peer->size = {width, height};
    peer->dirty = true;
    window->OnSize(width, height);
    return true;
}

bool CScriptWindowSystem::CloseWindow(CWnd* window)
{
    if (!FindEnabled(window) || !window->OnClose())
        return false;
    window->SetPeer(nullptr);
    return true;
}

bool CScriptWindowSystem::ChooseMenu(CFrameWndEx* frame, unsigned int id)
{
    if (!FindEnabled(frame))
        return false;
    const CMenuItem* const item = FindChosen(*frame, frame->GetMenuBar(), id);
    if (!item || !item->enabled)
        return false;
    frame->OnCommand(id);
    return true;
}

bool CScriptWindowSystem::PressButton(CFrameWndEx* frame, unsigned int id)
{
    if (!FindEnabled(frame))
        return false;
    frame->OnIdle();
    for (CCustomToolbar* const bar : frame->GetToolbars())
        if (const CToolbarButton* const button = bar->FindButton(id)) {
            if (button->enabled)
                frame->OnCommand(id);
            return button->enabled;
        }
    return false;
}

void CScriptWindowSystem::Wait(unsigned int milliseconds)
{
    const unsigned long long end = m_now + milliseconds;
    while (true) {
        CScriptPeer* next = nullptr;
        unsigned int id = 0;
        unsigned long long due = end + 1;
        for (const auto& [window, peer] : m_peers)
            for (const auto& [timerId, timer] : peer->timers)
                if (timer.due < due) {
                    next = peer;
                    id = timerId;
                    due = timer.due;
                }
        if (!next)
            break;
        m_now = std::max(m_now, due);
        CScriptPeer::Timer& timer = next->timers[id];
        timer.due = m_now + std::max(timer.period, 1U);
        next->window->OnTimer(id);
        PumpEvents();
    }
    m_now = end;
    PumpEvents();
}

// States

bool CScriptWindowSystem::NeedsPaint(const CWnd* window) const
{
    const CScriptPeer* const peer = Find(window);
    return peer && peer->dirty;
}

MouseCursor CScriptWindowSystem::GetCursor(const CWnd* window) const
{
    const CScriptPeer* const peer = Find(window);
    return peer ? peer->cursor : CURSOR_ARROW;
}

bool CScriptWindowSystem::HasCapture(const CWnd* window) const
{
    const CScriptPeer* const peer = Find(window);
    return peer && peer->captured;
}

bool CScriptWindowSystem::IsShown(const CWnd* window) const
{
    const CScriptPeer* const peer = Find(window);
    return peer && peer->shown;
}

bool CScriptWindowSystem::IsTimerRunning(const CWnd* window, unsigned int id) const
{
    const CScriptPeer* const peer = Find(window);
    return peer && peer->timers.contains(id);
}

Text CScriptWindowSystem::GetTitle(const CWnd* window) const
{
    const CScriptPeer* const peer = Find(window);
    return peer ? peer->title : Text();
}

bool CScriptWindowSystem::IsFullScreen(const CFrameWndEx* frame) const
{
    const CScriptPeer* const peer = Find(frame);
    return peer && peer->fullScreen;
}

// Windows

template <class Peer> bool CScriptWindowSystem::Give(CWnd* window, CWnd* parent, const Text& title, const CRect& rect)
{
    const CScriptPeer* const above = Find(parent);
    auto* const peer = new Peer(*this, window, parent, title);
    CScriptPeer& state = peer->Get();
    state.size = rect.Width() > 0 ? CSize{rect.Width(), rect.Height()} : above ? above->size : windowSize;
    state.shown = parent != nullptr;
    if (!window->SetPeer(peer))
        return false;
    const CSize size = state.size;
    window->OnSize(size.cx, size.cy);
    return true;
}

bool CScriptWindowSystem::CreateWindowPeer(CWnd* window, CWnd* parent, const Text& title, const CRect& rect)
{
    return Give<CPeerOf<IWindowPeer>>(window, parent, title, rect);
}

bool CScriptWindowSystem::CreateFramePeer(CFrameWndEx* frame, CWnd* parent, const Text& title)
{
    return Give<CScriptFramePeer>(frame, parent, title, CRect());
}

bool CScriptWindowSystem::CreateTreePeer(CCustomTree* tree, CWnd* parent) { return Give<CScriptTreePeer>(tree, parent, Text(), CRect()); }

bool CScriptWindowSystem::CreateListPeer(CCustomList* list, CWnd* parent) { return Give<CScriptListPeer>(list, parent, Text(), CRect()); }

// The loop

int CScriptWindowSystem::Run()
{
    PumpEvents();
    return m_exitCode;
}

void CScriptWindowSystem::Quit(int exitCode)
{
    m_quit = true;
    m_exitCode = exitCode;
}

void CScriptWindowSystem::PumpEvents()
{
    while (!m_posted.empty()) {
        const auto posted = std::exchange(m_posted, {});
        for (const auto& [window, action] : posted)
            if (Find(window))
                action();
    }
    // A paint may make or drop windows.
    std::vector<CWnd*> dirty;
    for (const auto& [window, peer] : m_peers)
        if (peer->dirty)
            dirty.push_back(peer->window);
    for (CWnd* const window : dirty)
        if (CScriptPeer* const peer = Find(window)) {
            peer->dirty = false;
            window->OnPaint();
        }
}

bool CScriptWindowSystem::IsKeyDown(unsigned int key)
{
    return (key == VK_SHIFT && m_keys & INPUT_SHIFT) || (key == VK_CONTROL && m_keys & INPUT_CTRL) ||
           (key == VK_MENU && m_keys & INPUT_ALT);
}

void CScriptWindowSystem::SendKey(unsigned int key, unsigned int state)
{
    const unsigned int held = std::exchange(m_keys, state);
    CWnd* target = m_focus;
    for (const auto& [window, peer] : m_peers)
        if (!target && !window->GetParent())
            target = peer->window;
    if (target)
        PressKey(target, key);
    m_keys = held;
}

Bitmap* CScriptWindowSystem::GrabWindow(CWnd*) { return nullptr; }

// Questions

unsigned int CScriptWindowSystem::TrackPopup(CWnd*, CCustomMenu& menu, const CPoint&)
{
    shown.push_back(L"menu: " + (menu.items.empty() ? Text() : menu.items.front().text));
    MenuUser user;
    if (!Take(menuUsers, user))
        return 0;
    const unsigned int id = user(menu);
    const CMenuItem* const item = id ? menu.FindItem(id) : nullptr;
    return item && item->enabled ? id : 0;
}

MessageAnswer CScriptWindowSystem::ShowMessage(CWnd*, const Text&, const Text& text, MessageButtons)
{
    shown.push_back(L"message: " + text);
    MessageAnswer answer = ANSWER_CANCEL;
    Take(messageAnswers, answer);
    return answer;
}

bool CScriptWindowSystem::ShowNotice(CWnd*, unsigned int id, unsigned int, const Text& title, const Text&)
{
    Text line;
    line.FormatString(L"notice %u: ", id);
    shown.push_back(line + title);
    return true;
}

void CScriptWindowSystem::ShowReport(CWnd*, const Text&, const Text& text) { shown.push_back(L"report: " + text); }

bool CScriptWindowSystem::ChooseFiles(CWnd*, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen)
{
    Text line;
    line.FormatString(request.reading ? L"files: read %X" : L"files: save %X", request.kind);
    shown.push_back(line);
    return Take(fileAnswers, chosen) && !chosen.empty();
}

bool CScriptWindowSystem::ChooseFolders(CWnd*, const Text&, bool several, std::vector<Text>& folders)
{
    shown.push_back(L"folder: " + (folders.empty() ? Text() : folders.front()));
    if (!Take(folderAnswers, folders))
        return false;
    if (!several && folders.size() > 1)
        folders.resize(1);
    return !folders.empty();
}

bool CScriptWindowSystem::ChooseColor(CWnd*, CRGBColor& color)
{
    shown.push_back(Text(L"color"));
    return Take(colorAnswers, color);
}

bool CScriptWindowSystem::RunDialog(CWnd*, const Text& title, const std::vector<CDialogTable*>& pages)
{
    shown.push_back(L"dialog: " + title);
    // A page that refuses OK keeps the dialog open: the next user goes on with it.
    for (DialogUser user; Take(dialogUsers, user);) {
        if (!user(pages))
            return false;
        if (std::all_of(pages.begin(), pages.end(), [](CDialogTable* page) { return page->OnOk(); }))
            return true;
    }
    return false;
}

void CScriptWindowSystem::SetWaitCursor(bool on)
{
    waitCursors += on ? 1 : -1;
    waitCursorCount += on;
}

IProgressSink* CScriptWindowSystem::CreateProgress(CWnd*, const Text& title)
{
    shown.push_back(L"progress: " + title);
    return new CScriptProgress(*this);
}

bool CScriptWindowSystem::GetClipboardText(Text& text)
{
    text = clipboard;
    return !text.IsEmpty();
}

bool CScriptWindowSystem::SetClipboardText(const Text& text)
{
    clipboard = text;
    return true;
}
