#pragma once

#include <array>
#include <memory>

#include "tools/Api.h"
#include "tools/Rect.h"

// What a view needs of the system below it: contexts, and something to draw on. One context belongs to one thread at a time; several
// threads may each have their own.

/// A GL context.
using HGLRC = struct GLContextHandle*;

/// What a context draws on: a window, a PBuffer, or memory. Made by the platform; destroyed after the contexts that draw on it.
class ZEL_API CDC {
public:
    virtual ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    /// Pixels that it has: of a PBuffer possibly fewer than asked for.
    virtual CSize GetSize() const = 0;
    /// Number of samples a pixel, 0 for none.
    virtual int GetSamples() const = 0;
    /// Shows what was drawn; nothing off screen. The context that draws on it is current.
    virtual void SwapBuffers() = 0;

protected:
    CDC() = default;
};
using HDC = CDC*;

/// What was current on a thread, whoever made it so.
using GLCurrentState = std::array<void*, 5>;

/// The system that gives contexts. Each operation that gives something gives null when it cannot, with nothing left behind.
class ZEL_API IGLPlatform {
public:
    virtual ~IGLPlatform();

    /// Whether there is a driver that gives contexts of the fixed-function pipeline. Tried once a process; cheap afterwards.
    virtual bool InitExtensions() = 0;
    /// Whether formats with PBuffers are offered.
    virtual bool HasPBuffers() = 0;

    /// On a window of the window system (IWindowPeer::GetNativeHandle: the number of an X11 window), with exactly that number of samples (0: none).
    virtual std::unique_ptr<CDC> CreateWindowDC(void* nativeWindow, int samples) = 0;
    /// Off screen, with at least `depth` bits of colour, 24 or 32. The largest that can be had when that is more than there is.
    virtual std::unique_ptr<CDC> CreatePBuffer(int width, int height, int depth) = 0;
    /// Off screen, in memory that any driver can draw to.
    virtual std::unique_ptr<CDC> CreateMemoryDC(int width, int height, int depth) = 0;

    virtual HGLRC CreateContext(CDC& dc) = 0;
    /// Accepts null. A context that is current stays usable until another becomes so.
    virtual void DeleteContext(HGLRC context) = 0;

    /// Makes the pair current; false, with nothing changed, when it is current on another thread. `former`: what was current before, either
    /// way.
    virtual bool MakeCurrent(CDC& dc, HGLRC context, GLCurrentState& former) = 0;
    /// Makes current again what was; nothing for an empty state. `dc` is what is current now.
    virtual void Restore(CDC& dc, const GLCurrentState& former) = 0;
};

/// The platform of the process: the one set, else that of EGL.
ZEL_API IGLPlatform& GetGLPlatform();
/// Null goes back to EGL. The platform stays the caller's, and must outlive the views made with it.
ZEL_API void SetGLPlatform(IGLPlatform* platform);

/// Whether a name is among the names of extensions, which have blanks between them, as a whole word. Null names none.
ZEL_API bool HasExtension(const char* names, const char* name);

/// That of EGL: without window system, display or GPU where need be. Defined at the edge (platform/egl).
IGLPlatform& GetEglPlatform();
