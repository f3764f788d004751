// The lists of objects and of materials beside the view.

#include "geometry/3DPointList.h"
#include "geometry/FaceList.h"
#include "render/RenderElement.h"
#include "scene/Curve.h"
#include "scene/GeomObject.h"
#include "scene/Group.h"
#include "viewer/CommandCase.h"
#include "viewer/MaterialTree.h"
#include "viewer/ObjectTree.h"
#include "viewer/Panels.h"

namespace {

/// Counts what the frame tells.
class CCounter : public C3DCallbackWnd {
public:
    CCounter() : C3DCallbackWnd(1) {}
    void NodeSelectionChanged() override { selection++; }
    void NodeDisplayChanged() override { display++; }

    int selection = 0, display = 0;
};

/// Without "c".
class CFilteredTree : public C3DObjectTree {
public:
    using C3DObjectTree::C3DObjectTree;
    bool CanAddNode(C3DSceneNode* node) override { return node->GetName() != L"c"; }
};

C3DSceneNode* AddNode(C3DScene& scene, C3DSceneNode* parent, C3DSceneNode* node, const wchar_t* name)
{
    node->SetName(name);
    scene.AddNode(parent, node);
    return node;
}

C3DSceneNode* CreateGroup()
{
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(new C3DGroup, true);
    return node;
}

C3DSceneNode* CreateBox(unsigned int material = 0) { return CreateCube({0, 0, 0}, 1, 1, 1, false, material, 0); }

/// a group with the cubes b and c, c with d below it; a group e with the group f with the cube g; the cube h.
class Trees : public CommandCase {
protected:
    void SetUp() override
    {
        CommandCase::SetUp();
        scene->RemoveAllNodes();
        C3DSceneNode* const a = AddNode(*scene, nullptr, CreateGroup(), L"a");
        AddNode(*scene, a, CreateBox(), L"b");
        C3DSceneNode* const c = AddNode(*scene, a, CreateBox(), L"c");
        AddNode(*scene, c, CreateBox(), L"d");
        C3DSceneNode* const f = AddNode(*scene, AddNode(*scene, nullptr, CreateGroup(), L"e"), CreateGroup(), L"f");
        AddNode(*scene, f, CreateBox(), L"g");
        AddNode(*scene, nullptr, CreateBox(), L"h");
        frame->SceneChanged(CHANGED_NODES, {}, true);
        frame->AddCallbackWnd(&counter, true);
    }
    void TearDown() override { frame->AddCallbackWnd(&counter, false); }

    C3DPanels& Panels() { return static_cast<C3DPanels&>(*frame->GetPanels()); }
    C3DObjectTree& Objects() { return static_cast<C3DObjectTree&>(*Panels().GetTree(PANEL_OBJECTS)); }
    C3DMaterialTree& Materials() { return static_cast<C3DMaterialTree&>(*Panels().GetTree(PANEL_MATERIALS)); }
    static HTREEITEM Item(CCustomTree& tree, const wchar_t* name)
    {
        HTREEITEM item = tree.GetNextItem(tree.GetRoot());
        while (item && item->text != name)
            item = tree.GetNextItem(item);
        return item;
    }
    HTREEITEM Item(const wchar_t* name) { return Item(Objects(), name); }
    C3DSceneNode* Node(const wchar_t* name) { return Objects().GetItemNode(Item(name)); }
    /// Names in the order of reading; in brackets what is below, then + checked, - unchecked, ? mixed, and * selected.
    static std::string Show(HTREEITEM item)
    {
        std::string text;
        for (const auto& child : item->children) {
            text += WideToUtf8(child->text) + (child->check == TREECHECK_CHECKED ? "+" : child->check == TREECHECK_MIXED ? "?" : "-");
            text += child->selected ? "*" : "";
            if (!child->children.empty())
                text += "(" + Show(child.get()) + ")";
        }
        return text;
    }
    std::string Show() { return Show(Objects().GetRoot()); }
    /// Letters of the nodes with the flag.
    std::string With(_SCENE_NODE_FLAGS flag)
    {
        std::string names;
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;)
            if (const C3DSceneNode* const node = scene->GetNextNode(pos); node->IsFlagSet(flag))
                names += WideToUtf8(node->GetName());
        return names;
    }
    /// Chooses the entry in the menu of a right click; its texts with those of popups before them.
    std::string Choose(CCustomTree& tree, unsigned int id)
    {
        std::string texts;
        windows.menuUsers.push_back([&](const CCustomMenu& shown) {
            for (const CMenuItem& item : shown.items) {
                texts += WideToUtf8(item.text) + ";";
                for (std::size_t i = 0; item.popup && i < item.popup->items.size(); i++)
                    texts += WideToUtf8(item.popup->items[i].text) + (item.popup->items[i].enabled ? ";" : "(off);");
            }
            return id;
        });
        tree.ShowRightMenu(nullptr, {0, 0});
        return texts;
    }

    CCounter counter;
};

}

TEST_F(Trees, ChecksOfObjects)
{
    // Faults in mind: a parent that is no group takes its children along; an outer group is computed before the inner one; the state of a
    // group is written into its members; each entry of many is a redraw of its own.
    EXPECT_EQ(Show(), "a+(b+c+(d+))e+(f+(g+))h+");
    Objects().UserCheck(Item(L"c"));
    EXPECT_EQ(Show(), "a?(b+c-(d+))e+(f+(g+))h+");
    Objects().UserCheck(Item(L"g"));
    EXPECT_EQ(Show(), "a?(b+c-(d+))e-(f-(g-))h+");
    EXPECT_EQ(With(NODE_HIDDEN), "cg");
    Objects().UserCheck(Item(L"a"));    // a mixed group shows all of it first
    Objects().UserCheck(Item(L"e"));
    EXPECT_EQ(With(NODE_HIDDEN), "");
    Objects().UserCheck(Item(L"a"));
    EXPECT_EQ(Show(), "a-(b-c-(d-))e+(f+(g+))h+");

    counter.display = 0;
    Choose(Objects(), 48010);    // invert
    EXPECT_EQ(Show(), "a+(b+c+(d+))e-(f-(g-))h-");
    Choose(Objects(), 48011);    // none
    EXPECT_EQ(With(NODE_HIDDEN), "abcdefgh");
    EXPECT_EQ(counter.display, 2);

    // What stands in a selected group isn't checked twice.
    scene->Select(Node(L"e"), C3DScene::SELECT_ADD);
    scene->Select(Node(L"g"), C3DScene::SELECT_ADD);
    scene->Select(Node(L"c"), C3DScene::SELECT_ADD);
    frame->NodeSelectionChanged();
    Choose(Objects(), 48012);
    EXPECT_EQ(Show(), "a?(b-c+*(d-))e+*(f+(g+*))h-");
    EXPECT_EQ(counter.display, 3);

    Run(FourCC("SWAL"));    // what commands show, the boxes say
    EXPECT_EQ(Show(), "a+(b+c+*(d+))e+*(f+(g+*))h+");
    Node(L"b")->SetFlag(NODE_HIDDEN, true);
    Node(L"b")->SetName(L"renamed");
    const HTREEITEM kept = Item(L"b");
    frame->SceneChanged(CHANGED_NODES, {Objects().GetItemNode(kept)}, true);
    EXPECT_EQ(Show(), "a?(renamed-c+*(d+))e+*(f+(g+*))h+");
    EXPECT_EQ(Item(L"renamed"), kept);
}

TEST_F(Trees, SelectionGoesBothWaysWithoutEcho)
{
    scene->Select(Node(L"g"), 0);
    frame->NodeSelectionChanged();
    EXPECT_EQ(counter.selection, 1);
    EXPECT_EQ(Objects().GetSelectedItems(), std::vector<HTREEITEM>{Item(L"g")});
    EXPECT_TRUE(Item(L"f")->open);    // so that it shows

    Objects().UserSelect({Item(L"c")});    // one comes, one goes
    EXPECT_EQ(With(NODE_SELECTED), "c");
    EXPECT_EQ(counter.selection, 2);
    windows.HoldKeys(INPUT_ALT);
    Objects().UserSelect({Item(L"c"), Item(L"e")});
    EXPECT_EQ(With(NODE_SELECTED), "cefg");
    Objects().UserSelect({Item(L"f"), Item(L"a")});
    EXPECT_EQ(With(NODE_SELECTED), "abcdfg");
    Objects().UserSelect({Item(L"b"), Item(L"c"), Item(L"d"), Item(L"f"), Item(L"g")});    // a goes with what is below
    EXPECT_EQ(With(NODE_SELECTED), "fg");
    windows.HoldKeys(0);

    Choose(Objects(), 48016);    // invert
    EXPECT_EQ(With(NODE_SELECTED), "abcdeh");
    Choose(Objects(), 48017);
    EXPECT_EQ(With(NODE_SELECTED), "");
    Choose(Objects(), 48015);
    EXPECT_EQ(With(NODE_SELECTED), "abcdefgh");
}

TEST_F(Trees, EntriesFollowNodesThatComeAndGo)
{
    const HTREEITEM custom = Objects().AddCustomItem(L"custom", 7, TREECHECK_UNCHECKED);
    Item(L"e")->open = true;
    frame->SceneChanged(CHANGED_NODES, {AddNode(*scene, Node(L"a"), CreateBox(), L"i")}, true);
    EXPECT_EQ(Show(), "custom-a+(b+c+(d+)i+)e+(f+(g+))h+");
    EXPECT_TRUE(Item(L"e")->open);
    EXPECT_EQ(Item(L"custom"), custom);
    EXPECT_EQ(Objects().GetCustomValue(custom), 7u);

    // Before the news of it, what leads to a node that is gone does nothing; another one may stand at its address.
    const HTREEITEM gone = Item(L"g"), group = Item(L"e");
    scene->RemoveNode(Node(L"e"), true);
    AddNode(*scene, nullptr, CreateBox(), L"j");
    AddNode(*scene, nullptr, CreateBox(), L"k");
    EXPECT_EQ(Objects().GetItemNode(gone), nullptr);
    Objects().DoubleClick(gone, TREEHIT_LABEL);
    Objects().UserCheck(group);
    Objects().UserSelect({gone, group});
    Choose(Objects(), 48015);
    frame->NodeSelectionChanged();
    frame->NodeDisplayChanged();
    EXPECT_EQ(With(NODE_HIDDEN), "");
    EXPECT_EQ(With(NODE_SELECTED), "abcdih");
    EXPECT_EQ(CountShown(L"dialog"), 0);
    Objects().DoubleClick(Item(L"b"), TREEHIT_LABEL);
    Objects().DoubleClick(Item(L"b"), TREEHIT_RIGHT);
    Objects().DoubleClick(custom, TREEHIT_LABEL);
    EXPECT_EQ(CountShown(L"dialog"), 1);
    frame->SceneChanged(CHANGED_NODES, {}, true);
    EXPECT_EQ(Show(), "custom-a+*(b+*c+*(d+*)i+*)h+*j+k+");

    CFilteredTree filtered(frame.get());
    filtered.SetMode(CCustomTree::TREE_CHECKS);
    filtered.SceneChanged(scene.get(), CHANGED_SCENE, {});
    EXPECT_EQ(Show(filtered.GetRoot()), "a+*(b+*i+*)h+*j+k+");

    const Owned<C3DScene> other(CreateCubes(2));
    frame->SetCurrentScene(other.get(), true);
    EXPECT_EQ(Show(), "custom-cube0+cube1+");
    // In the order of their table, which goes by ids of the process.
    const auto shown = Show(Materials().GetRoot());
    EXPECT_TRUE(shown == "paint0+paint1+" || shown == "paint1+paint0+") << shown;
    frame->RemoveFiles();
    EXPECT_EQ(Show(), "custom-");
    EXPECT_EQ(Materials().GetCount(), 0u);
}

TEST_F(Trees, AHundredThousandLevels)
{
    const Owned<C3DScene> deep(C3DScene::Create());
    C3DSceneNode* const last = AddNode(*deep, nullptr, CreateBox(), L"last");
    C3DSceneNode* top = last;
    for (int i = 1; i < 100'000; i++) {
        C3DSceneNode* const above = AddNode(*deep, nullptr, CreateGroup(), L"level");
        deep->MoveNode(top, above);
        top = above;
    }
    frame->SetCurrentScene(deep.get(), true);
    deep->Select(last, 0);
    frame->NodeSelectionChanged();
    EXPECT_EQ(Objects().GetSelectedItems(), std::vector<HTREEITEM>{Objects().FindItem(last)});
    Objects().UserCheck(Item(L"level"));
    EXPECT_TRUE(last->IsFlagSet(NODE_HIDDEN));
    Objects().UserCheck(Objects().FindItem(last));
    EXPECT_TRUE(Objects().IsCheck(Item(L"level")));
}

TEST_F(Trees, MaterialsHideFacesAndCurves)
{
    const Owned<C3DScene> painted(CreateCubes(3));
    C3DSceneNode* const line = C3DSceneNode::Create();
    C3DPointList* const points = new C3DPointList;
    points->SetSize(2);
    C3DCurve* const curve = new C3DCurve(points, nullptr, nullptr);
    curve->SetMaterialID(painted->GetMaterialByName(L"paint1")->GetMaterialID());
    line->SetObject(curve, true);
    AddNode(*painted, nullptr, line, L"line");
    frame->SetCurrentScene(painted.get(), true);
    C3DMaterialTree& tree = Materials();
    std::vector<C3DSceneNode*> cubes;
    for (C3DNodePos pos = painted->GetFirstNode(OBJECT_POLYGONAL); pos;)
        cubes.push_back(painted->GetNextNode(pos));
    const auto flags = [&](int cube) { return CFaceFlags(*cubes[static_cast<std::size_t>(cube)]->GetGeomObject()->GetFaceList()); };
    const auto hidden = [&] {
        std::string text;
        for (int i = 0; i < 3; i++)
            text += flags(i)[0] & VIEW_FACE_HIDDEN ? "-" : "+";
        return text + (line->IsFlagSet(NODE_HIDDEN) ? "-" : "+");
    };

    flags(0)[0] |= VIEW_FACE_HIDDEN;    // by hand
    tree.UserCheck(Item(tree, L"paint1"));
    EXPECT_EQ(hidden(), "--+-");
    EXPECT_EQ(Item(L"line")->check, TREECHECK_UNCHECKED);
    EXPECT_TRUE(painted->GetMaterialByName(L"paint1")->IsFlagSet(MATERIAL_HIDDEN));
    tree.UserCheck(Item(tree, L"paint1"));
    EXPECT_EQ(hidden(), "-+++");

    counter.display = 0;
    EXPECT_EQ(Choose(tree, 48004), "&Selection;Select &all;Select &none;&Invert selection;&Close materials list;");
    EXPECT_EQ(hidden(), "----");
    EXPECT_EQ(counter.display, 1);
    tree.UserCheck(Item(tree, L"paint2"));
    Choose(tree, 48006);
    EXPECT_EQ(hidden(), "++-+");

    // A new name keeps the entry; a material that came with nodes has one; one that is gone can't be reached.
    const HTREEITEM entry = Item(tree, L"paint2");
    C3DMaterial* const material = painted->GetMaterialByName(L"paint2");
    material->SetName(L"varnish");
    frame->SceneChanged(CHANGED_MATERIAL, {nullptr, material->GetMaterialID()}, true);
    EXPECT_EQ(Item(tree, L"varnish"), entry);
    painted->CreateNewMaterial(0xFFFFFFFF)->SetName(L"new");
    frame->SceneChanged(CHANGED_NODES, {}, true);
    EXPECT_TRUE(tree.IsCheck(Item(tree, L"new")));
    EXPECT_FALSE(tree.IsCheck(Item(tree, L"varnish")));
    painted->RemoveMaterial(painted->GetMaterialByName(L"new")->GetMaterialID());
    tree.UserCheck(Item(tree, L"new"));
    tree.DoubleClick(Item(tree, L"new"), TREEHIT_LABEL);
    EXPECT_EQ(CountShown(L"dialog"), 0);
}

TEST_F(Trees, MenusCloseThePanelsWhichStayAsTheyWere)
{
    EXPECT_EQ(Choose(Objects(), 0),
              "&Selection;Select &All;Select &None;&Invert Selection;&Display;Display &Selection(off);Display &All;Display &None;"
              "&Invert Display;&Close objects list;");
    frame->OnMenuSelect(48013);
    EXPECT_EQ(frame->GetHelpText(), L"Closes objects list");
    EXPECT_EQ(State(FourCC("SHOB")), CHECKED);
    Choose(Objects(), 48013);
    EXPECT_EQ(State(FourCC("SHOB")), ENABLED);
    Choose(Materials(), 48005);
    Run(FourCC("SHMA"));
    EXPECT_EQ(State(FourCC("SHMA")), CHECKED);

    frame->AddCallbackWnd(&counter, false);
    frame = std::make_unique<C3DFrameViewer>();
    frame->SetCurrentScene(scene.get(), true);    // before there is a window
    Open();
    EXPECT_FALSE(frame->IsPanelShown(PANEL_OBJECTS));
    EXPECT_TRUE(frame->IsPanelShown(PANEL_MATERIALS));
    EXPECT_EQ(Show(), "a+(b+c+(d+))e+(f+(g+))h+");
    Run(FourCC("SHOB"));
    EXPECT_TRUE(frame->IsPanelShown(PANEL_OBJECTS));
}
