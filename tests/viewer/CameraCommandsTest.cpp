#include "scene/Camera.h"
#include "viewer/CommandCase.h"

namespace {

constexpr unsigned int NEXT = FourCC("NXCM"), PREVIOUS = FourCC("PVCM"), CREATE = FourCC("CTCM"), FLIP = FourCC("CPJM"),
                       CAMERA = FourCC("VWCM");

class CameraCommands : public CommandCase {
protected:
    C3DSceneNode* AddCamera(const wchar_t* name, float x)
    {
        C3DSceneNode* const node = C3DSceneNode::Create();
        node->SetObject(new C3DCamera, true);
        if (*name)
            node->SetName(name);
        C4x4TMatrix<float> place;
        place.SetTranslation(x, 0, 0);
        node->AddKey(0, C3DMatrixKey(place));
        scene->AddNode(nullptr, node);
        return node;
    }
    /// The camera looked through, as its id; the eye must stand there.
    int Current()
    {
        const int id = View().GetCurrentCameraId();
        const C3DSceneNode* const node = scene->GetNodeByID(static_cast<unsigned int>(id));
        if (node) {
            C4x4TMatrix<float> place;
            node->GetNodeTM(0, place, true);
            const C3DTVector<float> origin = place.GetTranslation();
            const C3DTPoint<double> eye = See({origin.x, origin.y, origin.z});
            EXPECT_NEAR(std::abs(eye.x) + std::abs(eye.y) + std::abs(eye.z), 0, 1e-4);
        }
        return id;
    }
    /// Where the eye sees a point of the scene.
    C3DTPoint<double> See(const C3DTPoint<double>& p)
    {
        const C3DTPoint<float>& c = View().GetViewSettings()->sceneCenter;
        return View().GetViewSettings()->matrix * C3DTPoint<double>(p.x - c.x, p.y - c.y, p.z - c.z);
    }
};

}

TEST_F(CameraCommands, NextAndPreviousGoRound)
{
    EXPECT_EQ(Run(NEXT), COMMAND_DONE);    // no camera
    EXPECT_EQ(Run(CAMERA), COMMAND_DECLINED);
    EXPECT_EQ(Current(), -1);
    Run(FourCC("VFRO"));
    int ids[3];
    for (int i = 0; i < 3; i++)
        ids[i] = static_cast<int>(AddCamera(L"", static_cast<float>(i))->GetNodeID());
    const struct {
        unsigned int command;
        int camera;
    } rows[] = {{PREVIOUS, 0}, {PREVIOUS, 2}, {PREVIOUS, 1}, {NEXT, 2}, {NEXT, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.command), COMMAND_DONE);
        EXPECT_EQ(Current(), ids[row.camera]);
    }
    EXPECT_EQ(State(FourCC("VFRO")), ENABLED);
    scene->RemoveNode(scene->GetNodeByID(static_cast<unsigned int>(ids[0])), true);
    Run(NEXT);    // the current one is gone
    EXPECT_EQ(Current(), ids[1]);
}

TEST_F(CameraCommands, ThePopupListsTheCamerasByName)
{
    OpenToolbarMenu(CAMERA, -1);
    ASSERT_EQ(menu.size(), 5u);
    EXPECT_FALSE(menu[0].enabled);
    EXPECT_FALSE(menu[1].enabled);
    EXPECT_TRUE(menu[2].enabled && menu[4].enabled);

    const C3DSceneNode* const salt = AddCamera(L"Salt & pepper", 1);
    AddCamera(L"door", 2);
    const C3DSceneNode* const unnamed = AddCamera(L"", 3);
    const CXTString<wchar_t> texts[] = {
        L"Next Camera", L"Previous Camera", L"Create Camera", L"---",           L"Perspective / Orthographic Projection",
        L"---",         L"Camera",          L"door",          L"Salt && pepper"};
    for (int place : {8, 6}) {
        OpenToolbarMenu(CAMERA, place);
        ASSERT_EQ(menu.size(), std::size(texts));
        for (std::size_t i = 0; i < menu.size(); i++) {
            EXPECT_EQ(menu[i].text, texts[i]);
            EXPECT_TRUE(menu[i].enabled);
        }
        EXPECT_EQ(Current(), static_cast<int>((place == 8 ? salt : unnamed)->GetNodeID()));
    }
    EXPECT_TRUE(windows.ChooseMenu(frame.get(), WindowsId(NEXT)));    // in the menu bar too
    EXPECT_EQ(Current(), static_cast<int>(salt->GetNodeID()));        // after the unnamed one, round the end
}

TEST_F(CameraCommands, ANewCameraLeavesThePictureAsItIs)
{
    // Faults in mind: the centre that the view turns about, or the root's transform, is left out; the camera is the view's own, not a copy.
    C4x4TMatrix<float> rootPlace;
    rootPlace.Scale(2, 2, 2);
    rootPlace.SetTranslation(30, -20, 10);
    scene->GetRoot()->AddKey(0, C3DMatrixKey(rootPlace));
    Run(FourCC("RSZO"));
    Run(FourCC("VRTK"));
    Run(FLIP);
    const C3DTPoint<double> points[] = {{0, 0, 0}, {36, -10, 24}, {-5, 8, 13}};
    C3DTPoint<double> before[3];
    for (int i = 0; i < 3; i++)
        before[i] = See(points[i]);
    const double zoom = View().GetViewSettings()->GetCurrentCamera()->GetZoom();

    for (const wchar_t* const name : {L"Camera 1", L"Camera 2"}) {
        EXPECT_EQ(Run(CREATE), COMMAND_DONE);
        C3DSceneNode* const node = scene->GetNodeByID(static_cast<unsigned int>(Current()));
        ASSERT_TRUE(node);
        EXPECT_EQ(node->GetName(), name);
        for (int i = 0; i < 3; i++) {
            const C3DTPoint<double> after = See(points[i]);
            for (int axis = 0; axis < 3; axis++)
                EXPECT_NEAR(after[axis], before[i][axis], 1e-4);
        }
        const C3DCamera* const camera = *node->GetBaseObject();
        EXPECT_EQ(camera->GetProjection(), CAMERA_ORTHOGRAPHIC);
        EXPECT_EQ(camera->GetZoom(), zoom);
        Run(FLIP);    // the view's own alone
        EXPECT_EQ(camera->GetProjection(), CAMERA_ORTHOGRAPHIC);
        EXPECT_FALSE(View().GetViewSettings()->IsOrthographic());
        Run(FLIP);
    }
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_CAMERA), 2);
    EXPECT_TRUE(frame->IsDocumentModified());
}
