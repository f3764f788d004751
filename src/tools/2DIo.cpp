#include "tools/2DIo.h"

#include <algorithm>

C2DIo::C2DIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent) : CFileIo(name, flags, parent) { RegisterImageFormats(); }

C2DIo::~C2DIo() = default;

void RegisterImageFormats() {}

int C2DIo::PrepareReading() { return IORESULT_NO_PARSER; }

int C2DIo::PrepareReading(const void*, std::size_t) { return IORESULT_NO_PARSER; }

void C2DIo::SetNeededBitmapSize(int width, int height)
{
    m_neededWidth = std::max(width, 0);
    m_neededHeight = std::max(height, 0);
}

CLayerBitmap* C2DIo::Read(int) { return nullptr; }

CFrameBitmap* C2DIo::ReadFrames() { return nullptr; }

int C2DIo::PrepareSaving(const CFrameBitmap*, int) { return IORESULT_FAILED; }

int C2DIo::Save(const CFrameBitmap*, int) { return IORESULT_FAILED; }

int C2DIo::Save(const Bitmap*) { return IORESULT_FAILED; }
