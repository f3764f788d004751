#pragma once

#include <memory>
#include <vector>

#include "images/LayerBitmap.h"

/// The frames of an animation, or the pages of a document, all of which it owns.
class ZEL_API CFrameBitmap {
public:
    CFrameBitmap();
    ~CFrameBitmap();
    CFrameBitmap(const CFrameBitmap&) = delete;
    CFrameBitmap& operator=(const CFrameBitmap&) = delete;

    /// Takes the picture over as the last frame, shown for `duration` milliseconds; 0 leaves that to whoever shows it. False for null.
    bool AddFrame(CLayerBitmap* frame, int duration = 0);
    int GetFrameCount() const { return static_cast<int>(m_frames.size()); }
    /// Null, or 0, outside.
    CLayerBitmap* GetFrame(int index) const;
    int GetDuration(int index) const;
    void SetDuration(int index, int duration);
    /// How often the frames run; 0 for ever.
    int GetLoopCount() const { return m_loopCount; }
    void SetLoopCount(int count) { m_loopCount = count < 0 ? 0 : count; }

    /// Gives a frame to the caller; null outside.
    CLayerBitmap* DetachFrame(int index);
    /// Forgets all frames, which are the caller's from now on.
    void DetachAll();
    void RemoveAll();

private:
    struct Frame {
        std::unique_ptr<CLayerBitmap> bitmap;
        int duration;
    };
    std::vector<Frame> m_frames;
    int m_loopCount = 0;
};
