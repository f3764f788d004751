#include "viewer/CommandCase.h"
#include "viewer/Panels.h"

namespace {

constexpr unsigned int PLAY = FourCC("PLAY");

class AnimationCommands : public CommandCase {
protected:
    void AddKeys(std::initializer_list<int> times)
    {
        for (const int time : times)
            scene->GetChildNode(nullptr)->CreateKey(time, KEY_MATRIX, 0);
    }
    int Time() const { return scene->GetTickCount(); }
};

/// Counts what it is told of the time.
class CTimeListener : public C3DCallbackWnd {
public:
    CTimeListener() : C3DCallbackWnd(0) {}
    void SceneChanged(C3DScene*, unsigned int what, const CSceneChangeData&) override { count += what == CHANGED_TIME; }
    int count = 0;
};

}

TEST_F(AnimationCommands, PlayGoesRoundUntilItIsStopped)
{
    AddKeys({0, 3});
    CTimeListener listener;
    frame->AddCallbackWnd(&listener, true);
    EXPECT_EQ(State(PLAY), ENABLED);
    EXPECT_EQ(Run(PLAY), COMMAND_DONE);
    EXPECT_EQ(State(PLAY), CHECKED);
    for (const int time : {1, 2, 3, 0, 1}) {
        windows.Wait(40);
        EXPECT_EQ(Time(), time);
    }
    EXPECT_EQ(listener.count, 5);
    Run(FourCC("WIRE"));
    EXPECT_EQ(State(PLAY), CHECKED);    // what plays can be stopped, in whatever mode
    Run(PLAY);
    windows.Wait(400);
    EXPECT_EQ(Time(), 1);
    EXPECT_EQ(State(PLAY), 0u);
    frame->AddCallbackWnd(&listener, false);
}

TEST_F(AnimationCommands, APlayingSceneMayGo)
{
    Run(PLAY);    // nothing to play: nothing moves
    windows.Wait(200);
    EXPECT_EQ(Time(), 0);
    Owned<C3DScene> other(C3DScene::Create());
    frame->SetCurrentScene(other.get(), true);
    scene.reset();
    windows.Wait(200);
    frame->OnSetEmptyFile();
    windows.Wait(200);
    EXPECT_EQ(State(PLAY), CHECKED);
    frame.reset();
    windows.Wait(200);
}

TEST_F(AnimationCommands, StepsEndAtTheRange)
{
    AddKeys({0, 4, 9});
    CTimeListener listener;
    frame->AddCallbackWnd(&listener, true);
    constexpr unsigned int FRAME = FourCC("NXFR"), BACK = FourCC("PRFR"), KEY = FourCC("NXKF"), KEY_BACK = FourCC("PRKF");
    const struct {
        unsigned int command;
        int time, told;
    } rows[] = {{BACK, 0, 0},  {FRAME, 1, 1}, {KEY, 4, 2},      {KEY, 9, 3},      {KEY, 9, 3},
                {FRAME, 9, 3}, {BACK, 8, 4},  {KEY_BACK, 4, 5}, {KEY_BACK, 0, 6}, {KEY_BACK, 0, 6}};
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.command), COMMAND_DONE);
        EXPECT_EQ(Time(), row.time);
        EXPECT_EQ(listener.count, row.told);
    }
    frame->AddCallbackWnd(&listener, false);
}

TEST_F(AnimationCommands, FullScreenTellsHowToLeaveIt)
{
    const auto press = [&](unsigned int key) { return windows.PressKey(&View(), key); };
    EXPECT_TRUE(press(VK_TAB));
    EXPECT_TRUE(windows.IsFullScreen(frame.get()));
    ASSERT_FALSE(windows.shown.empty());
    EXPECT_EQ(windows.shown.back(), L"notice 1: Full screen");
    EXPECT_EQ(State(FourCC("FULL")), CHECKED);
    EXPECT_TRUE(press(VK_ESCAPE));
    EXPECT_FALSE(windows.IsFullScreen(frame.get()));
    EXPECT_EQ(windows.shown.size(), 1u);
    press(VK_TAB);
    press(VK_TAB);    // left by its own key
    EXPECT_FALSE(windows.IsFullScreen(frame.get()));
    press(VK_ESCAPE);
    EXPECT_FALSE(windows.IsFullScreen(frame.get()));
    EXPECT_EQ(windows.shown.size(), 2u);
}
