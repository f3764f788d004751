#include <utility>

#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/ProcessState.h"

// How a view comes to show something else: a scene, a settings record, changed objects.

void C3DView::SetScene(C3DScene* scene, unsigned int flags)
{
    if (scene)
        scene->AddRef();
    DeleteMe(m_scene);
    m_scene = scene;
    m_compiled.RemoveAll();
    m_knownNews.RemoveAll();
    m_flushedChanges = m_restChanges = 0;

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
        m_restChanges = 0;
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
        ChangeOwnColor(m_wireframeMaterial, m_settings.wireframeColor);
    }
    if (mask & GLSET_SELECTION_COLOR) {
        m_settings.selectionColor = settings->selectionColor;
        ChangeOwnColor(m_selectionMaterial, m_settings.selectionColor);
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

bool C3DView::NeedsUpdate()
{
    const std::uint64_t changes = GetSceneChanges();
    if (!m_scene || changes == m_restChanges)
        return false;
    bool isHiddenWork = false;
    for (C3DNodePos pos = m_scene->GetFirstNode(OBJECT_ANY); pos;) {
        const C3DSceneNode* const node = m_scene->GetNextNode(pos);
        const C3DBaseObject* const base = node->GetBaseObject();
        if (!base || base->IsFlagSet(OBJECT_EMPTY) || (base->GetKindOf() & m_settings.hiddenKinds))
            continue;
        const C3DBaseObject* const final = node->GetFinalObject(m_scene->GetTickCount());
        if (!final || !final->NeedUpdate())
            continue;
        if (!node->IsFlagSet(NODE_HIDDEN))
            return true;
        isHiddenWork = true;    // and may show at any time
    }
    m_restChanges = isHiddenWork ? 0 : changes;
    return false;
}

bool C3DView::HasChanged(C3DSceneNode* node)
{
    const C3DBaseObject* const base = node->GetBaseObject();
    if (!base)
        return false;
    Compiled* const compiled = m_compiled.Find(base->GetObjectID());
    if (compiled)
        compiled->walk = m_walk;
    const C3DBaseObject* const final = node->GetFinalObject(static_cast<int>(GetTick()));
    if (!final || (base->GetKindOf() & m_settings.hiddenKinds))
        return false;
    return !compiled || compiled->revision != GetRevision(base, final) ||
           (compiled->final != NO_OBJECT && compiled->final != final->GetObjectID()) || final->NeedUpdate();
}

void C3DView::FlushChangedNodes()
{
    const std::uint64_t changes = GetSceneChanges();
    if (changes == m_flushedChanges)
        return;
    m_flushedChanges = 0;
    m_walk++;
    FlushChangedMaterials();
    bool isWorkLeft = false;
    FlushNodes([&](C3DSceneNode* node) {
        if (!HasChanged(node))
            return;
        RemoveNode(node);
        FlushNode(node);
        const C3DBaseObject* const final = node->GetFinalObject(static_cast<int>(GetTick()));
        isWorkLeft |= final && final->NeedUpdate();
    });
    ForgetGoneObjects();
    if (!isWorkLeft)
        m_flushedChanges = changes;
}

/// Objects that the walk has not met: their nodes are gone.
void C3DView::ForgetGoneObjects()
{
    std::vector<unsigned int> gone;
    for (const auto& [id, compiled] : m_compiled)
        if (compiled.walk != m_walk)
            gone.push_back(id);
    for (const unsigned int id : gone) {
        const unsigned int final = m_compiled.Find(id)->final;
        if (final != NO_OBJECT)
            DeleteGeometryLists(final);
        DeleteGeometryLists(id);
        m_compiled.Remove(id);
    }
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

void C3DView::ChangeOwnColor(C3DMaterial& material, const CRGBColor& color)
{
    if (material.GetDiffuseColor(0, false) == color)
        return;
    SetColor(material, color);
    const CGLActivate active(this);
    if (!IsActive() || !m_scene)
        return;
    RecompileMaterial(material);
    // Curves have the colours of their corners, and lists that a host has a part in those of everything.
    const bool areListsStale = m_flushCallback || m_faceCallback || m_pointMaterialCallback;
    const unsigned int stale = areListsStale ? OBJECT_ANY : &material == &m_selectionMaterial ? +OBJECT_CURVE : 0U;
    for (C3DNodePos pos = m_scene->GetFirstNode(stale); stale && pos;) {
        const C3DBaseObject* const base = m_scene->GetNextNode(pos)->GetBaseObject();
        if (Compiled* const compiled = base ? m_compiled.Find(base->GetObjectID()) : nullptr)
            compiled->revision = 0;
    }
    m_flushedChanges = 0;
}
