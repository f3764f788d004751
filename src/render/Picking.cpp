#include "render/Picking.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>

#include "render/View.h"
#include "scene/3DScene.h"

// Picking: the scene is drawn in GL's selection mode, each node under its id, and the records that GL leaves are read.

void glPickInfo::ApplyMatrix(const int* viewport) const
{
    // A click means the middle of its pixel.
    const double acrossX = mode == PICK_NEAREST ? 1 : width, acrossY = mode == PICK_NEAREST ? 1 : height;
    int window[4];
    std::copy_n(viewport, 4, window);
    gluPickMatrix(viewport[0] + x + acrossX / 2, viewport[1] + viewport[3] - (y + acrossY / 2), width, height, window);
}

/// The view's display callback while it picks. Surfaces are found by their faces, so that in solid modes wires do not count; curves have only
/// their wire. In pure wireframe wires are all there is.
static int LoadNodeName(C3DSceneNode* node, glCallbackDisplayState state, unsigned int mode, void* data)
{
    if (state != DISPLAY_NODE)
        return 1;
    const glPickInfo& pick = *static_cast<const glPickInfo*>(data);
    const bool solidView = (pick.view->GetViewFlag() & VIEWFLAG_SOLID) != 0, solidPass = (mode & VIEWFLAG_SOLID) != 0;
    const bool curve = node->GetObjectKindOf() == OBJECT_CURVE;
    if (solidView && solidPass == curve)
        return 0;
    glLoadName(node->GetNodeID());
    return 1;
}

/// Draws until the buffer holds all hits.
static void CollectHits(C3DView& view, glPickInfo& pick)
{
    constexpr size_t LARGEST = size_t{1} << 30;    // far beyond four words for each node and pass
    for (;;) {
        view.RenderScene(nullptr);
        if (pick.hits >= 0 || pick.buffer.size() >= LARGEST)
            return;
        pick.buffer.resize(pick.buffer.size() * 2);
        pick.hits = 0;
    }
}

/// The nodes of a scene by their ids.
static CHashMap<unsigned int, C3DSceneNode*> GetNodesByID(const C3DScene& scene)
{
    CHashMap<unsigned int, C3DSceneNode*> nodes;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
        C3DSceneNode* const node = scene.GetNextNode(pos);
        nodes.Insert(node->GetNodeID(), node);    // of two with one id the first, as C3DScene::GetNodeByID
    }
    return nodes;
}

/// Reads the records: number of names, smallest and largest depth, names. One with a name that is no node's ends the reading.
static void ReadHits(const C3DScene& scene, const glPickInfo& pick)
{
    if (pick.hits <= 0)
        return;
    const CHashMap<unsigned int, C3DSceneNode*> byID = GetNodesByID(scene);
    C3DSceneNode* nearest = nullptr;
    unsigned int nearestDepth = 0;
    const unsigned int *word = pick.buffer.data(), *const end = word + pick.buffer.size();
    for (int hit = 0; hit < pick.hits && end - word >= 3; hit++) {
        const unsigned int names = word[0], depth = word[1];
        word += 3;
        for (unsigned int i = 0; i < names && word < end; i++, word++) {
            C3DSceneNode* node;
            if (!byID.Find(*word, node))
                return;
            if (pick.mode == PICK_ALL)
                pick.nodes->Add(node);
            else if (!nearest || depth < nearestDepth) {
                nearest = node;
                nearestDepth = depth;
            }
        }
    }
    if (nearest)
        pick.nodes->Add(nearest);
}

unsigned int C3DView::SelectNodesFromRect(CXArray<C3DSceneNode*>& nodes, unsigned int x, unsigned int y, unsigned int width,
                                          unsigned int height, GLSelectMode, unsigned int)
{
    nodes.RemoveAll();
    if (!m_scene || !GetGLContext())
        return 0;
    glPickInfo pick;
    pick.view = this;
    pick.nodes = &nodes;
    pick.mode = width && height ? PICK_ALL : PICK_NEAREST;
    pick.x = x;
    pick.y = y;
    pick.width = pick.mode == PICK_ALL ? std::max(width, 2U) : 2;
    pick.height = pick.mode == PICK_ALL ? std::max(height, 2U) : 2;
    pick.buffer.resize(size_t{2} * std::max(m_scene->GetChildCount(nullptr, OBJECT_ANY), 100));

    /// The view's callbacks stand aside for as long as this picks, whatever ends it.
    struct Picking {
        C3DView& view;
        DisplayCallback callback = view.m_displayCallback;
        void* data = view.m_callbackData;

        Picking(C3DView& picked, glPickInfo& info) : view(picked)
        {
            view.m_pick = &info;
            view.m_displayCallback = LoadNodeName;
            view.m_callbackData = &info;
        }
        ~Picking()
        {
            glRenderMode(GL_RENDER);    // also after an exception half-way
            view.m_pick = nullptr;
            view.m_displayCallback = callback;
            view.m_callbackData = data;
        }
    };
    const CGLActivate active(this);
    {
        const Picking picking(*this, pick);
        CollectHits(*this, pick);
    }
    ReadHits(*m_scene, pick);
    return nodes.GetSize();
}

unsigned int C3DView::SelectPointsFromRect(CXArray<C3DSceneNode*>&, unsigned int, unsigned int, unsigned int, unsigned int, GLSelectMode,
                                           unsigned int)
{
    return 0;
}
