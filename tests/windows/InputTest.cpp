#include <gtest/gtest.h>

#include <string>

#include "tools/FourCC.h"
#include "windows/CommandFrame.h"
#include "windows/CommandView.h"
#include "windows/ScriptWindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

// Says what the manager says of the mouse at each event.
class CMouseCommand : public CZelCommand {
public:
    Text GetName() override { return L"&Mouse"; }
    CCommandID GetCommandID() override { return {1, 1, FourCC("INTE"), 2, FourCC("MOUS"), 1}; }
    void OnMouseMove(unsigned int, const CPoint&) override { Say("move"); }
    int OnLButtonDown(unsigned int, const CPoint&) override { return Say("down"); }
    int OnLButtonUp(unsigned int, const CPoint&) override { return Say("up"); }
    int OnLButtonDblClk(unsigned int, const CPoint&) override { return Say("double"); }
    int OnRButtonDown(unsigned int, const CPoint&) override { return Say("right"); }
    int OnMouseWheel(unsigned int, short, CPoint) override { return Say("wheel") && takesWheel; }
    void OnTimer(unsigned int id) override
    {
        log += "timer" + std::to_string(id) + " ";
        if (closesTimer)
            CloseTimer(id);
    }

    std::string log;
    bool takesWheel = false, closesTimer = false;

private:
    int Say(const char* what)
    {
        const CCommandMgr& manager = *GetManager();
        log += what;
        log += manager.IsDualClick()                   ? "/dual"
               : manager.IsSingleClick() == CLICK_LEFT ? "/left"
               : manager.IsSingleClick()               ? "/other"
                                                       : "/none";
        log += manager.IsStaticClick() ? " " : "/moved ";
        return 1;
    }
};

class CWheelView : public CCommandView {
public:
    int unused = 0;

protected:
    void OnUnusedWheel(unsigned int, short, const CPoint&) override { unused++; }
};

// Runs once; knows a popup of its own.
class CSimpleCommand : public CZelCommand {
public:
    CSimpleCommand()
    {
        m_access.SetAccess('K', 0x203, 0);
        m_access.SetMenuPosition(4, 1 << 16, 0);
        m_access.SetToolbarPosition(4, 1 << 16, 0);
        SetState(COMMAND_HAS_POPUP, true);
    }
    Text GetName() override { return L"&Simple"; }
    CCommandID GetCommandID() override { return {1, 1, FourCC("SIMP"), 2, FourCC("SIMP"), 1}; }
    void UpdateState() override { SetState(COMMAND_CHECKED, runs > 0); }
    CommandResult OnApplyCommand() override { return runs++, COMMAND_DONE; }
    CCustomMenu* OnPopupMenu(CCustomMenu* menu, unsigned int) override
    {
        GetManager()->FreePopupCmdIds(this);
        popupId = GetManager()->GetFreePopupCmdId(this);
        menu->AddItem(popupId, L"choice");
        return menu;
    }
    unsigned int GetPopupCmdState(unsigned int) override { return COMMAND_ENABLED | COMMAND_CHECKED; }
    int DoPopupCmd(unsigned int id) override { return chosen = id, 1; }

    int runs = 0;
    unsigned int popupId = 0, chosen = 0;
};

class CTestFrame : public CCommandFrameWnd {
public:
    CTestFrame() { bar.InitToolbar(1, L"bar"); }
    int OnCreate() override
    {
        AddToolbar(&bar);
        SetViewer(view = new CWheelView);
        return CCommandFrameWnd::OnCreate();
    }
    void AddCommands() override
    {
        GetCommandMgr().AddCommand(&mouse, nullptr);
        GetCommandMgr().AddCommand(&simple, nullptr);
    }
    CCustomMenu* GetCommandMenu(unsigned int) override { return GetMenuBar().FindPopup(L"Menu"); }
    CCustomToolbar* GetCommandToolbar(unsigned int) override { return &bar; }
    bool OnClose() override { return mayClose; }

    CMouseCommand mouse;
    CSimpleCommand simple;
    CCustomToolbar bar;
    CWheelView* view = nullptr;
    bool mayClose = true;
};

class Input : public testing::Test {
protected:
    Input()
    {
        former = SetWindowSystem(&screen);
        EXPECT_TRUE(frame.Create(L"title"));
        frame.GetCommandMgr().StackCommand(&frame.mouse, STACK_USER, nullptr);
    }
    ~Input() override
    {
        frame.SetPeer(nullptr);
        SetWindowSystem(former);
    }
    std::string Log() { return std::exchange(frame.mouse.log, {}); }

    IWindowSystem* former;
    CScriptWindowSystem screen;
    CTestFrame frame;
};

}

TEST_F(Input, TheMouseIsStaticUntilItMovesAndADoubleClickIsNoClick)
{
    screen.Click(frame.view, MOUSE_LEFT, {5, 5});
    EXPECT_EQ(Log(), "down/left up/left ");
    screen.Drag(frame.view, MOUSE_LEFT, {{5, 5}, {5, 5}, {6, 5}, {5, 5}});
    EXPECT_EQ(Log(), "down/left move/left move/left move/left/moved move/left/moved up/left/moved ");
    screen.DoubleClick(frame.view, MOUSE_LEFT, {5, 5});
    EXPECT_EQ(Log(), "down/left up/left double/none up/none ");

    screen.PressMouse(frame.view, MOUSE_LEFT, {1, 1});
    screen.PressMouse(frame.view, MOUSE_RIGHT, {1, 1});
    EXPECT_TRUE(screen.HasCapture(frame.view));
    screen.ReleaseMouse(frame.view, MOUSE_LEFT, {2, 1});
    EXPECT_EQ(Log(), "down/left right/dual up/dual/moved ");
    frame.view->OnCaptureLost();
    screen.MoveMouse(frame.view, {3, 1});
    EXPECT_EQ(Log(), "move/none ");
    screen.ReleaseMouse(frame.view, MOUSE_RIGHT, {3, 1});
}

TEST_F(Input, WhatTheCommandLeavesOfTheWheelIsTheViews)
{
    screen.TurnWheel(frame.view, 120, {1, 1});
    frame.mouse.takesWheel = true;
    screen.TurnWheel(frame.view, 120, {1, 1});
    EXPECT_EQ(frame.view->unused, 1);
}

TEST_F(Input, KeysMenusAndButtonsRunCommandsInTheirState)
{
    EXPECT_FALSE(screen.PressKey(frame.view, 'K'));
    screen.HoldKeys(INPUT_SHIFT | INPUT_CTRL);
    EXPECT_TRUE(screen.PressKey(frame.view, 'K'));
    screen.HoldKeys(0);
    EXPECT_EQ(frame.simple.runs, 1);
    const unsigned int id = frame.GetCommandMgr().GetWindowsId(&frame.simple);
    EXPECT_TRUE(screen.PressButton(&frame, id));
    EXPECT_EQ(frame.simple.runs, 2);
    EXPECT_TRUE(frame.bar.FindButton(id)->checked);
    frame.simple.SetState(COMMAND_ENABLED, false);
    EXPECT_FALSE(screen.PressButton(&frame, id));

    frame.simple.SetState(COMMAND_ENABLED, true);
    for (int i = 0; i < 3; i++) {    // filled anew each time, under the same number
        EXPECT_TRUE(screen.ChooseMenu(&frame, CCommandMgr::FIRST_POPUP));
        EXPECT_EQ(frame.simple.chosen, frame.simple.popupId);
    }
    screen.menuUsers.push_back([](const CCustomMenu& menu) { return menu.items.front().checked ? menu.items.front().id : 0; });
    frame.simple.chosen = 0;
    frame.OnToolbarMenu(id, {10, 20});
    EXPECT_EQ(frame.simple.chosen, frame.simple.popupId);
}

TEST_F(Input, EscapeEndsTheFullScreenOnceAndTimersAreTheCommands)
{
    frame.ToggleFullScreen();
    frame.AddMessageCallback([this] { frame.CancelFullScreen(); });
    EXPECT_TRUE(screen.IsFullScreen(&frame));
    EXPECT_TRUE(screen.PressKey(frame.view, VK_ESCAPE));
    EXPECT_FALSE(screen.IsFullScreen(&frame));
    EXPECT_FALSE(screen.PressKey(frame.view, VK_ESCAPE));

    Log();
    ASSERT_TRUE(frame.mouse.SetTimer(1, 40));
    screen.Wait(100);
    EXPECT_EQ(Log(), "timer1 timer1 ");
    frame.mouse.closesTimer = true;
    screen.Wait(100);
    EXPECT_EQ(Log(), "timer1 ");
    EXPECT_FALSE(frame.mouse.IsTimerEnabled(1));
}

TEST_F(Input, AFrameMayRefuseToCloseAndTakesItsViewAlong)
{
    frame.mayClose = false;
    frame.PostClose();
    screen.PumpEvents();
    EXPECT_TRUE(frame.HasPeer());
    frame.mayClose = true;
    frame.PostClose();
    screen.PumpEvents();
    EXPECT_FALSE(frame.HasPeer());
    EXPECT_EQ(frame.GetViewer(), nullptr);
    EXPECT_EQ(frame.GetCommandMgr().GetCurrentCommand(), nullptr);
    EXPECT_TRUE(frame.GetMenuBar().IsEmpty());
    ASSERT_TRUE(frame.Create(L"again"));    // commands are there already
    EXPECT_EQ(frame.GetCommandMgr().GetCommands().size(), 2u);
    EXPECT_EQ(frame.bar.buttons.size(), 1u);
}
