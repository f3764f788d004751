#pragma once

#include "files/FileIo.h"
#include "images/FrameBitmap.h"
#include "images/ImageOptions.h"
#include "tools/Memory.h"

/// Makes the classes of image files known (fileGetExtensions(FILE_FAMILY_BITMAP)). Once a process; later calls do nothing. C2DIo and
/// Init3DZel call it.
ZEL_API void RegisterImageFormats();

/// An image file on its way in or out. Its format follows from its content when reading, from its class, or else its extension,
/// when writing. Failures are told by GetResultText.
///
/// Read: PNG, JPEG, TIFF, WebP, GIF, BMP, TGA, PNM, and of PSD, HDR and PIC the flattened picture. Written: the first seven. All are
/// given as 8 bits a channel, top row first, upright, as LAYER_RGB or LAYER_RGBA. A damaged or truncated file is refused as a whole.
class ZEL_API C2DIo : public CFileIo {
public:
    /// `parent` is the window over which dialogs open; may be null.
    C2DIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent);
    ~C2DIo() override;

    CImageOptions& GetOptions() { return m_options; }

    /// Reads the file's bytes and recognises the format. IORESULT_OK, or what is wrong.
    int PrepareReading();
    /// The same for a file in memory, whose bytes must stay until the last Read.
    int PrepareReading(const void* bytes, std::size_t size);
    /// A smaller picture will do, as long as it has at least that size: JPEG is then read at a half, a quarter or an eighth.
    void SetNeededBitmapSize(int width, int height);
    /// One frame or page, the caller's; null when it cannot be read or there is none. Frames of an animation are whole pictures.
    CLayerBitmap* Read(int frame);
    /// All frames, the caller's; null when one cannot be read.
    CFrameBitmap* ReadFrames();

    /// Finds out whether the first `count` frames can go into this file. IORESULT_OK, or 0: no frames, frames without picture, or no format of
    /// that name that can be written.
    int PrepareSaving(const CFrameBitmap* frames, int count);
    /// Writes the frames that PrepareSaving was asked about, beginning with `first`. GIF, WebP and TIFF keep them in one file; others write a
    /// numbered file each when there are several: name0000.png, name0001.png... IORESULT_OK, or 0.
    int Save(const CFrameBitmap* frames, int first);
    /// Writes one picture. IORESULT_OK, or 0.
    int Save(const Bitmap* bitmap);

private:
    int Fail(int result, unsigned int reason);
    CFrameBitmap* ReadRange(int first, int count);
    int WriteFrames(const CFrameBitmap& frames, int first, int count, const CXTString<wchar_t>& name);

    CImageOptions m_options;
    std::vector<unsigned char, XBlockAllocator<unsigned char>> m_file;
    const unsigned char* m_bytes = nullptr;
    std::size_t m_size = 0;
    int m_neededWidth = 0, m_neededHeight = 0;
    int m_saveCount = 0;
};
