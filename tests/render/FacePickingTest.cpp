#include <set>

#include "render/ViewCase.h"
#include "scene/GeomObject.h"

namespace {

using Faces = std::set<int>;

/// Seen from above: four squares of side 2 around the origin (left below, right below, right above, left above), and one that lies over the first.
struct Tiles {
    CStage stage;
    C3DSceneNode* const below =
        stage.AddMesh({{-2, -2, 0}, {0, -2, 0}, {2, -2, 0}, {-2, 0, 0}, {0, 0, 0}, {2, 0, 0}, {-2, 2, 0}, {0, 2, 0}, {2, 2, 0}},
                      {{0, 1, 4, 3}, {1, 2, 5, 4}, {4, 5, 8, 7}, {3, 4, 7, 6}});
    C3DSceneNode* const over = stage.AddSquare(-1, -1, 1);

    explicit Tiles(unsigned int flags = VIEWFLAG_FLAT)
    {
        stage.Settings().viewFlags = flags;
        stage.Show();
    }
    CPoint At(double x, double y)
    {
        const double scale = 64 / stage.View().GetViewSettings()->sceneSize;
        return {static_cast<int>(32 + x * scale), static_cast<int>(32 - y * scale)};
    }
    /// From corner to corner in the scene; the nodes found.
    std::vector<C3DSceneNode*> Band(double left, double bottom, double right, double top, GLSelectMode mode = GLSELECT_DEFAULT)
    {
        const CPoint from = At(left, top), to = At(right, bottom);
        CXArray<C3DSceneNode*> nodes;
        nodes.Add(nullptr);
        stage.View().SelectFacesFromRect(nodes, from.x, from.y, to.x - from.x, to.y - from.y, mode, VIEW_FACE_MARKED);
        return {nodes.begin(), nodes.end()};
    }
    unsigned int Click(double x, double y, GLSelectMode mode = GLSELECT_DEFAULT)
    {
        const CPoint at = At(x, y);
        CXArray<C3DSceneNode*> nodes;
        return stage.View().SelectFacesFromRect(nodes, at.x, at.y, 0, 0, mode, VIEW_FACE_MARKED);
    }
    static Faces Marked(const C3DSceneNode* node)
    {
        Faces faces;
        const C3DFaceList& list = *node->GetGeomObject()->GetFaceList();
        for (int i = 0; i < list.GetSize(); i++)
            if (list.IsFaceOneFlagSet(i, VIEW_FACE_MARKED))
                faces.insert(i);
        return faces;
    }
    void SetFlags(C3DSceneNode* node, unsigned int flags) { node->GetGeomObject()->GetFaceList()->SetFacesFlags(flags, true); }
};

}

TEST(FacePicking, AClickFindsWhatShowsThere)
{
    Tiles of;
    EXPECT_EQ(of.Click(-1, -1), 1U);
    EXPECT_EQ(Tiles::Marked(of.over), Faces{0});
    EXPECT_EQ(Tiles::Marked(of.below), Faces{});
    EXPECT_EQ(of.Click(1, 1), 1U);    // alone
    EXPECT_EQ(Tiles::Marked(of.over), Faces{});
    EXPECT_EQ(Tiles::Marked(of.below), Faces{2});
    of.Click(1, -1, GLSELECT_TOGGLE);
    EXPECT_EQ(Tiles::Marked(of.below), (Faces{1, 2}));
    of.Click(1, 1, GLSELECT_TOGGLE);
    EXPECT_EQ(Tiles::Marked(of.below), Faces{1});
    of.Band(-1, -1.5, 1, 1.5, GLSELECT_TOGGLE);    // adds those that are not
    EXPECT_EQ(Tiles::Marked(of.below), (Faces{1, 2, 3}));
    of.Band(1, -1.5, 1.5, 1.5, GLSELECT_TOGGLE);    // takes those that are all
    EXPECT_EQ(Tiles::Marked(of.below), Faces{3});
    of.Click(1, -1, GLSELECT_TOGGLE);
    of.Click(-1, 1, GLSELECT_TOGGLE);
    EXPECT_EQ(of.Click(2.6, 2.6, GLSELECT_TOGGLE), 0U);    // nothing is there
    EXPECT_EQ(Tiles::Marked(of.below), Faces{1});
    EXPECT_EQ(of.Click(2.6, 2.6), 0U);
    EXPECT_EQ(Tiles::Marked(of.below), Faces{});
}

TEST(FacePicking, ABandMarksWhatShowsInItOrInAWireframeAllThatReachIn)
{
    const struct {
        const char* name;
        unsigned int flags;
        double left, bottom, right, top;
        Faces below, over;
    } rows[] = {
        {"all", VIEWFLAG_FLAT, -2.5, -2.5, 2.5, 2.5, {1, 2, 3}, {0}},
        {"all, wires over the surface", VIEWFLAG_SMOOTH | VIEWFLAG_WIREFRAME, -2.5, -2.5, 2.5, 2.5, {1, 2, 3}, {0}},
        {"all wires", VIEWFLAG_WIREFRAME, -2.5, -2.5, 2.5, 2.5, {0, 1, 2, 3}, {0}},
        {"inside one", VIEWFLAG_FLAT, 0.5, 0.5, 1.5, 1.5, {2}, {}},
        {"inside one wire", VIEWFLAG_WIREFRAME, 0.5, 0.5, 1.5, 1.5, {2}, {}},
        {"over a border", VIEWFLAG_FLAT, -1, 0.5, 1, 1.5, {2, 3}, {}},
        {"over a wire", VIEWFLAG_WIREFRAME, -1, 0.5, 1, 1.5, {2, 3}, {}},
        {"beside", VIEWFLAG_WIREFRAME, 2.2, -2, 2.6, 2, {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Tiles of(row.flags);
        std::vector<C3DSceneNode*> nodes;
        if (!row.below.empty())
            nodes.push_back(of.below);
        if (!row.over.empty())
            nodes.push_back(of.over);
        EXPECT_EQ(of.Band(row.left, row.bottom, row.right, row.top), nodes);
        EXPECT_EQ(Tiles::Marked(of.below), row.below);
        EXPECT_EQ(Tiles::Marked(of.over), row.over);
    }
}

TEST(FacePicking, WhatIsNotDrawnNeitherCountsNorCovers)
{
    const struct {
        const char* name;
        unsigned int viewFlags;
        void (*change)(Tiles&);
    } rows[] = {
        {"hidden node", 0, [](Tiles& of) { of.over->SetFlag(NODE_HIDDEN, true); }},
        {"hidden face", 0, [](Tiles& of) { of.SetFlags(of.over, VIEW_FACE_HIDDEN); }},
        {"dead face", 0, [](Tiles& of) { of.SetFlags(of.over, FACE_INVALID); }},
        {"seen from behind", VIEWFLAG_CULL_BACK,
         [](Tiles& of) {
             C3DFace face;
             of.over->GetGeomObject()->GetFaceList()->GetFace(0, face);
             face.CFace::Flip();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Tiles of(VIEWFLAG_FLAT | row.viewFlags);
        row.change(of);
        EXPECT_EQ(of.Click(-1, -1), 1U);
        EXPECT_EQ(Tiles::Marked(of.below), Faces{0});
    }
}

TEST(FacePicking, MarksShowWhenTheViewIsToldTo)
{
    for (const unsigned int mode : {+VIEWFLAG_FLAT, +VIEWFLAG_SMOOTH, +VIEWFLAG_WIREFRAME}) {
        SCOPED_TRACE(mode);
        Tiles of(mode);
        of.stage.Settings().changeMask = GLSET_VIEW_FLAGS | GLSET_UPDATE;
        const auto red = [&] { return CountPixels(*Picture(of.stage.View().CreateBitmapFromScene()), IsRed); };
        of.Click(1, 1);
        of.stage.View().UpdateView(GLSET_UPDATE);
        EXPECT_EQ(red(), 0);
        of.stage.Settings().viewFlags |= VIEWFLAG_SHOW_SELECTED_FACES;
        of.stage.View().SetViewSettings(&of.stage.Settings());
        const int one = red();
        EXPECT_GT(one, 20);
        of.Click(-1, 1, GLSELECT_TOGGLE);
        of.stage.View().UpdateView(GLSET_UPDATE);
        EXPECT_GT(red(), one * 1.5);
        of.Click(2.6, 2.6);
        of.stage.View().UpdateView(GLSET_UPDATE);
        EXPECT_EQ(red(), 0);
    }
}
