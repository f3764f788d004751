#include "images/FrameBitmap.h"

CFrameBitmap::CFrameBitmap() = default;
CFrameBitmap::~CFrameBitmap() = default;

bool CFrameBitmap::AddFrame(CLayerBitmap* frame, int duration)
{
    if (!frame)
        return false;
    m_frames.push_back({std::unique_ptr<CLayerBitmap>(frame), duration < 0 ? 0 : duration});
    return true;
}

CLayerBitmap* CFrameBitmap::GetFrame(int index) const
{
    return index >= 0 && index < GetFrameCount() ? m_frames[index].bitmap.get() : nullptr;
}

int CFrameBitmap::GetDuration(int index) const { return index >= 0 && index < GetFrameCount() ? m_frames[index].duration : 0; }

void CFrameBitmap::SetDuration(int index, int duration)
{
    if (index >= 0 && index < GetFrameCount())
        m_frames[index].duration = duration < 0 ? 0 : duration;
}

CLayerBitmap* CFrameBitmap::DetachFrame(int index)
{
    if (index < 0 || index >= GetFrameCount())
        return nullptr;
    CLayerBitmap* const frame = m_frames[index].bitmap.release();
    m_frames.erase(m_frames.begin() + index);
    return frame;
}

void CFrameBitmap::DetachAll()
{
    for (Frame& frame : m_frames)
        frame.bitmap.release();
    m_frames.clear();
}

void CFrameBitmap::RemoveAll() { m_frames.clear(); }
