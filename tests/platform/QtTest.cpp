#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>

#include "images/Bitmap.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Init.h"
#include "scene/Primitives.h"
#include "tools/Progress.h"
#include "windows/CustomList.h"
#include "windows/CustomTree.h"
#include "windows/Frame.h"
#include "windows/Keys.h"
#include "windows/WindowSystem.h"

using Text = CXTString<wchar_t>;

namespace {

// The whole of a text file or of a program's output.
std::string ReadFile(const char* path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Output(const std::string& command)
{
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    for (int c = 0; pipe && (c = fgetc(pipe)) != EOF;)
        text += static_cast<char>(c);
    pclose(pipe);
    return text;
}

}

// First in this program: nothing may have loaded the toolkit before.
TEST(Qt, IsLoadedByTheFirstWindowAlone)
{
    Init3DZel(0);
    EXPECT_EQ(ReadFile("/proc/self/maps").find("libQt"), std::string::npos);
    EXPECT_EQ(Output("LD_DEBUG=files " ZEL " info " MODEL " 2>&1").find("libQt"), std::string::npos);

    unsetenv("QT_QPA_PLATFORM");
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    Text error;
    EXPECT_FALSE(LoadWindowSystem(error));
    EXPECT_GE(error.Find(L"screen"), 0) << WideToUtf8(error);

    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("HOME", testing::TempDir().c_str(), 1);
    ASSERT_TRUE(LoadWindowSystem(error)) << WideToUtf8(error);
    EXPECT_NE(ReadFile("/proc/self/maps").find("libQt"), std::string::npos);
}

namespace {

constexpr unsigned int TIMER = 7;

// Red above, blue below, green at the left edge: turned over or with colours exchanged it would not be the same.
class CPainted : public CWnd {
public:
    std::vector<unsigned int> keys;
    unsigned int used = 0;    ///< the key that it uses
    CSize size;
    std::vector<std::string> mouse;
    bool focus = false;

    void OnPaint() override
    {
        const CRect client = GetClientRect();
        std::vector<unsigned char> pixels(static_cast<std::size_t>(client.Width()) * client.Height() * 4);
        for (int y = 0; y < client.Height(); y++)
            for (int x = 0; x < client.Width(); x++)
                pixels[(static_cast<std::size_t>(y) * client.Width() + x) * 4 + (x < 20 ? 1 : y < client.Height() / 2 ? 0 : 2)] = 255;
        GetPeer()->PresentPixels(pixels.data(), client.Width(), client.Height());
    }
    void OnSize(int width, int height) override { size = {width, height}; }
    void OnFocus(bool on) override { focus = on; }
    bool OnKey(unsigned int key, unsigned int) override
    {
        keys.push_back(key);
        return key == used;
    }
};

class CTestFrame : public CFrameWndEx {
public:
    std::vector<unsigned int> commands, keys, selected;
    std::vector<unsigned int> states;    ///< of `keys`
    int popups = 0, idles = 0;
    std::function<void()> onTimer;

    int OnCreate() override
    {
        CCustomMenu& file = *GetMenuBar().FindPopup(L"&File");
        file.AddItem(101, L"&Open...").key = L"Ctrl+O";
        file.AddItem(102, L"&Checked", true, true);
        file.AddItem(103, L"&Grey", false);
        bar.InitToolbar(59433, L"File");
        bar.InsertButton(101, L"Open", 9740, 0x10000);
        bar.InsertButton(104, L"Lists", 9702, 0x20000).hasMenu = true;
        AddToolbar(&bar);
        status.Init(this);
        status.SetPanes({{1, L"7 faces", STATUSPANE_FRAMED, 80}, {2, L"Press <k>Ctrl</k>", STATUSPANE_STRETCH, 50}});
        SetStatusBar(&status);
        UpdateMenuBar();
        UpdateToolbars();
        UpdateStatus();
        return 0;
    }
    void OnCommand(unsigned int id) override { commands.push_back(id); }
    bool OnKey(unsigned int key, unsigned int state) override
    {
        keys.push_back(key);
        states.push_back(state);
        return false;
    }
    void OnInitMenuPopup(CCustomMenu&) override { popups++; }
    void OnMenuSelect(unsigned int id) override { selected.push_back(id); }
    void OnIdle() override { idles++; }
    void OnTimer(unsigned int id) override
    {
        KillTimer(id);
        if (onTimer)
            onTimer();
    }
    void SetMiddle(CWnd* window)
    {
        window->SetParent(this);
        ASSERT_TRUE(GetWindowSystem().CreateWindowPeer(window, this, Text(), CRect()));
        SetCentralWindow(window);
    }

    CCustomToolbar bar;
    CCommandStatusBar status;
};

// Until nothing more comes.
void Settle(int milliseconds = 20)
{
    for (int i = 0; i < milliseconds / 5; i++) {
        GetWindowSystem().PumpEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool Is(const Bitmap& picture, int x, int y, int red, int green, int blue)
{
    const unsigned char* const pixel = picture.GetLine(y) + x * picture.GetBytesPerPixel();
    return pixel[0] == red && pixel[1] == green && pixel[2] == blue;
}

class QtFrame : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_frame.Create(L"Frame"));
        m_frame.GetFramePeer()->SetPlacement({{40, 30, 740, 630}, false});
    }
    void Show(CWnd* middle)
    {
        m_frame.SetMiddle(middle);
        m_frame.Show(true);
        Settle();
    }
    void TearDown() override
    {
        m_frame.SetPeer(nullptr);
        Settle();
    }
    std::unique_ptr<Bitmap> Grab(CWnd& window) { return std::unique_ptr<Bitmap>(GetWindowSystem().GrabWindow(&window)); }

    CTestFrame m_frame;
};

}

TEST_F(QtFrame, ShowsAWindowWithBarsAroundIt)
{
    CPainted middle;
    Show(&middle);
    const std::unique_ptr<Bitmap> inside = Grab(middle);
    ASSERT_TRUE(inside);
    EXPECT_EQ(middle.size, (CSize{inside->GetWidth(), inside->GetHeight()}));
    EXPECT_LT(middle.size.cy, 590);    // menu, bar and status take their part
    EXPECT_TRUE(Is(*inside, 100, 10, 255, 0, 0) && Is(*inside, 100, middle.size.cy - 10, 0, 0, 255) && Is(*inside, 5, 10, 0, 255, 0));
    EXPECT_TRUE(middle.focus);
    EXPECT_EQ(m_frame.GetFramePeer()->GetPlacement().rect, (CRect{40, 30, 740, 630}));

    m_frame.GetFramePeer()->SetFullScreen(true);
    Settle();
    EXPECT_EQ(Grab(m_frame)->GetHeight(), middle.size.cy);    // nothing but the middle
    m_frame.GetFramePeer()->SetFullScreen(false);
    Settle();
    EXPECT_LT(middle.size.cy, 590);
    EXPECT_EQ(Grab(m_frame)->GetHeight(), 600);
    middle.SetPeer(nullptr);
}

TEST_F(QtFrame, KeysGoToTheMiddleThenToTheFrameThenToMenus)
{
    CPainted middle;
    Show(&middle);
    IWindowSystem& system = GetWindowSystem();
    struct {
        const char* name;
        unsigned int key, state;
    } const rows[] = {
        {"letter", 'R', 0},
        {"with Ctrl and Shift", 'L', INPUT_CTRL | INPUT_SHIFT},
        {"numeric", VK_NUMPAD0 + 5, 0},
        {"numeric with Alt", VK_NUMPAD0 + 4, INPUT_ALT},
        {"numeric sign", VK_ADD, INPUT_CTRL},
        {"arrow", VK_LEFT, INPUT_SHIFT},
        {"tab", VK_TAB, 0},
        {"function", VK_F1, INPUT_SHIFT},
        {"delete", VK_DELETE, 0},
        {"escape", VK_ESCAPE, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_frame.keys.clear();
        m_frame.states.clear();
        middle.keys.clear();
        system.SendKey(row.key, row.state);
        EXPECT_EQ(middle.keys, std::vector<unsigned int>{row.key});
        EXPECT_EQ(m_frame.keys, std::vector<unsigned int>{row.key});
        EXPECT_EQ(m_frame.states, std::vector<unsigned int>{row.state});
        EXPECT_TRUE(middle.focus);    // Tab has not moved it
    }
    middle.used = 'R';
    m_frame.keys.clear();
    system.SendKey('R', 0);
    EXPECT_TRUE(m_frame.keys.empty());

    system.SendKey('F', INPUT_ALT);    // opens the menu, whose keys are its own
    Settle();
    EXPECT_EQ(m_frame.popups, 1);
    m_frame.keys.clear();
    system.SendKey('C', 0);
    Settle();
    EXPECT_EQ(m_frame.commands, std::vector<unsigned int>{102});
    EXPECT_TRUE(m_frame.keys.empty());
    EXPECT_EQ(m_frame.selected.back(), 0u);
    EXPECT_GT(m_frame.idles, 0);
    middle.SetPeer(nullptr);
}

TEST_F(QtFrame, ClosesOnceTheEventIsDone)
{
    CPainted middle;
    Show(&middle);
    bool alive = false;
    m_frame.onTimer = [&] {
        m_frame.PostClose();
        alive = m_frame.HasPeer();
    };
    m_frame.SetTimer(TIMER, 1);
    EXPECT_EQ(GetWindowSystem().Run(), 0);
    EXPECT_TRUE(alive);
    EXPECT_FALSE(m_frame.HasPeer());
    middle.SetPeer(nullptr);
}

// A view without a window of its own draws off screen, also when the window outgrows what it drew on.
TEST_F(QtFrame, ShowsAScene)
{
    C3DScene* const scene = C3DScene::Create();
    scene->AddNode(nullptr, CreateCube({0, 0, 0}, 2, 2, 2, false, 0, 0));
    C3DView view;
    Show(&view);
    view.SetBackgroundColor(10, 20, 30);
    view.SetScene(scene, GLSET_FIT);
    GlViewSettings settings;
    settings.changeMask = GLSET_UPDATE | GLSET_FIT | GLSET_VIEW_FLAGS;
    settings.viewFlags = VIEWFLAG_SMOOTH;
    view.SetViewSettings(&settings);
    for (const int side : {600, 1000, 300}) {
        SCOPED_TRACE(side);
        m_frame.GetFramePeer()->SetPlacement({{0, 0, side, side}, false});
        Settle();
        const std::unique_ptr<Bitmap> picture = Grab(view);
        ASSERT_TRUE(picture);
        EXPECT_TRUE(Is(*picture, 1, 1, 10, 20, 30));
        EXPECT_TRUE(Is(*picture, picture->GetWidth() - 2, picture->GetHeight() - 2, 10, 20, 30));
        EXPECT_FALSE(Is(*picture, picture->GetWidth() / 2, picture->GetHeight() / 2, 10, 20, 30));
    }
    view.SetScene(nullptr, 0);
    view.SetPeer(nullptr);
    DeleteMe(scene);
}

namespace {

class CTestTree : public CCustomTree {
public:
    int selections = 0;
    HTREEITEM opened = nullptr;

    void SelectionChange(HTREEITEM, int) override { selections++; }
    void OnMultiSelectionChanged() override { selections++; }
    void DoubleClick(HTREEITEM item, unsigned int) override { opened = item; }
};

}

TEST_F(QtFrame, ATreeInAPaneFollowsItsEntries)
{
    CPainted middle;
    Show(&middle);
    CTestTree tree;
    tree.SetMode(CCustomTree::TREE_CHECKS | CCustomTree::TREE_SEVERAL);
    CCustomDockablePane pane;
    pane.SetPaneTitle(L"Objects");
    pane.SetContent(&tree);
    m_frame.GetFramePeer()->AttachPane(2, &pane, DOCK_LEFT, true);
    ASSERT_TRUE(tree.HasPeer());

    constexpr int GROUPS = 100, EACH = 1000;
    tree.LockTree();
    for (int i = 0; i < GROUPS; i++) {
        const HTREEITEM group = tree.InsertItem(L"Group", nullptr, nullptr, 9010);
        for (int k = 0; k < EACH; k++)
            tree.InsertItem(L"Node", nullptr, group, 9008);
        group->open = i == 0;
    }
    tree.UnlockTree();
    tree.SetFocus();
    Settle();
    EXPECT_TRUE(m_frame.GetFramePeer()->IsPaneShown(2));

    IWindowSystem& system = GetWindowSystem();
    const HTREEITEM first = tree.GetRoot()->children[0].get();
    system.SendKey(VK_HOME, 0);
    system.SendKey(VK_DOWN, 0);
    EXPECT_EQ(tree.GetSelectedItems(), std::vector<HTREEITEM>{first->children[0].get()});
    system.SendKey(VK_SPACE, 0);
    EXPECT_FALSE(tree.IsCheck(first->children[0].get()));
    system.SendKey(VK_DOWN, INPUT_SHIFT);
    EXPECT_EQ(tree.GetSelectedItems().size(), 2u);
    system.SendKey(VK_RETURN, 0);
    EXPECT_EQ(tree.opened, first->children[1].get());
    EXPECT_TRUE(m_frame.keys.empty());    // keys that move are the tree's
    system.SendKey('R', 0);
    EXPECT_EQ(m_frame.keys, std::vector<unsigned int>{'R'});

    // The program's changes show, and come back as no event.
    const int heard = tree.selections;
    tree.SelectItem(first, true, false);
    system.SendKey(VK_UP, 0);    // from the entry that is current
    EXPECT_EQ(tree.GetSelectedItems(), std::vector<HTREEITEM>{first->children[0].get()});
    EXPECT_EQ(tree.selections, heard + 1);
    tree.DeleteItem(first);
    Settle();
    system.SendKey(VK_HOME, 0);
    system.SendKey(VK_END, 0);
    EXPECT_EQ(tree.GetSelectedItems(), std::vector<HTREEITEM>{tree.GetRoot()->children.back().get()});
    system.SendKey(VK_LEFT, 0);
    tree.SelectAll(true);
    Settle();

    m_frame.GetFramePeer()->ShowPane(2, false);
    EXPECT_FALSE(m_frame.GetFramePeer()->IsPaneShown(2));
    m_frame.GetFramePeer()->DetachPane(2);
    tree.SetPeer(nullptr);
    pane.SetPeer(nullptr);
    middle.SetPeer(nullptr);
}

namespace {

class CNumbers : public CCustomList {
public:
    mutable int asked = 0;
    int activated = -1;

    CXTString<wchar_t> GetCellText(int row, int column) const override
    {
        asked++;
        Text text;
        text.FormatString(L"%d/%d", row, column);
        return text;
    }
    void OnRowActivated(int row) override { activated = row; }
};

}

TEST_F(QtFrame, AListAsksForWhatIsOnScreen)
{
    constexpr int ROWS = 3000000;
    CNumbers list;
    list.SetColumns({{L"Number", 80}, {L"Value", 0}});
    list.SetRowCount(ROWS);
    list.SetParent(&m_frame);
    ASSERT_TRUE(GetWindowSystem().CreateListPeer(&list, &m_frame));
    m_frame.GetFramePeer()->SetCentralWindow(&list);
    m_frame.Show(true);
    list.SetFocus();
    Settle();
    EXPECT_GT(list.asked, 10);
    EXPECT_LT(list.asked, 1000);
    IWindowSystem& system = GetWindowSystem();
    system.SendKey(VK_END, 0);
    EXPECT_EQ(list.GetSelectedRows(), std::vector<int>{ROWS - 1});
    system.SendKey(VK_UP, INPUT_SHIFT);
    EXPECT_EQ(list.GetSelectedRows(), (std::vector<int>{ROWS - 2, ROWS - 1}));
    system.SendKey(VK_RETURN, 0);
    EXPECT_EQ(list.activated, ROWS - 2);
    system.SendKey('C', INPUT_CTRL);
    Text copied;
    EXPECT_TRUE(system.GetClipboardText(copied));
    EXPECT_EQ(copied, Text(L"2999998/0\t2999998/1\t\r\n2999999/0\t2999999/1\t\r\n"));
    EXPECT_LT(list.asked, 3000);
    list.SetPeer(nullptr);
}

namespace {

class CTestPage : public CDialogTable {
public:
    std::vector<unsigned int> changed;
    int sliderEnds = 0, oks = 0, applies = 0;
    bool accepts = true;

    void OnControl(unsigned int id) override
    {
        changed.push_back(id);
        if (id == 1)
            Find(5)->value = Find(1)->checked ? L"on" : L"off";
        if (id == 9)
            Find(2)->enabled = false;
    }
    void OnSliderEnd(unsigned int) override { sliderEnds++; }
    bool OnOk() override
    {
        oks++;
        return accepts;
    }
    bool OnApply() override
    {
        applies++;
        return true;
    }
};

}

// By the keyboard alone: each control is reached in its order, and by its access key.
TEST_F(QtFrame, ADialogIsDrivenByKeys)
{
    CPainted middle;
    Show(&middle);
    IWindowSystem& system = GetWindowSystem();
    CTestPage first, second;
    first.title = L"First";
    second.title = L"Second";
    first.hasApply = true;
    first.Add(CONTROL_GROUP, 0, L"Group");
    first.Add(CONTROL_CHECK, 1, L"&Check");
    first.Add(CONTROL_RADIO, 2, L"One").group = 1;
    first.Add(CONTROL_RADIO, 3, L"&Two", true).group = 1;
    first.Find(2)->checked = true;
    first.Add(CONTROL_EDIT, 5, L"&Name").value = L"off";
    CControl& slider = first.Add(CONTROL_SLIDER, 6, L"An&gle");
    slider.maximum = 180;
    slider.number = 30;
    CControl& spin = first.Add(CONTROL_SPIN, 7, L"&Steps");
    spin.minimum = 1;
    spin.maximum = 8;
    spin.number = 7;
    CControl& combo = first.Add(CONTROL_COMBO, 8, L"&Unit");
    combo.items = {L"m", L"cm"};
    combo.selected = 0;
    first.Add(CONTROL_BUTTON, 9, L"&Press", true);
    CNumbers table;
    table.SetColumns({{L"Number", 0}});
    table.SetRowCount(5);
    second.Add(CONTROL_TABLE, 20, Text()).table = &table;

    bool refused = false;
    m_frame.onTimer = [&] {
        const auto press = [&](unsigned int key) {    // a button shows for a moment that it is pressed
            system.SendKey(key, INPUT_ALT);
            Settle(150);
        };
        press('C');
        EXPECT_TRUE(first.Find(1)->checked);
        EXPECT_EQ(first.Find(5)->value, Text(L"on"));
        system.SendKey(VK_TAB, 0);    // a group of radio buttons is one stop or one each
        press('T');
        EXPECT_TRUE(first.Find(3)->checked && !first.Find(2)->checked);
        system.SendKey('N', INPUT_ALT);
        system.SendKey(VK_END, 0);
        system.SendKey('Q', 0);
        EXPECT_EQ(first.Find(5)->value, Text(L"onq"));    // what a handler wrote is in the field
        system.SendKey(VK_TAB, 0);
        system.SendKey(VK_RIGHT, 0);
        EXPECT_EQ(first.Find(6)->number, 31);
        EXPECT_EQ(first.sliderEnds, 1);
        system.SendKey(VK_TAB, 0);
        system.SendKey(VK_UP, 0);
        system.SendKey(VK_UP, 0);
        EXPECT_EQ(first.Find(7)->number, 8);    // not beyond
        system.SendKey('U', INPUT_ALT);
        system.SendKey(VK_DOWN, 0);
        EXPECT_EQ(first.Find(8)->selected, 1);
        press('P');
        EXPECT_EQ(first.changed.empty() ? 0 : first.changed.back(), 9u);
        EXPECT_FALSE(first.Find(2)->enabled);
        press('A');
        EXPECT_EQ(first.applies, 1);
        ASSERT_EQ(system.GetShownQuestions().size(), 1u);
        EXPECT_EQ(system.GetShownQuestions()[0].pages.size(), 2u);
        EXPECT_TRUE(system.AnswerQuestion(L"6=90"));
        EXPECT_FALSE(system.AnswerQuestion(L"6=181"));
        second.accepts = false;
        system.SendKey(VK_RETURN, 0);
        refused = system.GetShownQuestions().size() == 1;
        second.accepts = true;
        system.SendKey(VK_RETURN, 0);
        system.AnswerQuestion(L"cancel");    // or a fault above would wait for ever
    };
    m_frame.SetTimer(TIMER, 1);
    EXPECT_TRUE(RunDialog(&m_frame, L"Sheet", {&first, &second}));
    EXPECT_TRUE(refused);
    EXPECT_EQ(first.oks, 2);
    EXPECT_EQ(first.Find(6)->number, 90);
    EXPECT_FALSE(table.HasPeer());
    EXPECT_TRUE(m_frame.keys.empty());    // a dialog's keys are its own

    m_frame.onTimer = [&] { system.SendKey(VK_ESCAPE, 0); };
    m_frame.SetTimer(TIMER, 1);
    EXPECT_FALSE(RunDialog(&m_frame, L"Sheet", {&second}));
    middle.SetPeer(nullptr);
}

TEST_F(QtFrame, QuestionsAreAnsweredAndNoticesRemembered)
{
    CPainted middle;
    Show(&middle);
    IWindowSystem& system = GetWindowSystem();
    const auto answerBy = [&](const Text& answer) {
        m_frame.onTimer = [&system, answer] {
            EXPECT_EQ(system.GetShownQuestions().size(), 1u);
            EXPECT_TRUE(system.AnswerQuestion(answer));
        };
        m_frame.SetTimer(TIMER, 1);
    };
    answerBy(L"no");
    EXPECT_EQ(system.ShowMessage(&m_frame, L"Title", L"Save?", MESSAGE_YES_NO_CANCEL), ANSWER_NO);
    answerBy(L"cancel");
    EXPECT_EQ(system.ShowMessage(&m_frame, L"Title", L"Save?", MESSAGE_YES_NO_CANCEL), ANSWER_CANCEL);
    CCustomMenu menu;
    menu.AddItem(5, L"&First");
    menu.AddItem(6, L"Grey", false);
    answerBy(L"First");
    EXPECT_EQ(system.TrackPopup(&m_frame, menu, {100, 100}), 5u);
    CFileDialogRequest request;
    request.filters = {{L"Scene (*.3d)", {L"*.3d"}, 77}};
    request.filter = 77;
    answerBy(L"/tmp/a.3d\n/tmp/b.3d");
    std::vector<CFileNameSpec> chosen;
    ASSERT_TRUE(system.ChooseFiles(&m_frame, request, chosen));
    ASSERT_EQ(chosen.size(), 2u);
    EXPECT_EQ(chosen[1].GetFullName(), Text(L"/tmp/b.3d"));
    EXPECT_EQ(chosen[1].GetGivenClass(), 77u);
    answerBy(L"ok");
    system.ShowReport(&m_frame, L"Report", L"F1\tHelp\tShows <k>F1</k>\n");

    EXPECT_TRUE(system.ShowNotice(&m_frame, 2007, 10, L"Title", L"<b>Text</b>"));
    Settle(50);
    middle.SetPeer(nullptr);
}

TEST_F(QtFrame, ProgressShowsLateAndCancels)
{
    CPainted middle;
    Show(&middle);
    IWindowSystem& system = GetWindowSystem();
    int ticks = 0;
    m_frame.onTimer = [&] {
        ticks++;
        m_frame.SetTimer(TIMER, 20);
        system.SendKey(VK_ESCAPE, 0);    // to the progress window, once it is there; no other window gets a key
    };
    m_frame.SetTimer(TIMER, 20);
    const std::unique_ptr<IProgressSink> progress(system.CreateProgress(&m_frame, L"Reading"));
    ASSERT_TRUE(progress);
    const auto start = std::chrono::steady_clock::now();
    while (progress->OnProgress(L"house.ifc", 0.5) && std::chrono::steady_clock::now() - start < std::chrono::seconds(3))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(290));
    EXPECT_LT(passed, std::chrono::seconds(2));
    EXPECT_FALSE(progress->OnProgress(L"house.ifc", 0.6));
    EXPECT_GT(ticks, 3);    // the other windows live
    EXPECT_TRUE(m_frame.keys.empty() && middle.keys.empty());
    m_frame.KillTimer(TIMER);
    middle.SetPeer(nullptr);
}
