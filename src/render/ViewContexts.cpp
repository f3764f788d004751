#include <GL/gl.h>

#include <algorithm>
#include <string_view>

#include "render/View.h"
#include "render/ViewProfile.h"

// Activation: nested calls count, and the host's own context comes back at the end.

void C3DView::Activate()
{
    if (m_activations++ == 0)
        MakeTopCurrent();
}

void C3DView::Deactivate()
{
    if (--m_activations == 0)
        RestoreFormer();
}

void C3DView::MakeTopCurrent()
{
    if (m_contexts.empty())
        return;
    const _GLContext& top = m_contexts.back();
    m_activeDC = top.dc;
    m_isCurrent = m_platform.MakeCurrent(*top.dc, top.context, m_former);
    if (!m_isCurrent)
        m_platform.Restore(*top.dc, {});    // GL goes nowhere rather than into the host's context
}

void C3DView::RestoreFormer()
{
    if (m_activeDC)
        m_platform.Restore(*m_activeDC, m_former);
    m_activeDC = nullptr;
    m_isCurrent = false;
}

// Making and deleting contexts.

bool C3DView::InitGLExtension() const { return m_platform.InitExtensions(); }

bool C3DView::CreateDefaultGLContext(std::unique_ptr<CDC> dc)
{
    const HGLRC context = dc ? m_platform.CreateContext(*dc) : nullptr;
    if (!context)
        return false;
    RestoreFormer();
    m_contexts.push_back({nullptr, dc.get(), context});
    m_dcs.push_back(std::move(dc));
    StackChanged();
    return true;
}

// Without a GPU every sample is work of the processor: with four of them a frame of a million triangles takes three times as long.
bool C3DView::IsDrawnByProcessor()
{
    const CGLActivate active(this);
    const char* const renderer = IsActive() ? reinterpret_cast<const char*>(glGetString(GL_RENDERER)) : nullptr;
    const std::string_view name = renderer ? renderer : "";
    return name.find("llvmpipe") != name.npos || name.find("softpipe") != name.npos;
}

int C3DView::CreateMultiSampleGLContext()
{
    constexpr int MOST_SAMPLES = 8;
    void* const window = GetPeer() ? GetPeer()->GetNativeHandle() : nullptr;
    if (GetPeer() && !window)
        return CreatePixelContext();
    CCrashGuard guard(PROFILE_MULTISAMPLE);
    if (guard.MayTry() && InitGLExtension()) {
        std::unique_ptr<CDC> dc;
        for (int samples = MOST_SAMPLES; samples >= 2 && !dc; samples /= 2)
            dc = m_platform.CreateWindowDC(window, samples);
        if (CreateDefaultGLContext(std::move(dc))) {
            guard.Succeeded();
            if (!IsDrawnByProcessor()) {
                SetDrawingFlag(GLDRAW_MULTISAMPLE, true);
                return 1;
            }
            DeleteGLContext();
        }
    }
    return CreateDefaultGLContext(m_platform.CreateWindowDC(window, 0));
}

// A window without a surface of its own shows what is drawn off screen (PresentPixels). The surface grows with the window and never shrinks; its
// sides are rounded up, so that dragging a border makes few of them.

std::unique_ptr<CDC> C3DView::CreatePixelDC(CSize size)
{
    constexpr int STEP = 256;
    size = {std::max(size.cx, 1) + STEP - 1, std::max(size.cy, 1) + STEP - 1};
    size = {size.cx / STEP * STEP, size.cy / STEP * STEP};
    CCrashGuard guard(PROFILE_PBUFFER);
    if (guard.MayTry() && InitGLExtension() && m_platform.HasPBuffers())
        if (std::unique_ptr<CDC> dc = m_platform.CreatePBuffer(size.cx, size.cy, 32)) {
            guard.Succeeded();
            m_pixelWindow = PIXELS_PBUFFER;
            return dc;
        }
    m_pixelWindow = PIXELS_MEMORY;
    return m_platform.CreateMemoryDC(size.cx, size.cy, 32);
}

bool C3DView::CreatePixelContext()
{
    const CRect client = GetClientRect();
    if (CreateDefaultGLContext(CreatePixelDC({client.Width(), client.Height()})))
        return true;
    m_pixelWindow = PIXELS_NONE;
    return false;
}

void C3DView::GrowPixelSurface(CSize client)
{
    const CSize present = GetClientDC()->GetSize();
    if (m_pixelWindow == PIXELS_NONE || IsDrawingFlagSet(GLDRAW_MEMORY) || (client.cx <= present.cx && client.cy <= present.cy))
        return;
    const bool keepsContext = m_pixelWindow == PIXELS_PBUFFER;
    std::unique_ptr<CDC> larger = CreatePixelDC({std::max(client.cx, present.cx), std::max(client.cy, present.cy)});
    if (!larger)
        return;
    if (keepsContext && m_pixelWindow == PIXELS_PBUFFER) {
        RestoreFormer();
        m_contexts.back().dc = larger.get();
        m_dcs.back() = std::move(larger);
        StackChanged();
        return;
    }
    DeleteGLContext();    // memory belongs to its context
    if (!CreateDefaultGLContext(std::move(larger)))
        return;
    const CGLActivate active(this);
    InitGLContext();
    m_flushPending = m_scene != nullptr;
    UpdateView(0);
}

void C3DView::DeleteGLContext()
{
    if (m_contexts.empty())
        return;
    {
        const CGLActivate activate(this);
        DeleteGLLists(CALLLIST_FLUSHED, nullptr);
        DeleteGLLists(CALLLIST_FONT, nullptr);
        DestroyMapping(false);
    }
    RestoreFormer();
    m_platform.DeleteContext(m_contexts.back().context);
    m_contexts.pop_back();
    m_dcs.pop_back();
    StackChanged();
}

// Another context is the top now, which knows nothing of the view's flags.
void C3DView::StackChanged()
{
    m_appliedFlags = 0xFFFFFFFF;
    if (m_contexts.empty())
        SetDrawingFlag(GLDRAW_MULTISAMPLE, false);
    if (m_activations > 0)
        MakeTopCurrent();
}

// State.

void C3DView::InitGLContext() const
{
    constexpr int STIPPLE_SIZE = 32 * 32 / 8;
    GLubyte checker[STIPPLE_SIZE];
    for (int i = 0; i < STIPPLE_SIZE; i++)
        checker[i] = i / 4 % 2 == 0 ? 0xCC : 0x33;
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glClearDepth(1);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glPolygonStipple(checker);
    glLineStipple(1, 0xCCCC);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 0);
}

static void SetCapability(GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); }

void C3DView::InitViewFlag()
{
    if (!IsActive() || m_settings.viewFlags == m_appliedFlags)
        return;
    // Coverage by alpha means something to samples alone; without them it would thin what is transparent twice.
    const bool samples = GetClientDC()->GetSamples() > 0;
    glEnable(GL_MULTISAMPLE);
    SetCapability(GL_SAMPLE_ALPHA_TO_COVERAGE, samples && GetViewProfile(PROFILE_ALPHA_CUT) != 0);
    InitMapping();

    const bool solid = IsSolid(), cull = solid && (m_settings.viewFlags & VIEWFLAG_CULL_BACK);
    SetCapability(GL_LIGHTING, solid);
    SetCapability(GL_DEPTH_TEST, solid);
    SetCapability(GL_CULL_FACE, cull);
    glCullFace(GL_BACK);
    m_settings.viewFlags = cull ? m_settings.viewFlags | VIEWFLAG_CULLING_ON : m_settings.viewFlags & ~VIEWFLAG_CULLING_ON;
    glPolygonMode(GL_FRONT_AND_BACK, solid ? GL_FILL : GL_LINE);
    glShadeModel(m_settings.viewFlags & VIEWFLAG_SMOOTH ? GL_SMOOTH : GL_FLAT);
    m_lightingInUse = solid;
    m_appliedFlags = m_settings.viewFlags;
}
