#pragma once

// EGL with faults, windows that are none, and a count of what was not given back.

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "render/GLPlatform.h"

/// The platform of all views made while it lives.
class CFaultyPlatform : public IGLPlatform {
public:
    CFaultyPlatform() { SetGLPlatform(this); }
    ~CFaultyPlatform() override { SetGLPlatform(nullptr); }

    /// Steps that fail, by the name of the operation.
    std::set<std::string> faults;
    /// PBuffers are no larger.
    CSize most{1 << 16, 1 << 16};
    /// Samples that windows can have.
    std::set<int> samples{0};
    /// Runs in place of making a PBuffer's or a window's surface, when there is one: a driver that dies.
    std::function<void()> death;

    std::vector<std::string> calls;
    int surfaces = 0, contexts = 0, shown = 0;

    bool InitExtensions() override { return Does("InitExtensions") && m_egl.InitExtensions(); }
    bool HasPBuffers() override { return Does("HasPBuffers") && m_egl.HasPBuffers(); }
    std::unique_ptr<CDC> CreateWindowDC(void* window, int count) override
    {
        if (!Does("CreateWindowDC" + std::to_string(count)) || !window || !samples.contains(count))
            return nullptr;
        if (death && count > 0)
            death();
        return Counted(m_egl.CreatePBuffer(64, 64, 32), count);
    }
    std::unique_ptr<CDC> CreatePBuffer(int width, int height, int depth) override
    {
        if (!Does("CreatePBuffer"))
            return nullptr;
        if (death)
            death();
        return Counted(m_egl.CreatePBuffer(std::min(width, most.cx), std::min(height, most.cy), depth), 0);
    }
    std::unique_ptr<CDC> CreateMemoryDC(int width, int height, int depth) override
    {
        return Does("CreateMemoryDC") ? Counted(m_egl.CreateMemoryDC(width, height, depth), 0) : nullptr;
    }
    HGLRC CreateContext(CDC& dc) override
    {
        const HGLRC context = Does("CreateContext") ? m_egl.CreateContext(*Of(dc).inner) : nullptr;
        contexts += context != nullptr;
        return context;
    }
    void DeleteContext(HGLRC context) override
    {
        contexts -= context != nullptr;
        m_egl.DeleteContext(context);
    }
    bool MakeCurrent(CDC& dc, HGLRC context, GLCurrentState& former) override
    {
        if (!m_egl.MakeCurrent(*Of(dc).inner, context, former))
            return false;
        if (Does("MakeCurrent"))
            return true;
        m_egl.Restore(*Of(dc).inner, former);
        return false;
    }
    void Restore(CDC& dc, const GLCurrentState& former) override { m_egl.Restore(*Of(dc).inner, former); }

private:
    struct Surface : CDC {
        Surface(std::unique_ptr<CDC> dc, int count, int& alive, int& swaps)
            : inner(std::move(dc)), samples(count), live(alive), shown(swaps)
        {
            live++;
        }
        ~Surface() override { live--; }
        CSize GetSize() const override { return inner->GetSize(); }
        int GetSamples() const override { return samples; }
        void SwapBuffers() override { shown++; }

        std::unique_ptr<CDC> inner;
        int samples;
        int& live;
        int& shown;
    };
    static Surface& Of(CDC& dc) { return static_cast<Surface&>(dc); }
    std::unique_ptr<CDC> Counted(std::unique_ptr<CDC> dc, int count)
    {
        return dc ? std::make_unique<Surface>(std::move(dc), count, surfaces, shown) : nullptr;
    }
    bool Does(const std::string& step)
    {
        calls.push_back(step);
        return !faults.contains(step);
    }

    IGLPlatform& m_egl = GetEglPlatform();
};
