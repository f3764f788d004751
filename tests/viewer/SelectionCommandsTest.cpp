// Selecting, hiding and deleting of nodes and of faces.

#include <cmath>
#include <numbers>
#include <string>

#include "geometry/3DFaceList.h"
#include "render/ViewCase.h"
#include "scene/GeomObject.h"
#include "viewer/CallbackWnd.h"
#include "viewer/CommandCase.h"
#include "viewer/InfoPages.h"

namespace {

constexpr unsigned int SELECT = FourCC("SELC"), FACES = FourCC("SLFC"), ALL = FourCC("SLAL"), NONE = FourCC("SLNN"),
                       INVERT = FourCC("SLIN"), RESELECT = FourCC("SLRE"), SHOW_ALL = FourCC("SWAL"), HIDE = FourCC("SWHD"),
                       SHOW_ONLY = FourCC("SWSL"), RESHOW = FourCC("SWRE"), DELETE_NODES = FourCC("DELN");
constexpr CPoint EMPTY{5, 5};

/// Counts what the frame tells.
class Counter : public C3DCallbackWnd {
public:
    Counter() : C3DCallbackWnd(1) {}
    void SceneChanged(C3DScene*, unsigned int what, const CSceneChangeData&) override { scene = what; }
    void NodeSelectionChanged() override { selection++; }
    void NodeDisplayChanged() override { display++; }

    unsigned int scene = 0;
    int selection = 0, display = 0;
};

/// Three cubes before the eye, a, b and c from the left.
class Selection : public CommandCase {
protected:
    void SetUp() override
    {
        CommandCase::SetUp();
        scene->RemoveAllNodes();
        for (int i = 0; i < 3; i++)
            scene->AddNode(nullptr, nodes[i] = CreateCube({4.0F * static_cast<float>(i) - 4, 0, 0}, 2, 2, 2, false, 0, 0));
        Run(FourCC("VFRO"));
        frame->UpdateView(GLSET_FIT | GLSET_FLUSH_ALL);
        frame->AddCallbackWnd(&counter, true);
    }
    /// The letters of the nodes with the flag.
    std::string With(_SCENE_NODE_FLAGS flag)
    {
        std::string letters;
        for (int i = 0; i < 3; i++)
            if (nodes[i] && nodes[i]->IsFlagSet(flag))
                letters += static_cast<char>('a' + i);
        return letters;
    }
    void Set(const std::string& selected, const std::string& hidden = "")
    {
        for (int i = 0; i < 3; i++) {
            nodes[i]->SetFlag(NODE_SELECTED, selected.find(static_cast<char>('a' + i)) != std::string::npos);
            nodes[i]->SetFlag(NODE_HIDDEN, hidden.find(static_cast<char>('a' + i)) != std::string::npos);
        }
        counter.selection = counter.display = 0;
        counter.scene = 0;
    }
    /// A point on the cube's face, pixels from its middle.
    CPoint On(int node, int dx = 0)
    {
        const GlViewSettings& settings = *View().GetViewSettings();
        const double half = std::tan(std::numbers::pi / 8) * -(settings.matrix.m[2][3] + 1);
        return {400 + static_cast<int>((4 * node - 4) / half * 300) + dx, 300};
    }
    std::vector<unsigned int> GetFaces(int node, unsigned int flags)
    {
        std::vector<unsigned int> faces;
        const C3DFaceList& list = *nodes[node]->GetGeomObject()->GetFaceList();
        for (int i = 0; i < list.GetSize(); i++)
            if (list.IsFaceOneFlagSet(i, flags))
                faces.push_back(i);
        return faces;
    }
    std::size_t CountFaces(unsigned int flags)
    {
        std::size_t count = 0;
        for (int i = 0; i < 3; i++)
            count += GetFaces(i, flags).size();
        return count;
    }

    C3DSceneNode* nodes[3]{};
    Counter counter;
};

}

TEST_F(Selection, AClickPicks)
{
    const struct {
        const char* name;
        std::string before;
        int hit;    // -1: nothing
        unsigned int keys;
        std::string after, reselected;
    } rows[] = {
        {"another node", "ab", 2, 0, "c", ""},
        {"one of the selection", "ab", 1, 0, "b", ""},
        {"nothing", "ab", -1, 0, "", "ab"},
        {"adding", "a", 1, INPUT_CTRL, "ab", ""},
        {"taking away", "ab", 1, INPUT_CTRL, "a", ""},
        {"taking away the only one", "b", 1, INPUT_CTRL, "", "b"},
        {"adding nothing", "ab", -1, INPUT_CTRL, "ab", ""},
    };
    for (const unsigned int command : {SELECT, FourCC("ROTA"), FourCC("MOVE"), FourCC("ZOOM")})
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name);
            Run(command);
            Set("c");
            Run(NONE);    // what is kept is c
            Set(row.before);
            windows.HoldKeys(row.keys);
            windows.Click(&View(), MOUSE_LEFT, row.hit < 0 ? EMPTY : On(row.hit));
            windows.HoldKeys(0);
            EXPECT_EQ(With(NODE_SELECTED), row.after);
            EXPECT_GE(counter.selection, 1);
            Run(RESELECT);
            EXPECT_EQ(With(NODE_SELECTED), row.reselected.empty() ? "c" : row.reselected);
        }
}

TEST_F(Selection, ADragPicksNothingAndADoubleClickShowsProperties)
{
    Set("a");
    windows.Drag(&View(), MOUSE_LEFT, {On(1), On(1, 1), On(1)});
    EXPECT_EQ(With(NODE_SELECTED), "a");
    Run(FourCC("VFRO"));
    std::vector<Text> types;
    for (int i = 0; i < 2; i++)
        windows.dialogUsers.push_back([&](const std::vector<CDialogTable*>& pages) {
            types.push_back(pages[0]->Find(INFO_OBJECT_TYPE)->value);
            return true;
        });
    windows.DoubleClick(&View(), MOUSE_LEFT, On(1));
    EXPECT_EQ(With(NODE_SELECTED), "b");
    windows.DoubleClick(&View(), MOUSE_LEFT, EMPTY);    // of the scene
    EXPECT_EQ(types, (std::vector<Text>{L"Polygonal object", L"Whole scene"}));
}

TEST_F(Selection, SelectionIsKeptUntilThereIsAnother)
{
    EXPECT_FALSE(State(RESELECT) & COMMAND_ENABLED);
    Set("", "b");
    Run(ALL);
    EXPECT_EQ(With(NODE_SELECTED), "ac");
    Run(INVERT);
    EXPECT_EQ(With(NODE_SELECTED), "b");
    Set("ac");
    Run(NONE);
    EXPECT_EQ(With(NODE_SELECTED), "");
    EXPECT_EQ(counter.selection, 1);
    Run(NONE);    // nothing to keep, nothing to tell
    EXPECT_EQ(counter.selection, 1);
    EXPECT_TRUE(State(RESELECT) & COMMAND_ENABLED);
    for (int i = 0; i < 2; i++) {
        Set("b");
        Run(RESELECT);
        EXPECT_EQ(With(NODE_SELECTED), "ac");
    }
    scene->RemoveNode(nodes[2], true);
    nodes[2] = nullptr;
    Run(NONE);
    Run(RESELECT);
    EXPECT_EQ(With(NODE_SELECTED), "a");
}

TEST_F(Selection, WhatIsHiddenComesBack)
{
    EXPECT_FALSE(State(HIDE) & COMMAND_ENABLED || State(SHOW_ONLY) & COMMAND_ENABLED || State(RESHOW) & COMMAND_ENABLED);
    Set("ab");
    EXPECT_TRUE(State(HIDE) & COMMAND_ENABLED && State(SHOW_ONLY) & COMMAND_ENABLED);
    Run(HIDE);
    EXPECT_EQ(With(NODE_HIDDEN), "ab");
    EXPECT_EQ(With(NODE_SELECTED), "");
    EXPECT_EQ(counter.selection, 1);
    EXPECT_EQ(counter.display, 1);
    EXPECT_TRUE(State(RESHOW) & COMMAND_ENABLED);
    scene->RemoveNode(nodes[1], true);
    Run(RESHOW);
    EXPECT_FALSE(nodes[0]->IsFlagSet(NODE_HIDDEN));
    EXPECT_TRUE(nodes[0]->IsFlagSet(NODE_SELECTED));    // as it was
    EXPECT_EQ(counter.display, 2);
    Run(RESHOW);    // it shows already
    EXPECT_EQ(counter.display, 2);

    nodes[1] = CreateCube({0, 0, 0}, 2, 2, 2, false, 0, 0);
    scene->AddNode(nullptr, nodes[1]);
    Set("b");
    Run(SHOW_ONLY);
    EXPECT_EQ(With(NODE_HIDDEN), "ac");
    EXPECT_EQ(With(NODE_SELECTED), "b");
    EXPECT_EQ(counter.selection, 0);
    nodes[1]->SetFlag(NODE_SELECTED, false);
    Run(RESHOW);
    EXPECT_EQ(With(NODE_HIDDEN), "");
    EXPECT_EQ(With(NODE_SELECTED), "");
    Set("abc");
    Run(SHOW_ONLY);    // there is nothing else
    EXPECT_EQ(counter.display, 0);
    Set("", "bc");
    Run(SHOW_ALL);
    EXPECT_EQ(With(NODE_HIDDEN), "");
    EXPECT_EQ(counter.display, 1);
}

TEST_F(Selection, DeletingTakesWhatIsSelected)
{
    EXPECT_FALSE(State(DELETE_NODES) & COMMAND_ENABLED);
    Set("ac");
    Run(NONE);
    Run(RESELECT);
    Run(DELETE_NODES);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 1);
    EXPECT_TRUE(counter.scene & CHANGED_NODES);
    Run(RESELECT);    // none of them is left
    EXPECT_FALSE(nodes[1]->IsFlagSet(NODE_SELECTED));
}

TEST_F(Selection, FacesAreMarkedByClickAndBand)
{
    Run(FACES);
    EXPECT_TRUE(View().GetViewFlag() & VIEWFLAG_SHOW_SELECTED_FACES);
    windows.Click(&View(), MOUSE_LEFT, On(1));
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 1U);
    const auto front = GetFaces(1, VIEW_FACE_MARKED);
    EXPECT_EQ(front.size(), 1U);
    windows.HoldKeys(INPUT_CTRL);
    windows.Drag(&View(), MOUSE_LEFT, {{799, 599}, {500, 400}, {-20, 0}});    // all that shows
    windows.HoldKeys(0);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(GetFaces(i, VIEW_FACE_MARKED).back(), front[0]) << i;
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 5U);    // of the outer cubes a side besides, and nothing that shows through at an outline
    EXPECT_EQ(With(NODE_SELECTED), "");
    windows.Drag(&View(), MOUSE_LEFT, {On(0, -5), On(0), On(0, 5)});    // in place of what was
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 1U);
    windows.Click(&View(), MOUSE_LEFT, EMPTY);
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 0U);
    windows.Click(&View(), MOUSE_LEFT, On(0));
    Run(NONE);
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 0U);
}

TEST_F(Selection, TheBandShowsWhileItIsDrawn)
{
    Run(FACES);
    const auto countDashes = [&] {
        EXPECT_EQ(View().CreateMemoryRendering(800, 600, 24), 1);
        View().SetScene(scene.get(), 0);
        View().UpdateView(0);
        const Picture picture(View().CreateBitmapFromScene());
        View().DeleteMemoryRendering();
        View().SetScene(scene.get(), 0);
        int count = 0;
        for (int x = 20; x <= 100; x++) {
            const unsigned char* const p = picture->GetLine(30) + x * 3;
            count += (p[0] == 255 && p[1] == 255 && p[2] == 255) || (p[0] == 0 && p[1] == 0 && p[2] == 0);
        }
        return count;
    };
    windows.PressMouse(&View(), MOUSE_LEFT, {100, 90});
    EXPECT_EQ(countDashes(), 0);
    windows.MoveMouse(&View(), {20, 30});
    EXPECT_EQ(countDashes(), 81);
    View().OnCaptureLost();
    EXPECT_EQ(countDashes(), 0);
    windows.ReleaseMouse(&View(), MOUSE_LEFT, {20, 30});
    EXPECT_EQ(CountFaces(VIEW_FACE_MARKED), 0U);
}

TEST_F(Selection, MarkedFacesAreHiddenShownAndDeleted)
{
    Set("a");    // does not count while faces are selected
    Run(FACES);
    windows.Click(&View(), MOUSE_LEFT, On(1));
    const auto front = GetFaces(1, VIEW_FACE_MARKED);
    ASSERT_EQ(front.size(), 1U);
    EXPECT_TRUE(State(HIDE) & COMMAND_ENABLED);
    Run(HIDE);
    EXPECT_EQ(GetFaces(1, VIEW_FACE_HIDDEN), front);
    EXPECT_EQ(With(NODE_HIDDEN), "");
    EXPECT_EQ(With(NODE_SELECTED), "a");
    Run(RESHOW);
    EXPECT_EQ(GetFaces(1, VIEW_FACE_HIDDEN).size(), 0U);
    EXPECT_EQ(GetFaces(1, VIEW_FACE_MARKED), front);
    Run(SHOW_ONLY);
    EXPECT_EQ(CountFaces(VIEW_FACE_HIDDEN), 17U);
    Run(SHOW_ALL);
    EXPECT_EQ(CountFaces(VIEW_FACE_HIDDEN), 0U);
    Run(DELETE_NODES);
    EXPECT_EQ(nodes[1]->GetGeomObject()->GetFaceNbr(), 5);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 3);
    EXPECT_TRUE(counter.scene & CHANGED_FACES_OF_SCENE);

    // With another command nodes come first.
    windows.Click(&View(), MOUSE_LEFT, On(2));
    Run(SELECT);
    Run(DELETE_NODES);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 2);
    nodes[0] = nullptr;
    EXPECT_EQ(GetFaces(2, VIEW_FACE_MARKED).size(), 1U);
    Run(DELETE_NODES);
    EXPECT_EQ(nodes[2]->GetGeomObject()->GetFaceNbr(), 5);

    nodes[2]->GetGeomObject()->GetFaceList()->SetFacesFlags(VIEW_FACE_MARKED, true);    // to the last
    Run(FACES);
    Run(DELETE_NODES);
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_ANY), 1);
}
