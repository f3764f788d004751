#include "SceneCanvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "SceneExtent.h"

namespace {

constexpr int DEPTH = 24, DEPTH_WITH_ALPHA = 32;    // bits
constexpr CRGBColor BLACK(0, 0, 0), WHITE(255, 255, 255);
constexpr CRGBColor WIRES(40, 44, 52);
constexpr CRGBColor LIGHT(170, 170, 170);    // of two: brighter ones leave no shape on what is white

double Distance(const C3DTPoint<float>& a, const C3DTPoint<float>& b)
{
    return std::hypot(double{b.x} - a.x, double{b.y} - a.y, double{b.z} - a.z);
}

// "A, B, C and 4 more", for a message.
std::string ListNames(const C3DScene& scene, unsigned int kinds)
{
    constexpr std::size_t MOST = 8;
    std::vector<std::string> names;
    for (C3DNodePos pos = scene.GetFirstNode(kinds); pos;) {
        std::string name = WideToUtf8(scene.GetNextNode(pos)->GetName());
        if (std::ranges::find(names, name) == names.end())
            names.push_back(std::move(name));
    }
    std::string list;
    for (std::size_t i = 0; i < std::min(MOST, names.size()); i++)
        list += (i ? ", " : "") + names[i];
    return names.size() <= MOST ? list : list + " and " + std::to_string(names.size() - MOST) + " more";
}

// Whether a scene covers what is behind it or leaves it alone, in each sample. Images may have alpha, and lines are smooth.
bool IsOpaque(const C3DScene& scene, unsigned int viewFlags)
{
    constexpr unsigned int LINES =
        VIEWFLAG_WIREFRAME | VIEWFLAG_DRAW_NORMALS | VIEWFLAG_DRAW_BOXES | VIEWFLAG_POINT_LABELS | VIEWFLAG_FACE_LABELS;
    if (viewFlags & LINES || scene.GetFirstNode(OBJECT_CURVE))
        return false;
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        const C3DMaterial& material = *scene.GetNextMaterial(pos);
        if (material.IsTransparent(static_cast<unsigned int>(scene.GetTickCount())) || material.GetMaterialMap(MAP_TRANSPARENCY))
            return false;
        if (viewFlags & VIEWFLAG_TEXTURE && material.GetMaterialMap(MAP_DIFFUSE))
            return false;
    }
    return true;
}

// What shows over both black and white shows them mixed with 1 - alpha, so that their difference tells alpha.
Picture JoinTransparent(const Bitmap& onBlack, const Bitmap& onWhite)
{
    const int width = onBlack.GetWidth(), height = onBlack.GetHeight();
    Picture picture(rgbaBitmap::Create(width, height));
    for (int y = 0; picture && y < height; y++) {
        const unsigned char* black = onBlack.GetLine(y);
        const unsigned char* white = onWhite.GetLine(y);
        unsigned char* out = picture->GetLine(y);
        for (int x = 0; x < width; x++, black += 3, white += 3, out += 4) {
            const int passed = white[0] - black[0] + white[1] - black[1] + white[2] - black[2];    // three times what the background gives
            const int alpha = 3 * 255 - std::clamp(passed, 0, 3 * 255);
            for (int i = 0; alpha > 0 && i < 3; i++)
                out[i] = static_cast<unsigned char>(std::min(255, (black[i] * 3 * 255 + alpha / 2) / alpha));
            out[3] = static_cast<unsigned char>((alpha + 1) / 3);
        }
    }
    return picture;
}

}

SceneCanvas::SceneCanvas(const PictureSettings& settings)
    : m_settings(settings), m_sample(C3DScene::Create()), m_antialias(settings.antialias)
{
    m_sample->AddNode(nullptr, CreateSphere({}, 1, 8, 16, true, 0, 0));
}

bool SceneCanvas::Start()
{
    if (!CreateSurface())
        return false;
    GlViewSettings view;
    view.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_WIREFRAME_COLOR | GLSET_LIGHT_COLOR;
    view.viewFlags = m_settings.viewFlags;
    view.viewNumber = m_settings.view;
    view.viewAngle = static_cast<float>(m_settings.viewAngle * std::numbers::pi / 180);
    view.wireframeColor = WIRES;
    view.lightColor = LIGHT;
    m_view.SetViewSettings(&view);
    m_view.SetDrawingFlag(GLDRAW_MEMORY_BOXES, m_settings.viewFlags & VIEWFLAG_DRAW_BOXES);
    m_view.SetDrawingFlag(GLDRAW_MEMORY_LABELS, m_settings.viewFlags & (VIEWFLAG_POINT_LABELS | VIEWFLAG_FACE_LABELS));
    WarmUp();
    return true;
}

// A driver may have no surface of the size asked for, and a view then scales what it draws. Fewer samples are better than that.
bool SceneCanvas::CreateSurface()
{
    for (;; m_antialias--) {
        const CSize size(m_settings.size.cx * m_antialias, m_settings.size.cy * m_antialias);
        const bool created = m_view.CreateMemoryRendering(size.cx, size.cy, m_settings.transparent ? DEPTH_WITH_ALPHA : DEPTH);
        if (created && (m_antialias == 1 || m_view.GetClientDC()->GetSize() == size))
            return true;
        if (created)
            m_view.DeleteMemoryRendering();
        if (m_antialias == 1)
            return false;
    }
}

// Drivers compile the states that they meet at the first picture, here that of a ball.
void SceneCanvas::WarmUp()
{
    m_view.SetScene(m_sample.get(), GLSET_FIT);
    m_view.UpdateView(0);
    {
        const CGLActivate active(&m_view);
        m_view.RenderScene(nullptr);
    }
    m_view.SetScene(nullptr, 0);
    m_sample.reset();
}

std::string SceneCanvas::SetScene(C3DScene& scene)
{
    if (m_settings.hasTime)
        scene.SetCurrentTime(m_settings.time);
    m_isOpaque = IsOpaque(scene, m_settings.viewFlags);
    const std::string lack = PlaceEye(scene);
    m_matrix = m_view.GetViewSettings()->matrix;
    return lack;
}

std::string SceneCanvas::PlaceEye(C3DScene& scene)
{
    scene.SelectNone();
    for (const std::string& name : m_settings.nodes) {
        bool found = false;
        for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
            C3DSceneNode* const node = scene.GetNextNode(pos);
            if (WideToUtf8(node->GetName()) != name)
                continue;
            scene.Select(node, C3DScene::SELECT_ADD | C3DScene::SELECT_BRANCH);
            found = true;
        }
        if (!found)
            return "no node " + name + ", but " + ListNames(scene, OBJECT_ANY);
    }
    m_view.SetScene(&scene, m_settings.nodes.empty() ? GLSET_FIT : GLSET_FIT | GLSET_FIT_SELECTION);
    m_view.UpdateView(0);
    if (m_settings.useCamera)
        return LookThroughCamera(scene);
    FillPicture(scene);
    return {};
}

std::string SceneCanvas::LookThroughCamera(C3DScene& scene)
{
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_CAMERA); pos;) {
        C3DSceneNode* const node = scene.GetNextNode(pos);
        if ((m_settings.camera.empty() || WideToUtf8(node->GetName()) == m_settings.camera) && m_view.LoadCamera(node))
            return {};
    }
    const std::string cameras = ListNames(scene, OBJECT_CAMERA);
    return cameras.empty() ? "no camera" : "no camera " + m_settings.camera + ", but " + cameras;
}

// The view's own way of fitting leaves room for all ways in which a user may turn the scene; a picture shows it one way, or a turntable a few.
void SceneCanvas::FillPicture(const C3DScene& scene)
{
    constexpr double SLOPE = std::numbers::sqrt2 - 1, FILLED = 0.94;    // half of the view's 45 degrees; the rest is margin
    constexpr int MOST_STEPS = 24;
    const GlViewSettings& view = *m_view.GetViewSettings();
    SceneExtent extent(SLOPE * FILLED * view.aspect, SLOPE * FILLED);
    const int count = std::max(1, m_settings.turntable.count), steps = std::min(count, MOST_STEPS);
    C3DTPoint<float> min, max, center;
    m_view.GetBBox(false, min, max, center, 0, 0);
    for (int i = 0; i < steps; i++) {
        const C4x4TMatrix<float> turned = GetTurned(view.matrix, i * count / steps);
        extent.Add(scene, !m_settings.nodes.empty(), turned, view.sceneCenter);
        if (m_settings.viewFlags & VIEWFLAG_DRAW_BOXES && m_settings.nodes.empty())
            extent.AddBox(min, max, turned, view.sceneCenter);
    }
    if (extent.IsEmpty())
        return;
    // The near clipping plane may come to a hundredth of the far one.
    const double reach = Distance(center, view.sceneCenter) + view.sceneSize / 2;
    const C3DTVector<float> translation = extent.GetTranslation(0.01, reach);
    GlViewSettings moved;
    moved.changeMask = GLSET_TRANSLATION;
    moved.matrix.SetTranslation(translation.x, translation.y, translation.z);
    m_view.SetViewSettings(&moved);
}

C4x4TMatrix<float> SceneCanvas::GetTurned(C4x4TMatrix<float> matrix, int number) const
{
    CTurntable::Turn(matrix, m_settings.turntable.movement, m_settings.turntable.GetAngle(number));
    return matrix;
}

void SceneCanvas::Turn(int number)
{
    GlViewSettings view;
    view.changeMask = GLSET_MATRIX;
    view.matrix = GetTurned(m_matrix, number);
    m_view.SetViewSettings(&view);
}

void SceneCanvas::IgnoreTransparency()
{
    GlViewSettings view;
    view.changeMask = GLSET_VIEW_FLAGS;
    view.viewFlags = m_settings.viewFlags & ~VIEWFLAG_TRANSPARENCY;
    m_view.SetViewSettings(&view);
    m_view.UpdateView(0);
}

Picture SceneCanvas::DrawOn(const CRGBColor& background)
{
    m_view.SetBackgroundColor(background.red, background.green, background.blue);
    Picture picture(m_view.CreateBitmapFromScene());
    if (picture && picture->GetType() != BITMAP_RGB)
        picture.reset(picture->ConvertToType(BITMAP_RGB));
    return Reduce(std::move(picture));
}

// The view's own alpha tells what is covered: it is all there is to know of what is opaque, and spares the second picture.
Picture SceneCanvas::DrawOpaque()
{
    Picture picture(m_view.CreateBitmapFromScene());
    if (picture)
        picture->InvertAlpha();
    return Reduce(std::move(picture));
}

Picture SceneCanvas::Reduce(Picture picture) const
{
    if (picture && m_antialias > 1 && !picture->Resize(m_settings.size.cx, m_settings.size.cy, 1))
        picture.reset();
    return picture;
}

Picture SceneCanvas::Draw(int number)
{
    if (number > 0)
        Turn(number);
    if (!m_settings.transparent)
        return DrawOn(m_settings.background);
    if (m_isOpaque)
        return DrawOpaque();
    const Picture onBlack = DrawOn(BLACK), onWhite = DrawOn(WHITE);
    return onBlack && onWhite ? JoinTransparent(*onBlack, *onWhite) : nullptr;
}
