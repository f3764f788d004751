// A frame as a whole: its scene and who hears of it, menus and bars, what is kept from one time to the next, commands run by scripts.

#include <functional>
#include <map>

#include "FrameCase.h"
#include "viewer/3DCommand.h"
#include "windows/Keys.h"

namespace {

class Frame : public FrameCase {};

/// Notes what it hears under its name.
class CListener : public C3DCallbackWnd {
public:
    CListener(std::vector<std::string>& heard, const char* name, unsigned short priority)
        : C3DCallbackWnd(priority), m_heard(heard), m_name(name)
    {
    }
    void Close() override { Note("close"); }
    void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData&) override
    {
        Note("scene " + std::to_string(what) + (scene ? "" : " none"));
    }
    void ShowObjects(_LeftBarShowMode mode) override { Note("objects " + std::to_string(mode)); }
    void NodeSelectionChanged() override { Note("selection"); }
    void NodeDisplayChanged() override { Note("display"); }

private:
    void Note(const std::string& what) { m_heard.push_back(m_name + (" " + what)); }
    std::vector<std::string>& m_heard;
    const char* m_name;
};

using Heard = std::vector<std::string>;

}

TEST_F(Frame, CallbacksHearOfEachChangeInTheirOrder)
{
    Open();
    Heard heard;
    CListener a(heard, "a", 5), b(heard, "b", 5), c(heard, "c", 9), d(heard, "d", 1);
    frame->GetPanels()->Close();    // whose lists are callbacks too
    EXPECT_EQ(frame->AddCallbackWnd(nullptr, true), 0);
    frame->AddCallbackWnd(&a, true);
    frame->AddCallbackWnd(&b, true);    // at the place of the last one that is not below it
    frame->AddCallbackWnd(&c, true);
    EXPECT_EQ(frame->AddCallbackWnd(&c, true), 3);
    EXPECT_EQ(frame->GetCallbacks(), (std::vector<C3DCallbackWnd*>{&c, &b, &a}));
    frame->AddCallbackWnd(&d, true);
    EXPECT_EQ(frame->GetCallbacks(), (std::vector<C3DCallbackWnd*>{&c, &b, &d, &a}));
    frame->AddCallbackWnd(&c, false);
    frame->AddCallbackWnd(&b, false);
    EXPECT_EQ(frame->AddCallbackWnd(&b, false), 2);

    const Owned<C3DScene> scene(CreateCubes(1));
    frame->SetCurrentScene(scene.get(), true);
    EXPECT_EQ(heard, (Heard{"d scene 1", "a scene 1"}));
    EXPECT_EQ(scene->GetRefCount(), 3);    // ours, the frame's, its view's
    frame->SetCurrentScene(scene.get(), true);
    frame->SetCurrentScene(nullptr, true);
    EXPECT_EQ(frame->GetCurrentScene(), scene.get());
    EXPECT_EQ(heard.size(), 2u);

    frame->AddCallbackWnd(&a, false);
    heard.clear();
    frame->NodeSelectionChanged();
    frame->NodeDisplayChanged();
    frame->ShowObjects(LEFTBAR_TOGGLE);
    EXPECT_TRUE(system.CloseWindow(frame.get()));
    EXPECT_EQ(heard, (Heard{"d selection", "d display", "d objects 2", "d close"}));
    EXPECT_EQ(scene->GetRefCount(), 1);
}

TEST_F(Frame, NewsOfAMaterialReachThatMaterialAlone)
{
    Open();
    const Owned<C3DScene> scene(CreateCubes(3));
    static int flushed;
    frame->Get3DView()->SetFlushCallback([](C3DSceneNode*, void*) { flushed++; });
    frame->SetCurrentScene(scene.get(), true);
    system.PumpEvents();
    const auto count = [&](const std::function<void()>& change) {
        flushed = 0;
        change();
        system.PumpEvents();
        return flushed;
    };
    C3DMaterial* const material = scene->GetMaterialByName(L"paint1");
    EXPECT_LE(count([&] {
                  material->SetDiffuseColor(0, {1, 2, 3});
                  frame->SceneChanged(CHANGED_MATERIAL, {nullptr, material->GetMaterialID()}, true);
              }),
              1);
    EXPECT_FALSE(material->IsOneFlagSet(MATERIAL_CHANGES));
    EXPECT_EQ(count([&] { frame->SceneChanged(CHANGED_SCENE, {}, true); }), 3);
    EXPECT_EQ(count([&] { frame->SceneChanged(CHANGED_UNIT, {}, true); }), 0);
}

TEST_F(Frame, PanesFollowTheScene)
{
    Open();
    const auto panes = [this] {
        return std::vector<Text>{Pane(CRenderStatusBar::PANE_POINTS), Pane(CRenderStatusBar::PANE_FACES),
                                 Pane(CRenderStatusBar::PANE_FRAME), Pane(CRenderStatusBar::PANE_UNIT)};
    };
    EXPECT_EQ(panes(), (std::vector<Text>{L"Points: 0", L"Faces: 0", L"Frame: 0/1", L"Unit: centimeter"}));
    const Owned<C3DScene> scene(CreateCubes(2));
    frame->SetCurrentScene(scene.get(), true);
    EXPECT_EQ(panes(), (std::vector<Text>{L"Points: 16", L"Faces: 12", L"Frame: 0/1", L"Unit: centimeter"}));
    scene->SetUnit(UNIT_METER);
    frame->SceneChanged(CHANGED_TIME, {}, false);
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_UNIT), L"Unit: centimeter");
    frame->SceneChanged(CHANGED_UNIT, {}, false);
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_UNIT), L"Unit: meter");
    frame->SetFrameFlag(FRAME_STATUS_FIXED, true);
    DeleteFirstNode();
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_FACES), L"Faces: 12");
    frame->SetFrameFlag(FRAME_STATUS_FIXED, false);
    DeleteFirstNode();
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_FACES), L"Faces: 0");
    frame->GetRenderStatusBar()->SetSceneInfo(7, 8);
    EXPECT_EQ(Pane(CRenderStatusBar::PANE_POINTS), L"Points: 7");
}

TEST_F(Frame, MenusHoldEachCommandInItsPlace)
{
    Open();
    const auto popups = [](const CCustomMenu& menu) {
        std::vector<Text> texts;
        for (const CMenuItem& item : menu.items)
            if (item.popup)
                texts.push_back(item.text);
        return texts;
    };
    const CCustomMenu& bar = frame->GetMenuBar();
    EXPECT_EQ(popups(bar), (std::vector<Text>{L"&File", L"Edit", L"&View", L"&Help"}));
    const CCustomMenu& view = *bar.GetPopup(L"&View");
    EXPECT_EQ(popups(view), (std::vector<Text>{L"&On Opening", L"Camera", L"Points of View", L"Isometric Points of View", L"Render",
                                               L"Light", L"Animation", L"Zoom", L"Move", L"Rotate"}));

    // Every command that has a place is there once, and separators only separate.
    std::map<unsigned int, int> counts;
    const std::function<void(const CCustomMenu&)> walk = [&](const CCustomMenu& menu) {
        EXPECT_FALSE(menu.items.front().separator || menu.items.back().separator);
        bool separator = true;
        for (const CMenuItem& item : menu.items) {
            EXPECT_FALSE(separator && item.separator);
            separator = item.separator;
            counts[item.id]++;
            if (item.popup)
                walk(*item.popup);
        }
    };
    walk(bar);
    for (CZelCommand* const command : frame->GetCommandMgr().GetCommands()) {
        const int wanted = command->GetAccess().HasMenuPosition() ? 1 : counts[frame->GetCommandMgr().GetWindowsId(command)];
        EXPECT_EQ(counts[frame->GetCommandMgr().GetWindowsId(command)], wanted) << WideToUtf8(command->GetName());
    }
    std::vector<Text> file;
    for (const CMenuItem& item : bar.GetPopup(L"&File")->items)
        file.push_back(item.separator ? L"-" : item.text);
    EXPECT_EQ(file, (std::vector<Text>{L"&Open...", L"Open &Recent", L"-", L"Save As...", L"-", L"&Next File", L"Pre&vious File", L"-",
                                       L"Merge...", L"Merge Folder...", L"-", L"&Close"}));
}

TEST_F(Frame, BarsHoldTheirGroups)
{
    Open();
    const auto& bars = frame->GetToolbars();
    ASSERT_EQ(bars.size(), 3u);
    const Text names[] = {L"File", L"Tools", L"View"};
    for (unsigned int i = 0; i < 3; i++) {
        EXPECT_EQ(bars[i]->GetId(), 59433 + i);
        EXPECT_EQ(bars[i]->GetName(), names[i]);
        EXPECT_TRUE(bars[i]->HasLargeIcons());
    }
    const auto has = [&](int bar, unsigned int id) {
        return bars[static_cast<std::size_t>(bar)]->FindButton(frame->GetCommandMgr().GetWindowsId(&Command(id))) != nullptr;
    };
    EXPECT_TRUE(has(0, FourCC("OPEN")));
    EXPECT_TRUE(has(1, FourCC("ROTA")));
    EXPECT_TRUE(has(2, FourCC("VTOP")));
    frame->SetSettingsFlag(SETTINGS3D_LARGE_ICONS, false);
    frame->ToolbarsSizeChanged();
    EXPECT_FALSE(bars[1]->HasLargeIcons());
    EXPECT_FALSE(frame->IsSettingsFlagSet(SETTINGS3D_LARGE_ICONS));
    EXPECT_TRUE(frame->IsSettingsFlagSet(SETTINGS3D_AUTO_FIT));
}

TEST_F(Frame, EveryCommandRunsWithAndWithoutAScene)
{
    Open();
    const Owned<C3DScene> scene(CreateCubes(2));
    for (C3DScene* const shown : {static_cast<C3DScene*>(nullptr), scene.get()}) {
        frame->SetCurrentScene(shown, true);
        for (CZelCommand* const command : std::vector<CZelCommand*>(frame->GetCommandMgr().GetCommands()))
            if (command->GetCommandID().identifier != FourCC("CLOS"))
                frame->RunCommand(command);
        system.PumpEvents();
    }
    EXPECT_GE(CountShown(L"report: "), 2);    // help
    EXPECT_EQ(frame->GetCommandMgr().GetCommands().size(), 82u - 5 - 1 + 3);
}

TEST_F(Frame, KeysOfHelpAndHome)
{
    Open();
    const Owned<C3DScene> scene(CreateCubes(2));
    frame->SetCurrentScene(scene.get(), true);
    const auto place = [this] { return frame->Get3DView()->GetViewSettings()->matrix.m[2][3]; };
    const float fitted = place();
    system.PressKey(frame->Get3DView(), VK_ADD);
    ASSERT_NE(place(), fitted);
    system.HoldKeys(INPUT_CTRL);
    EXPECT_FALSE(system.PressKey(frame->Get3DView(), VK_HOME));
    system.HoldKeys(0);
    EXPECT_TRUE(system.PressKey(frame->Get3DView(), VK_HOME));
    EXPECT_FLOAT_EQ(place(), fitted);
    EXPECT_TRUE(system.PressKey(frame->Get3DView(), VK_F1));
    system.PumpEvents();
    ASSERT_EQ(CountShown(L"report: "), 1);
    EXPECT_GE(system.shown.back().Find(L", Home\tFit On View\tMakes the scene fit in the view\n"), 0);
}

TEST_F(Frame, PlaceAndCommandAreKept)
{
    Open();
    EXPECT_EQ(frame->GetCommandMgr().GetCurrentCommand(), &Command(FourCC("SELC")));
    frame->GetFramePeer()->SetPlacement({{-20, 30, 500, 400}, true});
    Run(FourCC("ZOOM"));
    ASSERT_TRUE(system.CloseWindow(frame.get()));
    frame = std::make_unique<C3DFrameViewer>();
    Open();
    const CWindowPlacement placement = frame->GetFramePeer()->GetPlacement();
    EXPECT_EQ(placement.rect.left, -20);
    EXPECT_EQ(placement.rect.bottom, 400);
    EXPECT_TRUE(placement.maximized);
    EXPECT_EQ(frame->GetCommandMgr().GetCurrentCommand(), &Command(FourCC("ZOOM")));

    // A window that comes up once more has another view, and its commands know it.
    ASSERT_TRUE(system.CloseWindow(frame.get()));
    Open();
    const Owned<C3DScene> scene(CreateCubes(1));
    frame->SetCurrentScene(scene.get(), true);
    EXPECT_EQ(Run(FourCC("VTOP")), COMMAND_DONE);
    EXPECT_EQ(frame->GetToolbars().size(), 3u);
}

namespace {

/// A command of a host: gives its scene on when `result` says so.
class CHostCommand : public C3DCommand {
public:
    CHostCommand() : C3DCommand(FourCC("HOST")) {}
    CXTString<wchar_t> GetName() override { return L"Host"; }
    int HasDialog() override { return 1; }
    using C3DCommand::OnApplyCommand;
    using C3DCommand::OnOpenDialog;
    CommandResult OnApplyCommand(C3DScene* scene) override
    {
        seen = scene;
        GetCustomData().GetInt(1, parameter);
        return result;
    }
    int OnOpenDialog(C3DScene* scene) override
    {
        seen = scene;
        GetCustomData().GetInt(1, parameter);
        GetCustomData().SetInt(1, 30);
        return answer;
    }
    CommandResult result = COMMAND_DONE;
    int answer = 1, parameter = 0;
    C3DScene* seen = nullptr;
};

}

TEST_F(Frame, ScriptsRunCommandsOnScenesOfTheirOwn)
{
    Open();
    CCommandMgr& manager = frame->GetCommandMgr();
    CHostCommand host;
    ASSERT_TRUE(manager.AddCommand(&host, nullptr));
    const Owned<C3DScene> scene(CreateCubes(1)), shown(CreateCubes(1));
    CCustomData own, given;
    own.SetInt(1, 10);
    given.SetInt(1, 20);
    host.SetParameters(own);
    const auto parameters = [&] {
        int value = 0;
        host.GetCustomData().GetInt(1, value);
        return value;
    };

    EXPECT_EQ(Apply3DCommand(nullptr, FourCC("HOST"), scene.get(), given), nullptr);
    EXPECT_EQ(Apply3DCommand(&manager, FourCC("NONE"), scene.get(), given), nullptr);
    EXPECT_EQ(CountShown(L"message: This command isn't available."), 1);
    EXPECT_EQ(Apply3DCommand(&manager, FourCC("HOST"), scene.get(), given), scene.get());
    EXPECT_EQ(host.parameter, 20);
    EXPECT_EQ(parameters(), 10);
    host.result = COMMAND_DECLINED;
    EXPECT_EQ(Apply3DCommand(&manager, FourCC("HOST"), scene.get(), given), nullptr);
    EXPECT_EQ(CountShown(L"message: The command Host failed on the scene ."), 1);
    EXPECT_EQ(parameters(), 10);
    EXPECT_EQ(manager.GetScriptMode(), SCRIPT_NONE);

    // Afterwards a user's run is about what the frame shows, not about the script's scene.
    host.result = COMMAND_DONE;
    EXPECT_EQ(manager.StackCommand(&host, STACK_APPLY, nullptr), COMMAND_NO_SCENE);
    EXPECT_FALSE(host.GetOutputData().HasData(DATA_SCENE));
    frame->SetCurrentScene(shown.get(), true);
    EXPECT_EQ(manager.StackCommand(&host, STACK_APPLY, nullptr), COMMAND_DONE);
    EXPECT_EQ(host.seen, shown.get());

    // A dialog: on what is given when it is the command's own, else on what the command has.
    host.StampParameters(given);
    EXPECT_EQ(Show3DCommandDialog(&manager, FourCC("HOST"), given), 1);
    EXPECT_EQ(host.parameter, 20);
    EXPECT_NE(host.seen, shown.get());
    int value = 0;
    given.GetInt(1, value);
    EXPECT_EQ(value, 30);
    EXPECT_EQ(parameters(), 10);
    CCustomData foreign;
    foreign.SetInt(1, 99);
    Command(FourCC("VAGL")).StampParameters(foreign);
    host.answer = 0;
    EXPECT_EQ(Show3DCommandDialog(&manager, FourCC("HOST"), foreign), 0);
    EXPECT_EQ(host.parameter, 10);
    foreign.GetInt(1, value);
    EXPECT_EQ(value, 10);
    EXPECT_EQ(parameters(), 10);
    EXPECT_EQ(CountShown(L"message: The parameters of the command Host stay as they were."), 1);
}
