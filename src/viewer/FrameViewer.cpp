// The frame's window: how it comes up, where it stands, how it goes. FrameMenus.cpp has its menus and bars, FrameScene.cpp what it shows.

#include "viewer/FrameViewer.h"

#include "render/View.h"
#include "scene/3DScene.h"
#include "tools/Application.h"
#include "tools/FourCC.h"
#include "viewer/3DFileList.h"
#include "viewer/FrameCommands.h"
#include "viewer/Panels.h"
#include "viewer/RenderStatusBar.h"
#include "viewer/Texts.h"
#include "windows/Keys.h"
#include "windows/WindowSystem.h"

ZEL_IMPLEMENT_CREATABLE(C3DFrameViewer, CDocumentFrameWnd)

namespace {

using Text = CXTString<wchar_t>;

constexpr wchar_t WINDOW_CLASS[] = L"3DZelViewer";
constexpr wchar_t SECTION[] = L"Window";

// Fits the scene, where there is no numeric block too.
constexpr unsigned int FIT = FourCC("RSZO"), FIT_KEY = VK_HOME;

struct PlacementValue {
    const wchar_t* key;
    int CRect::*value;
};
constexpr PlacementValue PLACEMENT[] = {{L"left", &CRect::left},
                                        {L"top", &CRect::top},
                                        {L"right", &CRect::right},
                                        {L"bottom", &CRect::bottom}};
constexpr wchar_t MAXIMIZED[] = L"maximized";

}

C3DFrameViewer::C3DFrameViewer()
    : CDocumentFrameWnd(FourCC("FULL")), m_viewClass(C3DView::GetThisRuntimeClassDescriptor()), m_commands(std::make_unique<Commands>())
{
}

C3DFrameViewer::~C3DFrameViewer()
{
    SetPeer(nullptr);    // while this is still the frame that its windows know
    DeleteMe(m_scene);
}

// Life of the window

int C3DFrameViewer::OnCreate()
{
    if (!m_statusBar) {
        m_statusBar.reset(CreateStatusBar());
        SetStatusBar(m_statusBar.get());
    }
    m_statusBar->Init(this);
    if (!CreateView() || CDocumentFrameWnd::OnCreate() == -1) {
        DropView();
        return -1;
    }
    CreatePanel(PANEL_MATERIALS);
    CreatePanel(PANEL_OBJECTS);
    m_view->SetScene(m_scene, GLSET_FIT);
    UpdateView(GLSET_UPDATE);
    UpdateTitle();
    return 0;
}

bool C3DFrameViewer::CreateView()
{
    CXObject* const made = m_viewClass ? m_viewClass->CreateObject() : nullptr;
    m_view = XDynamicCast<C3DView>(made);
    if (!m_view) {
        delete made;
        return false;
    }
    m_view->SetHost(this);
    SetViewer(m_view);
    return true;
}

void C3DFrameViewer::DropView()
{
    m_commands->ForEach([](C3DCommand& command) { command.SetViewer(nullptr); });
    SetViewer(nullptr);
    m_view = nullptr;
}

void C3DFrameViewer::OnDestroy()
{
    TellCallbacks([](C3DCallbackWnd& window) { window.Close(); });
    m_callbacks.clear();
    if (m_view)
        RemoveFiles();
    CDocumentFrameWnd::OnDestroy();
    DropView();
}

CRenderStatusBar* C3DFrameViewer::CreateStatusBar() { return new CRenderStatusBar; }
CCustomFramePanels* C3DFrameViewer::CreateFramePanels() { return new C3DPanels(this); }
CCustomDockablePane* C3DFrameViewer::CreatePanel(unsigned int id) { return CDocumentFrameWnd::CreatePanel(id); }
CDocumentFileList* C3DFrameViewer::CreateDocumentList() { return new C3DFileList(this); }
CXTString<wchar_t> C3DFrameViewer::GetClassNameW() { return WINDOW_CLASS; }

// Where the window stands; the full screen is not kept

bool C3DFrameViewer::LoadWindowPos(CWindowPlacement& placement)
{
    constexpr int LEAST_SIDE = 100;
    IApplication* const application = GetApplication();
    if (!application)
        return false;
    CWindowPlacement known;
    for (const PlacementValue& side : PLACEMENT)
        known.rect.*side.value = static_cast<int>(application->GetProfileInt(SECTION, side.key, 0));
    known.maximized = application->GetProfileInt(SECTION, MAXIMIZED, 0) != 0;
    if (known.rect.Width() < LEAST_SIDE || known.rect.Height() < LEAST_SIDE)
        return false;
    placement = known;
    return true;
}

void C3DFrameViewer::SaveWindowPos()
{
    if (const auto* const panels = dynamic_cast<C3DPanels*>(GetPanels()))
        panels->SaveShown();
    IApplication* const application = GetApplication();
    const IFramePeer* const peer = GetFramePeer();
    const CWindowPlacement placement = application && peer ? peer->GetPlacement() : CWindowPlacement();
    if (placement.rect.Width() <= 0)
        return;
    for (const PlacementValue& side : PLACEMENT)
        application->WriteProfileInt(SECTION, side.key, static_cast<unsigned int>(placement.rect.*side.value));
    application->WriteProfileInt(SECTION, MAXIMIZED, placement.maximized);
}

// Commands

void C3DFrameViewer::AddCommands()
{
    CDocumentFrameWnd::AddCommands();
    m_commands->ForEach([this](C3DCommand& command) {
        if (!GetCommandMgr().AddCommand(&command, nullptr))
            command.OnInitCommand(this);    // the window comes up once more: it has another view
    });
    AddPluginCommands(COMMANDS_3D);
}

bool C3DFrameViewer::RestoreLastCommand() { return CDocumentFrameWnd::RestoreLastCommand() || RunCommand(FourCC("SELC")) == COMMAND_DONE; }

bool C3DFrameViewer::OnKey(unsigned int key, unsigned int state)
{
    if (CDocumentFrameWnd::OnKey(key, state))
        return true;
    if (key != FIT_KEY || state & (INPUT_SHIFT | INPUT_CTRL | INPUT_ALT))
        return false;
    RunCommand(FIT);
    return true;
}

CXTString<wchar_t> C3DFrameViewer::GetKeysOf(CZelCommand& command) const
{
    const Text keys = CDocumentFrameWnd::GetKeysOf(command);
    if (command.GetCommandID().identifier != FIT)
        return keys;
    CCommandAccess other;
    other.SetAccess(FIT_KEY, 0, 0);
    return keys + L", " + other.GetKeyText();
}

CommandResult C3DFrameViewer::AskForSave(bool, bool noCancel)
{
    if (!SaveEnabled() || !IsDocumentModified())
        return COMMAND_DONE;
    const MessageAnswer answer = GetWindowSystem().ShowMessage(this, LoadText(TEXT_PROGRAM), LoadText(TEXT_ASK_FOR_SAVE),
                                                               noCancel ? MESSAGE_YES_NO : MESSAGE_YES_NO_CANCEL);
    if (answer == ANSWER_NO) {
        GiveUpChanges();
        return COMMAND_DONE;
    }
    if (answer != ANSWER_YES)
        return COMMAND_CANCELLED;
    return GetCommandMgr().StackCommand(FourCC("SAVS"), STACK_USER, nullptr) == COMMAND_DONE ? COMMAND_DONE : COMMAND_DECLINED;
}

// Status bar

CXTString<wchar_t> C3DFrameViewer::GetIdleMessage() { return {}; }

void C3DFrameViewer::UpdateStatusBar()
{
    if (m_statusBar && GetHelpText().IsEmpty())
        m_statusBar->SetPaneText(CRenderStatusBar::PANE_HELP, GetIdleMessage());
    else
        CDocumentFrameWnd::UpdateStatusBar();
}
