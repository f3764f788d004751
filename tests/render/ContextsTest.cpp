#include <GL/gl.h>

#define EGL_NO_X11
#include <EGL/egl.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "render/FaultyPlatform.h"
#include "render/RenderingMode.h"
#include "render/TestPeer.h"
#include "render/ViewCase.h"
#include "render/ViewProfile.h"
#include "scene/Primitives.h"
#include "support/MemoryProfile.h"

namespace {

using Steps = std::set<std::string>;

constexpr const wchar_t* PBUFFER_KEY = L"Render/GLExtPBuf";

// Keeps what it drew itself.
class CPaintedView : public C3DView {
public:
    CPaintedView() { m_settings.viewFlags |= VIEWFLAG_NO_CLEAR; }

    // The upper half red and clear, the lower one blue, with an alpha of 64.
    void PaintHalves()
    {
        const CGLActivate activate(this);
        const CSize size = GetClientDC()->GetSize();
        glClearColor(0, 0, 1, 64 / 255.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, size.cy / 2, size.cx, size.cy);
        glClearColor(1, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
    }
    Picture GetHalves()
    {
        PaintHalves();
        return Picture(CreateBitmapFromScene());
    }
};

void ExpectHalves(const Bitmap& picture)
{
    const int half = picture.GetWidth() * (picture.GetHeight() / 2);
    EXPECT_EQ(CountPixels(picture, [](const unsigned char* p) { return p[0] == 255 && p[2] == 0; }), half);
    EXPECT_EQ(picture.GetLine(0)[0], 255);
    EXPECT_EQ(picture.GetLine(picture.GetHeight() - 1)[2], 255);
}

// What EGL has current on this thread.
struct Current {
    EGLDisplay display = eglGetCurrentDisplay();
    EGLContext context = eglGetCurrentContext();
    EGLSurface draw = eglGetCurrentSurface(EGL_DRAW), read = eglGetCurrentSurface(EGL_READ);
    EGLenum api = eglQueryAPI();
    friend bool operator==(const Current&, const Current&) = default;
};

// The calls that ask for a surface.
std::vector<std::string> GetAttempts(const CFaultyPlatform& platform)
{
    std::vector<std::string> attempts;
    for (const std::string& call : platform.calls)
        if (call.starts_with("CreateWindowDC") || call == "CreatePBuffer" || call == "CreateMemoryDC")
            attempts.push_back(call);
    return attempts;
}

}

TEST(MemoryRendering, GivesWhatWasDrawnInTheTypeOfItsDepth)
{
    for (const bool pbuffer : {true, false})
        for (const int depth : {24, 32}) {
            CFaultyPlatform platform;
            if (!pbuffer)
                platform.faults = {"CreatePBuffer"};
            CPaintedView view;
            ASSERT_TRUE(view.CreateMemoryRendering(64, 32, depth));
            EXPECT_TRUE(view.IsDrawingFlagSet(GLDRAW_MEMORY));
            EXPECT_EQ(view.IsDrawingFlagSet(GLDRAW_PBUFFER), pbuffer);
            const Picture picture = view.GetHalves();
            ASSERT_TRUE(picture);
            EXPECT_EQ(picture->GetType(), depth == 32 ? BITMAP_RGBA : BITMAP_RGB);
            ExpectHalves(*picture);
            if (depth == 32) {    // inverted, or by the depth alone
                EXPECT_EQ(picture->GetLine(0)[3], 255);
                EXPECT_EQ(picture->GetLine(31)[3], pbuffer ? 255 - 64 : 255);
            }
        }
}

TEST(MemoryRendering, BothRoadsDrawASceneInTheSameColours)
{
    Picture pictures[2];
    for (const bool pbuffer : {true, false}) {
        CFaultyPlatform platform;
        if (!pbuffer)
            platform.faults = {"HasPBuffers"};
        C3DView view;
        ASSERT_TRUE(view.CreateMemoryRendering(96, 64, 32));
        C3DScene* const scene = new C3DScene;
        scene->AddNode(nullptr, CreateSphere({0, 0, 0}, 1, 8, 12, false, 0, 0));
        view.SetScene(scene, GLSET_FIT);
        view.UpdateView(0);
        DeleteMe(scene);
        pictures[pbuffer].reset(view.CreateBitmapFromScene());
        ASSERT_TRUE(pictures[pbuffer]);
    }
    int covered = 0, differences = 0;
    for (int y = 0; y < 64; y++)
        for (int x = 0; x < 96; x++) {
            const unsigned char* const a = pictures[0]->GetLine(y) + x * 4;
            const unsigned char* const b = pictures[1]->GetLine(y) + x * 4;
            differences += !std::equal(a, a + 4, b);
            covered += a[3] == 0;
            EXPECT_TRUE(a[3] == 0 || a[3] == 255);
        }
    EXPECT_EQ(differences, 0);
    EXPECT_GT(covered, 64 * 96 / 16);
    EXPECT_LT(covered, 64 * 96 / 2);
}

TEST(MemoryRendering, FallsBackOrSaysSoWhicheverStepFails)
{
    const struct {
        Steps faults;
        bool rendering, pbuffer;
    } cases[] = {
        {{}, true, true},
        {{"InitExtensions"}, true, false},
        {{"HasPBuffers"}, true, false},
        {{"CreatePBuffer"}, true, false},
        {{"CreateMemoryDC"}, true, true},
        {{"CreatePBuffer", "CreateMemoryDC"}, false, false},
        {{"CreateContext"}, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.faults));
        CMemoryProfile profile;
        CFaultyPlatform platform;
        platform.faults = c.faults;
        const Current before;
        {
            C3DView view;
            EXPECT_EQ(view.CreateMemoryRendering(16, 16, 24), c.rendering);
            EXPECT_EQ(view.IsDrawingFlagSet(GLDRAW_MEMORY), c.rendering);
            EXPECT_EQ(view.IsDrawingFlagSet(GLDRAW_PBUFFER), c.pbuffer);
            EXPECT_EQ(profile.values[PBUFFER_KEY], c.pbuffer);
            EXPECT_EQ(Picture(view.CreateBitmapFromScene()) != nullptr, c.rendering);
            EXPECT_EQ(platform.contexts, c.rendering);
            EXPECT_EQ(platform.surfaces, c.rendering);
            EXPECT_EQ(view.DeleteMemoryRendering(), 1);
            EXPECT_EQ(platform.contexts + platform.surfaces, 0);
            EXPECT_FALSE(view.CreateBitmapFromScene());
            EXPECT_EQ(view.CreateMemoryRendering(16, 16, 24), c.rendering);    // once more, and left to the destructor
        }
        EXPECT_EQ(platform.contexts + platform.surfaces, 0);
        EXPECT_EQ(Current(), before);
    }
}

// Where EGL finds no driver, which a process can be told once.
TEST(MemoryRendering, DISABLED_HasNoDriver)
{
    C3DView view;
    EXPECT_FALSE(GetGLPlatform().InitExtensions());
    EXPECT_EQ(view.CreateMemoryRendering(16, 16, 24), 0);
    EXPECT_FALSE(view.CreateBitmapFromScene());
}
TEST(MemoryRendering, SaysSoWithoutDriver)
{
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string filter = " --gtest_filter=MemoryRendering.DISABLED_HasNoDriver --gtest_also_run_disabled_tests";
    // What is counted are the tests that passed: a run of none ends well too.
    const std::string passed = " | grep -q '  PASSED  . 1 test'";
    EXPECT_EQ(std::system(("__EGL_VENDOR_LIBRARY_DIRS=/nowhere '" + self + "'" + filter + passed).c_str()), 0);
}

TEST(Activation, LeavesTheHostsContextAsItWas)
{
    IGLPlatform& egl = GetEglPlatform();
    const std::unique_ptr<CDC> dc = egl.CreatePBuffer(8, 8, 32);
    ASSERT_TRUE(dc);
    const HGLRC context = egl.CreateContext(*dc);
    GLCurrentState former;
    ASSERT_TRUE(egl.MakeCurrent(*dc, context, former));
    eglBindAPI(EGL_OPENGL_ES_API);
    glClearColor(0.5f, 0.25f, 0, 1);
    const Current before;
    {
        CPaintedView view;
        ASSERT_TRUE(view.CreateMemoryRendering(16, 16, 24));
        EXPECT_EQ(Current(), before);
        ExpectHalves(*view.GetHalves());
        EXPECT_EQ(Current(), before);
        CPaintedView other;
        ASSERT_TRUE(other.CreateMemoryRendering(16, 16, 24));
        {
            const CGLActivate outer(&view), inner(&view), nested(&other), none(nullptr);
            EXPECT_NE(Current(), before);
        }
        EXPECT_EQ(Current(), before);
    }
    EXPECT_EQ(Current(), before);
    GLfloat color[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, color);
    EXPECT_EQ(color[0], 0.5f);
    egl.Restore(*dc, former);
    egl.DeleteContext(context);
}

TEST(Activation, RefusesAContextThatAnotherThreadHas)
{
    CPaintedView view;
    ASSERT_TRUE(view.CreateMemoryRendering(16, 16, 24));
    const CGLActivate activate(&view);
    IGLPlatform& platform = GetGLPlatform();
    std::thread([&] {
        GLCurrentState former;
        EXPECT_FALSE(platform.MakeCurrent(*view.GetClientDC(), view.GetGLContext(), former));
        EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
        EXPECT_EQ(eglQueryAPI(), EGLenum{EGL_OPENGL_ES_API});    // as each thread starts
    }).join();
}

// What a driver that dies in an attempt leaves behind for the next start: here its death is an exception.
TEST(CrashGuard, AnAttemptThatNobodySurvivedIsNotMadeAgain)
{
    CMemoryProfile profile;
    CFaultyPlatform platform;
    platform.death = [] { throw std::runtime_error("the driver died"); };
    EXPECT_THROW(C3DView().CreateMemoryRendering(16, 16, 24), std::runtime_error);
    EXPECT_EQ(profile.values.at(PBUFFER_KEY), 0u);
    platform.death = nullptr;
    for (int start = 0; start < 2; start++) {
        platform.calls.clear();
        C3DView view;
        EXPECT_TRUE(view.CreateMemoryRendering(16, 16, 24));
        EXPECT_EQ(GetAttempts(platform), std::vector<std::string>{"CreateMemoryDC"});
        EXPECT_EQ(profile.values.at(PBUFFER_KEY), 0u);
    }
    profile.values[PBUFFER_KEY] = 1;    // the user turns it on again
    C3DView view;
    EXPECT_TRUE(view.CreateMemoryRendering(16, 16, 24));
    EXPECT_TRUE(view.IsDrawingFlagSet(GLDRAW_PBUFFER));
    EXPECT_EQ(profile.values.at(PBUFFER_KEY), 1u);
}

TEST(WindowContext, ShowsTheBackgroundWhateverElseThereIs)
{
    CFaultyPlatform platform;
    C3DView view;
    ASSERT_TRUE(view.SetPeer(new CTestPeer));
    int red = 0;
    const auto paint = [&] {
        red += 50;
        view.SetBackgroundColor(static_cast<unsigned char>(red), 0, 0);
        platform.shown = 0;
        view.OnPaint();
        EXPECT_EQ(platform.shown, 1);
        const CGLActivate active(&view);
        unsigned char pixel[3];
        glReadPixels(1, 1, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pixel);
        EXPECT_EQ(pixel[0], red);
    };
    paint();    // no scene
    C3DScene* const scene = C3DScene::Create();
    view.SetScene(scene, 0);
    paint();    // not flushed yet
    view.UpdateView(0);
    paint();
    view.SetScene(nullptr, 0);
    paint();
    DeleteMe(scene);
}
