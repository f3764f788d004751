// Views of one scene. None takes the news from another, and none wakes another.

#include <cstring>
#include <functional>

#include "images/2DIo.h"
#include "images/LayerBitmap.h"
#include "render/SceneBitmap.h"
#include "render/SteeredView.h"
#include "scene/Curve.h"
#include "scene/Patch.h"
#include "support/TempFolder.h"

namespace {

constexpr CRGBColor RED{255, 0, 0}, GREEN{0, 255, 0}, BLUE{0, 0, 255};

class CCountingView : public CSteeredView {
public:
    int flushed = 0;

    explicit CCountingView(C3DScene* scene, unsigned int flags = VIEWFLAG_SMOOTH | VIEWFLAG_TEXTURE | VIEWFLAG_TRANSPARENCY)
    {
        EXPECT_TRUE(CreateMemoryRendering(64, 64, 24));
        SetScene(scene, 0);
        SetCallbackData(&flushed);
        SetFlushCallback([](C3DSceneNode*, void* data) { ++*static_cast<int*>(data); });
        Change(GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_FIT | GLSET_UPDATE, [=](GlViewSettings& record) {
            record.viewFlags = flags;
            record.viewNumber = RVIEW_TOP;
        });
    }
    /// What is compiled anew for it.
    int Update()
    {
        return Flushed([this] { UpdateView(GLSET_UPDATE); });
    }
    int Flushed(auto&& work)
    {
        flushed = 0;
        work();
        return flushed;
    }
    Picture Draw() { return Picture(CreateBitmapFromScene()); }
};

bool AreEqual(const Picture& a, const Picture& b)
{
    for (int y = 0; y < 64; y++)
        if (std::memcmp(a->GetLine(y), b->GetLine(y), 64 * 3) != 0)
            return false;
    return true;
}

void SavePicture(const CXTString<wchar_t>& name, const CRGBColor& color)
{
    const Picture picture(rgbBitmap::Create(4, 4));
    for (int i = 0; i < 16; i++)
        std::copy_n(color.ValPtr(), 3, picture->GetLine(i / 4) + i % 4 * 3);
    C2DIo file(CFileNameSpec(name), 0, nullptr);
    ASSERT_EQ(file.Save(picture.get()), IORESULT_OK);
}

/// A square with a picture, a cube, a ball that is a patch, and a ground that keeps the scene's box as it is.
struct News {
    TempFolder folder;
    Owned<C3DScene> scene{C3DScene::Create()};
    C3DMaterial& material = *scene->CreateNewMaterial(5);
    C3DMaterial& textured = *scene->CreateNewMaterial(6);
    C3DSceneNode *square, *cube, *ball;
    unsigned int told = 0;    ///< material of which the first view is told

    News()
    {
        material.SetDiffuseColor(0, GREEN);
        for (const auto& [name, color] : {std::pair{"red.png", RED}, std::pair{"blue.png", BLUE}})
            SavePicture(folder.Wide(name), color);
        textured.AddMaterialMap(folder.Wide("red.png"), 1, MAP_DIFFUSE, PROJECTION_UVW);
        Add(CreatePlane({0, 0, -2}, {0, 0, 1}, 10, 10, 1, 1, false, 0, 0));
        square = Add(CreatePlane({-3, 0, 0}, {0, 0, 1}, 2, 2, 1, 1, true, 6, 1));
        cube = Add(CreateCube({0, 0, 0}, 2, 2, 2, false, 5, 0));
        Mesh mesh = Cube();
        auto* const patch = new C3DPatch(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr);
        patch->SetLevel(0);
        ball = C3DSceneNode::Create();
        ball->SetObject(patch, true);
        Add(ball);
        static_cast<C3DMatrixKey*>(ball->CreateKey(0, KEY_MATRIX, 0))->SetMatrix(Moved(3, 0, 0));
    }
    static C4x4TMatrix<float> Moved(float x, float y, float z)
    {
        C4x4TMatrix<float> matrix;
        matrix.SetTranslation(x, y, z);
        return matrix;
    }
    C3DSceneNode* Add(C3DSceneNode* node)
    {
        scene->AddNode(nullptr, node);
        return node;
    }
    void Tell(C3DMaterial& of, unsigned int news)
    {
        of.SetFlags(news, true);
        told = of.GetMaterialID();
    }
};

}

TEST(SeveralViews, EachShowsWhatChanged)
{
    // Faults in mind: a view that comes first clears the flags by which others would know; a thumbnail does; what is compared stands for an object
    // that is no more; a new object, which has no news, is never compiled.
    struct {
        const char* name;
        std::function<void(News&)> change;
    } const rows[] = {
        {"points",
         [](News& of) {
             of.cube->GetGeomObject()->GetPointList()->ElementAt(0)->x -= 1;
             of.cube->GetBaseObject()->Invalidate(CHANGE_POINTS, true);
         }},
        {"a colour that is told",
         [](News& of) {
             of.material.SetDiffuseColor(0, BLUE);
             of.Tell(of.material, MATERIAL_COLOR_CHANGED);
         }},
        {"a colour that is not", [](News& of) { of.material.SetDiffuseColor(0, BLUE); }},
        {"transparency", [](News& of) { of.material.SetTransparencyFactor(0, 0.5f); }},
        {"all of a material", [](News& of) { of.material = of.textured; }},
        {"a texture",
         [](News& of) {
             of.textured.GetDiffuseMaps()->SetFileName(of.folder.Wide("blue.png"), L"");
             of.Tell(of.textured, MATERIAL_TEXTURE_CHANGED);
         }},
        {"an image that is read again",
         [](News& of) {
             of.textured.GetDiffuseMaps()->SetFileName(of.folder.Wide("blue.png"), L"");
             of.Tell(of.textured, MATERIAL_IMAGES_CHANGED);
         }},
        {"faces in a new material",
         [](News& of) {
             C3DMaterial& fresh = *of.scene->CreateNewMaterial(7);
             fresh.AddMaterialMap(of.folder.Wide("blue.png"), 1, MAP_DIFFUSE, PROJECTION_UVW);
             of.square->GetGeomObject()->ReplaceMaterial(6, 7);
         }},
        {"a hidden node", [](News& of) { of.cube->SetFlag(NODE_HIDDEN, true); }},
        {"a node that is gone", [](News& of) { of.scene->DeleteNode(of.cube); }},
        {"a new node",
         [](News& of) {
             of.Add(CreateCube({0, 4, 0}, 1, 1, 1, false, 5, 0));
         }},
        {"an instance",
         [](News& of) {
             C3DSceneNode* const instance = of.scene->CreateInstance(of.cube);
             static_cast<C3DMatrixKey*>(instance->CreateKey(0, KEY_MATRIX, 0))->SetMatrix(News::Moved(0, 4, 0));
             of.Add(instance);
         }},
        {"another object in a node",
         [](News& of) {
             C3DSceneNode* const other = CreateCube({0, 0, 0}, 1, 1, 1, false, 5, 0);
             of.cube->SetObject(other->GetBaseObject()->Copy(0, nullptr), true);
             other->Delete();
         }},
        {"the level of a patch", [](News& of) { static_cast<C3DPatch*>(*of.ball->GetBaseObject())->SetLevel(3); }},
        {"wires alone", [](News& of) { of.cube->GetBaseObject()->SetFlag(OBJECT_WIREFRAME_ONLY, true); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        News of;
        CCountingView told(of.scene.get()), other(of.scene.get());
        const Picture before = other.Draw();
        EXPECT_TRUE(AreEqual(before, told.Draw()));
        row.change(of);
        if (of.told)
            told.MaterialChanged(of.told);
        told.Update();
        const std::unique_ptr<CLayerBitmap> thumbnail(GetBitmapFromScene(of.scene.get(), *told.GetViewSettings(), {16, 16}));
        EXPECT_TRUE(thumbnail);
        other.Update();
        const Picture after = other.Draw(), truth = CCountingView(of.scene.get()).Draw();
        EXPECT_FALSE(AreEqual(before, after));
        EXPECT_TRUE(AreEqual(truth, after));
        EXPECT_TRUE(AreEqual(truth, told.Draw()));

        EXPECT_EQ(told.Update() + other.Update(), 0) << "news that was dealt with is none";
    }
}

TEST(SeveralViews, CompileWhatChangedOnceAndNoMore)
{
    News of;
    CCountingView first(of.scene.get()), second(of.scene.get());
    C3DBaseObject& object = *of.cube->GetBaseObject();
    const auto both = [&] { return std::pair(first.Update(), second.Update()); };
    EXPECT_EQ(both(), std::pair(0, 0));
    object.Invalidate(CHANGE_POINTS, true);
    EXPECT_EQ(both(), std::pair(1, 1));
    EXPECT_EQ(both(), std::pair(0, 0));
    object.Invalidate(CHANGE_POINTS, true);
    first.FlushNode(of.cube);    // has its lists, old as they are, and takes the flag away
    EXPECT_EQ(both(), std::pair(1, 1));
    of.scene->CreateNewMaterial(9);    // nobody uses it
    EXPECT_EQ(both(), std::pair(0, 0));
    of.material.SetDiffuseColor(0, GREEN);    // as it is
    EXPECT_EQ(both(), std::pair(0, 0));
    of.material.SetFlags(MATERIAL_NAME_CHANGED, true);
    EXPECT_EQ(both(), std::pair(0, 0));
    of.Add(of.scene->CreateInstance(of.cube));
    EXPECT_EQ(both(), std::pair(0, 0));

    // What a host has taken out of the view comes back when it changes.
    first.RemoveNode(of.cube);
    of.square->GetBaseObject()->Invalidate(OBJECT_UPDATE_DISPLAY, true);
    EXPECT_EQ(both(), std::pair(1, 1));
    object.Invalidate(OBJECT_UPDATE_DISPLAY, true);
    EXPECT_EQ(both(), std::pair(1, 1));

    // Lists go with the last node of their object.
    object.AddRef();
    const Owned<C3DBaseObject> held(&object);
    EXPECT_TRUE(first.HasCallList(&object));
    of.scene->DeleteNode(of.cube);
    first.Update();
    EXPECT_TRUE(first.HasCallList(&object)) << "the instance has it";
    of.scene->RemoveAllNodes();
    first.Update();
    EXPECT_FALSE(first.HasCallList(&object));
}

TEST(SeveralViews, ColoursOfTheSettingsShowAtOnce)
{
    enum Host { NONE, FACES };
    for (const Host host : {NONE, FACES})
        for (const bool isWire : {true, false}) {
            SCOPED_TRACE(testing::Message() << host << ' ' << isWire);
            Owned<C3DScene> scene(C3DScene::Create());
            Mesh line = MakeMesh({{-1, -1, 0}, {0, 0, 0}, {1, 1, 0}}, {});
            for (int i = 0; i < 3; i++)
                line.points->ElementAt(i)->SetFlags(VIEW_POINT_SELECTED, true);
            C3DSceneNode* const node = isWire ? CreateCube({0, 0, 0}, 2, 2, 2, false, 0, 0) : C3DSceneNode::Create();
            if (!isWire)
                node->SetObject(new C3DCurve(std::exchange(line.points, nullptr), nullptr, nullptr), true);
            scene->AddNode(nullptr, node);
            CCountingView view(scene.get(), VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME);
            view.SetFlushCallback(nullptr);
            if (host == FACES)
                view.SetFaceCallback([](_RenderElement*) { return FACE_RESULT_NORMAL; });
            view.UpdateView(GLSET_FLUSH_ALL | GLSET_FIT);
            EXPECT_GT(CountPixels(*view.Draw(), IsRed), 20);
            view.Change((isWire ? GLSET_WIREFRAME_COLOR : GLSET_SELECTION_COLOR) | GLSET_UPDATE,
                        [](GlViewSettings& record) { record.wireframeColor = record.selectionColor = BLUE; });
            EXPECT_EQ(CountPixels(*view.Draw(), IsRed), 0);
            EXPECT_GT(CountPixels(*view.Draw(), IsBlue), 20);
        }
}
