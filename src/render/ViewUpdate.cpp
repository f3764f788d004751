#include <utility>

#include "render/View.h"
#include "scene/3DScene.h"

// How a view comes to show something else: a scene, a settings record, changed objects.

void C3DView::SetScene(C3DScene* scene, unsigned int flags)
{
    if (scene)
        scene->AddRef();
    DeleteMe(m_scene);
    m_scene = scene;

    const CGLActivate active(this);
    DestroyMapping(false);
    m_appliedFlags = 0xFFFFFFFF;
    if (m_scene) {
        AdjustView(flags);
        m_flushPending = true;
    } else
        DeleteGLLists(CALLLIST_FLUSHED, nullptr);    // no flush will
}

void C3DView::SetViewSettings(const GlViewSettings* settings)
{
    if (!settings)
        return;
    const unsigned int mask = settings->changeMask;
    if (mask & GLSET_TRANSLATION) {
        m_settings.viewNumber = RVIEW_CUSTOM;
        for (int row = 0; row < 3; row++)
            m_settings.matrix.m[row][3] = settings->matrix.m[row][3];
    }
    if (mask & GLSET_VIEW_FLAGS) {
        constexpr unsigned int IN_LISTS = VIEWFLAG_RENDER_MODE | VIEWFLAG_SHOW_SELECTED_FACES;
        m_flushPending |= ((m_settings.viewFlags ^ settings->viewFlags) & IN_LISTS) != 0;
        m_settings.viewFlags = (m_settings.viewFlags & VIEWFLAG_TRANSIENT) | (settings->viewFlags & ~VIEWFLAG_TRANSIENT);
    }
    if (mask & GLSET_HIDDEN_KINDS) {
        m_flushPending |= m_settings.hiddenKinds != settings->hiddenKinds;
        m_settings.hiddenKinds = settings->hiddenKinds;
    }
    if (mask & GLSET_CAMERA)
        m_settings.SetCurrentCamera(settings->GetCurrentCamera());
    if (mask & GLSET_VIEW_NUMBER && settings->viewNumber != RVIEW_CUSTOM && settings->viewNumber <= RVIEW_RIGHT_BOTTOM_BACK) {
        m_settings.viewNumber = settings->viewNumber;
        SetView(settings->viewNumber, false, settings->viewAngle);
    }
    if (mask & GLSET_MATRIX) {
        m_settings.viewNumber = RVIEW_CUSTOM;
        m_settings.matrix = settings->matrix;
    }
    if (mask & GLSET_BACKGROUND)
        m_settings.background = settings->background;
    if (mask & GLSET_WIREFRAME_COLOR) {
        m_settings.wireframeColor = settings->wireframeColor;
        SetColor(m_wireframeMaterial, m_settings.wireframeColor);
    }
    if (mask & GLSET_SELECTION_COLOR) {
        m_settings.selectionColor = settings->selectionColor;
        SetColor(m_selectionMaterial, m_settings.selectionColor);
    }
    if (mask & GLSET_LIGHT_COLOR)
        m_settings.lightColor = settings->lightColor;
    if (mask & GLSET_UPDATE)
        UpdateView(static_cast<int>(mask));
}

void C3DView::UpdateView(int asked)
{
    if (!m_scene)
        return;
    unsigned int flags = static_cast<unsigned int>(asked);
    if (m_lockCount > 0) {
        m_pendingUpdate |= flags;
        return;
    }
    struct Ending {    // also when a host's callback throws, or for want of memory
        C3DView& view;
        ~Ending()
        {
            if (view.m_lastUpdate == NO_TIME)
                view.m_settings.viewFlags &= ~VIEWFLAG_UPDATES_HELD;
            view.Invalidate();
        }
    } const ending{*this};
    const CGLActivate active(this);
    if (flags & GLSET_RELOAD_TEXTURES) {
        DestroyMapping(false);
        m_appliedFlags = 0xFFFFFFFF;
        flags |= GLSET_FLUSH_ALL;
    }
    AdjustView(flags);
    HoldUpdates(flags);
    m_flushPending |= (flags & GLSET_FLUSH_ALL) != 0;
    if (IsActive()) {    // what is for GL waits until there is a context, and no other thread has it
        InitViewFlag();
        if (m_flushPending)
            FlushScene();
        else if (flags & GLSET_UPDATE)
            FlushChangedNodes();
    }
}

/// While the user is at work, what objects have to do for themselves waits until OnTimer has seen no update for a while.
void C3DView::HoldUpdates(unsigned int flags)
{
    if (IsDrawingFlagSet(GLDRAW_MEMORY) || !(m_settings.viewFlags & VIEWFLAG_HOLD_UPDATES))
        return;
    if (flags & GLSET_RESUME_UPDATES)
        m_settings.viewFlags &= ~VIEWFLAG_UPDATES_HELD;
    else if (m_lastUpdate != NO_TIME)
        m_lastUpdate = GetMilliseconds();
    else
        m_settings.viewFlags |= VIEWFLAG_UPDATES_HELD;
}

/// The object has news, or what stands for it on screen is another object than the one that was compiled.
bool C3DView::HasChanged(const C3DSceneNode* node) const
{
    const C3DBaseObject* const base = node->GetBaseObject();
    const C3DBaseObject* const final = node->GetFinalObject(GetTick());
    if (!final)
        return false;
    if (base->IsInvalidate(OBJECT_UPDATE_DISPLAY) || final->IsInvalidate(OBJECT_UPDATE_DISPLAY) || final->NeedUpdate())
        return true;
    const int* const compiled = m_finalObjects.Find(static_cast<int>(base->GetObjectID()));
    return compiled && *compiled != static_cast<int>(final->GetObjectID());
}

void C3DView::FlushChangedNodes()
{
    FlushNodes([this](C3DSceneNode* node) {
        if (HasChanged(node)) {
            RemoveNode(node);
            FlushNode(node);
        }
    });
}

void C3DView::LockWindow() { m_lockCount++; }

void C3DView::UnlockWindow()
{
    if (m_lockCount > 0 && --m_lockCount == 0)
        UpdateView(static_cast<int>(std::exchange(m_pendingUpdate, 0)));
}

void C3DView::SetBackgroundColor(unsigned char red, unsigned char green, unsigned char blue)
{
    m_settings.background = {red, green, blue};
    Invalidate();
}
