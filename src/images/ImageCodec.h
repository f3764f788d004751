#pragma once

// Image files in memory. A codec is a row of functions; ReadImage and WriteImage choose it, hold the limits and turn failures into one
// result. Nothing here touches a file, prints, or ends the process.

#include <climits>
#include <cstddef>
#include <memory>
#include <vector>

#include "images/FrameBitmap.h"
#include "images/ImageOptions.h"
#include "tools/Memory.h"
#include "tools/String.h"

/// How it went. Each failure has a text (GetImageResultText).
enum IMAGE_RESULT {
    IMAGE_OK = 0,
    IMAGE_UNKNOWN,        ///< no format that is known
    IMAGE_UNSUPPORTED,    ///< a variant of the format that is not read
    IMAGE_TRUNCATED,
    IMAGE_DAMAGED,
    IMAGE_TOO_LARGE,    ///< beyond the limits
    IMAGE_NO_MEMORY,
    IMAGE_NO_FRAME,      ///< the file ends before the frame asked for
    IMAGE_SIDES,         ///< the format cannot hold a picture of that size
    IMAGE_NO_PICTURE,    ///< nothing to write
};

using CImageBytes = std::vector<unsigned char, XBlockAllocator<unsigned char>>;

/// For callbacks of libraries written in C: false without memory.
bool AppendBytes(CImageBytes& out, const unsigned char* bytes, std::size_t count) noexcept;

/// What is wanted of a file.
struct CImageRequest {
    int first = 0, count = INT_MAX;           ///< frames
    int neededWidth = 0, neededHeight = 0;    ///< a reduced picture of at least that size will do; 0: as it is
    unsigned int fileClass = 0;               ///< what the name says, for formats that are not recognised by their content
    CImageOptions options;
};

/// Where a codec puts what it reads. Keeps the limits: they are checked before anything is allocated.
class CImageTarget {
public:
    CImageTarget(const CImageRequest& request, CFrameBitmap& frames) : m_request(request), m_frames(frames) {}

    const CImageRequest& GetRequest() const { return m_request; }
    /// Keeps the first failure; returns it.
    IMAGE_RESULT Fail(IMAGE_RESULT result);
    IMAGE_RESULT GetResult() const { return m_result; }

    /// Whether a picture may have that size; a failure is kept. `extra`: bytes a pixel that decoding needs besides.
    bool Fits(long long width, long long height, int bytesPerPixel, int extra = 0);
    /// A picture within the limits, all bytes 0; null and a failure kept beyond them.
    std::unique_ptr<Bitmap> NewPicture(BitmapType type, long long width, long long height, int extra = 0);

    /// Frames come in order; each is either wanted and added, or skipped.
    bool WantsFrame() const { return m_next >= m_request.first && m_next - m_request.first < m_request.count; }
    bool IsDone() const { return m_next >= m_request.first && m_next - m_request.first >= m_request.count; }
    void SkipFrame() { m_next++; }
    /// False, with a failure kept, for more frames than allowed.
    bool AddFrame(std::unique_ptr<Bitmap> picture, int duration = 0);
    /// A mask beside the frame before, when that was wanted.
    void AddMask(std::unique_ptr<Bitmap> mask);
    void SetLoopCount(int count) { m_frames.SetLoopCount(count); }
    int GetFrameNumber() const { return m_next; }

private:
    const CImageRequest& m_request;
    CFrameBitmap& m_frames;
    IMAGE_RESULT m_result = IMAGE_OK;
    long long m_bytes = 0;
    int m_next = 0;
};

/// What is written: at least one frame.
struct CImageSource {
    struct Frame {
        const Bitmap* picture;
        int duration;
    };
    std::vector<Frame> frames;
    int loopCount = 0;
};

enum IMAGE_PROBE { PROBE_NO, PROBE_POSSIBLE, PROBE_SURE };

struct CImageCodec {
    unsigned int fileClass;
    const wchar_t* name;
    const wchar_t* extensions;
    bool manyFrames;    ///< several frames go into one file
    IMAGE_PROBE (*probe)(const unsigned char* data, std::size_t size);
    /// Reads the frames that the target wants. Anything but IMAGE_OK drops them all.
    IMAGE_RESULT (*read)(const unsigned char* data, std::size_t size, CImageTarget& target);
    /// Null where the format is only read.
    IMAGE_RESULT (*write)(const CImageSource& source, const CImageOptions& options, CImageBytes& out);
};

extern const CImageCodec g_pngCodec, g_jpegCodec, g_tiffCodec, g_webpCodec, g_gifCodec, g_bmpCodec, g_tgaCodec, g_psdCodec, g_hdrCodec,
    g_picCodec, g_pnmCodec;

/// All codecs, in the order in which they are asked.
const std::vector<const CImageCodec*>& GetImageCodecs();
/// Null for a class of none.
const CImageCodec* FindImageCodec(unsigned int fileClass);
/// The codec of some bytes: by what they say, then by the class given. Null when nobody knows them.
const CImageCodec* ProbeImage(const unsigned char* data, std::size_t size, unsigned int fileClass);

/// Reads the frames wanted into `frames`; after a failure it is empty.
IMAGE_RESULT ReadImage(const unsigned char* data, std::size_t size, const CImageRequest& request, CFrameBitmap& frames);
IMAGE_RESULT WriteImage(const CImageCodec& codec, const CImageSource& source, const CImageOptions& options, CImageBytes& out);

/// A sentence in the language of the user; empty for IMAGE_OK.
CXTString<wchar_t> GetImageResultText(IMAGE_RESULT result);

/// Turns a picture upright that a camera or scanner kept in one of the eight orientations: 1 upright, 2 mirrored, 3 turned by 180
/// degrees, 4 upside down, 5 transposed, 6 to be turned clockwise, 7 transposed over the other diagonal, 8 to be turned the other way.
std::unique_ptr<Bitmap> MakeUpright(std::unique_ptr<Bitmap> picture, int orientation);
/// True for a picture whose alpha is 0 throughout: nobody means that, and many programs leave a fourth byte 0 that they do not use.
bool IsInvisible(const Bitmap& picture);
