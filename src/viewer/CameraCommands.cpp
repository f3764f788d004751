#include "viewer/CameraCommands.h"

#include <algorithm>
#include <set>

#include "geometry/Quaternion.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Camera.h"
#include "tools/FormatText.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "windows/Menu.h"

static constexpr unsigned int NEXT = FourCC("NXCM"), PREVIOUS = FourCC("PVCM"), CREATE = FourCC("CTCM"), PROJECTION = FourCC("CPJM");

/// Cameras of the scene, in the order of its walk.
static std::vector<C3DSceneNode*> GetCameras(const C3DScene* scene)
{
    std::vector<C3DSceneNode*> cameras;
    if (scene)
        for (C3DNodePos pos = scene->GetFirstNode(OBJECT_CAMERA); pos;)
            cameras.push_back(scene->GetNextNode(pos));
    return cameras;
}

static bool LookThrough(C3DView* view, C3DSceneNode* camera)
{
    if (!view || !view->LoadCamera(camera))
        return false;
    GlViewSettings settings;    // a point of view of its own, no longer the one with a number
    settings.changeMask = GLSET_MATRIX | GLSET_UPDATE;
    settings.matrix = view->GetViewSettings()->matrix;
    view->SetViewSettings(&settings);
    return true;
}

// One camera by its node

C3DViewCameraCommand::C3DViewCameraCommand() : C3DCommand(FourCC("VWCM")) {}

CommandResult C3DViewCameraCommand::OnApplyCommand(C3DScene* scene)
{
    unsigned int id;
    C3DSceneNode* const camera =
        GetCustomData().GetUnsigned(DATA_CAMERA_ID, id) ? scene->GetNodeByID(id) : scene->GetFirstNode(OBJECT_CAMERA).GetNode();
    return LookThrough(GetViewer(), camera) ? COMMAND_DONE : COMMAND_DECLINED;
}

static CXTString<wchar_t> GetShownName(const C3DSceneNode& camera)
{
    constexpr unsigned int CAMERA = 9349;
    CXTString<wchar_t> name = camera.HasName() ? camera.GetName() : LoadText(CAMERA);
    name.Replace(L"&", L"&&");
    return name;
}

CCustomMenu* C3DViewCameraCommand::OnPopupMenu(CCustomMenu* menu, unsigned int)
{
    m_popup.Clear();
    for (const unsigned int command : {NEXT, PREVIOUS, CREATE})
        m_popup.AddCommand(*menu, command);
    menu->AddMenuSeparator();
    m_popup.AddCommand(*menu, PROJECTION);

    std::vector<std::pair<CXTString<wchar_t>, int>> cameras;
    for (const C3DSceneNode* const camera : GetCameras(GetFrameScene()))
        cameras.emplace_back(GetShownName(*camera), static_cast<int>(camera->GetNodeID()));
    std::stable_sort(cameras.begin(), cameras.end(), [](const auto& a, const auto& b) { return a.first.CompareNoCase(b.first) < 0; });
    if (!cameras.empty())
        menu->AddMenuSeparator();
    for (const auto& [name, id] : cameras)
        m_popup.Add(*menu, name, id);
    return menu;
}

unsigned int C3DViewCameraCommand::GetPopupCmdState(unsigned int id)
{
    const unsigned int command = m_popup.GetCommandID(id);
    const C3DScene* const scene = GetFrameScene();
    const bool needsCamera = command == NEXT || command == PREVIOUS;
    return needsCamera && !(scene && scene->GetFirstNode(OBJECT_CAMERA)) ? 0 : +COMMAND_ENABLED;
}

int C3DViewCameraCommand::DoPopupCmd(unsigned int id)
{
    const std::optional<int> node = m_popup.GetValue(id);
    if (!node)
        return 0;
    GetCustomData().SetUnsigned(DATA_CAMERA_ID, static_cast<unsigned int>(*node));
    GetManager()->StackCommand(this, STACK_APPLY, nullptr);
    return 1;
}

// From one to the next

C3DNextCameraCommand::C3DNextCameraCommand() : C3DNextCameraCommand(NEXT, 1) {}
C3DPrevCameraCommand::C3DPrevCameraCommand() : C3DNextCameraCommand(PREVIOUS, -1) {}

CommandResult C3DNextCameraCommand::OnApplyCommand(C3DScene* scene)
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    const std::vector<C3DSceneNode*> cameras = GetCameras(scene);
    if (cameras.empty())
        return COMMAND_DONE;
    const int count = static_cast<int>(cameras.size()), currentId = GetViewer()->GetCurrentCameraId();
    const auto current = std::find_if(cameras.begin(), cameras.end(),
                                      [&](const C3DSceneNode* camera) { return static_cast<int>(camera->GetNodeID()) == currentId; });
    const int next = current == cameras.end() ? 0 : (static_cast<int>(current - cameras.begin()) + m_step + count) % count;
    return LookThrough(GetViewer(), cameras[next]) ? COMMAND_DONE : COMMAND_DECLINED;
}

// A new one

C3DCreateCameraCommand::C3DCreateCameraCommand() : C3DCommand(CREATE) {}

/// Where a camera stands that sees what the view sees. The view sees p at V * (p - centre); a camera looks along y with z up, the eye along -z with
/// y up.
static bool GetCameraMatrix(const GlViewSettings& view, const C3DScene& scene, C4x4TMatrix<float>& matrix)
{
    constexpr double QUARTER = 1.5707963705062866;
    if (!C4x4TMatrix<float>::GetInverse(view.matrix, matrix))
        return false;
    const C3DTVector<float> place = matrix.GetTranslation();
    matrix.SetTranslation(place.x + view.sceneCenter.x, place.y + view.sceneCenter.y, place.z + view.sceneCenter.z);
    C4x4TMatrix<float> turn, root;
    turn.FromQuaternion(CQuaternion(C3DTVector<float>(1, 0, 0), QUARTER));
    matrix *= turn;
    scene.GetRoot()->GetObjectLocalTM(scene.GetTickCount(), root);
    if (!C4x4TMatrix<float>::GetInverse(root, root))
        return false;
    matrix = root * matrix;
    return true;
}

/// The kind's name and the lowest number that no other camera has.
static CXTString<wchar_t> GetNewName(const C3DScene& scene, const C3DBaseObject& camera)
{
    std::set<CXTString<wchar_t>> taken;
    for (const C3DSceneNode* const node : GetCameras(&scene))
        taken.insert(node->GetName());
    CXTString<wchar_t> name;
    int number = 1;
    do
        name.FormatString(L"%s %d", camera.GetTypeString().c_str(), number++);
    while (taken.contains(name));
    return name;
}

CommandResult C3DCreateCameraCommand::OnApplyCommand(C3DScene* scene)
{
    C4x4TMatrix<float> matrix;
    if (!GetViewer() || !GetCameraMatrix(*GetViewer()->GetViewSettings(), *scene, matrix))
        return COMMAND_DECLINED;
    const C3DCamera* const current = GetViewer()->GetViewSettings()->GetCurrentCamera();
    C3DBaseObject* const camera = current ? current->Copy(0, nullptr) : new C3DCamera;
    if (!camera)
        return COMMAND_DECLINED;
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(camera, true);
    node->SetName(GetNewName(*scene, *camera));
    static_cast<C3DMatrixKey*>(node->CreateKey(scene->GetTickCount(), KEY_MATRIX, 0))->SetMatrix(matrix);
    scene->AddNode(nullptr, node);
    GetCustomData().SetData(DATA_NODES, &node, sizeof node);

    LookThrough(GetViewer(), node);
    if (Get3DFrameWnd())
        Get3DFrameWnd()->SceneChanged(CHANGED_NODES, {node}, true);
    return COMMAND_DONE;
}

// Projection

C3DChangeProjectionModeCommand::C3DChangeProjectionModeCommand() : C3DCommand(PROJECTION) {}

CommandResult C3DChangeProjectionModeCommand::OnApplyCommand()
{
    if (!GetViewer())
        return COMMAND_DECLINED;
    GlViewSettings settings;
    settings.changeMask = GLSET_CAMERA;
    settings.SetCurrentCamera(GetViewer()->GetViewSettings()->GetCurrentCamera());
    settings.GetCurrentCamera()->SetProjection(settings.IsOrthographic() ? CAMERA_PERSPECTIVE : CAMERA_ORTHOGRAPHIC);
    GetViewer()->SetViewSettings(&settings);
    GetViewer()->UpdateView(0);
    return COMMAND_DONE;
}
