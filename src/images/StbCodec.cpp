// PSD (the flattened picture), HDR and PIC, by stb_image, which is compiled here.
//
// It reads zeros behind the end of the data, and knows no limit for its memory. So it gets its bytes through callbacks that throw where
// there are no more, and its memory through functions that count; what it holds when it is left goes with the arena.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <unordered_map>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

/// Blocks of one picture that is being read.
class Arena {
public:
    explicit Arena(long long most) : m_left(most), m_former(s_current) { s_current = this; }
    ~Arena()
    {
        for (const auto& [block, size] : m_blocks)
            std::free(block);
        s_current = m_former;
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    static Arena& Current() { return *s_current; }
    // Zeroed: a damaged picture shows no memory of others.
    void* Allocate(std::size_t size)
    {
        if (size > static_cast<unsigned long long>(m_left))
            throw std::bad_alloc();
        void* const block = std::calloc(1, std::max<std::size_t>(size, 1));
        if (!block)
            throw std::bad_alloc();
        m_blocks[block] = size;
        m_left -= static_cast<long long>(size);
        return block;
    }
    void Free(void* block)
    {
        const auto found = m_blocks.find(block);
        if (found == m_blocks.end())
            return;
        m_left += static_cast<long long>(found->second);
        m_blocks.erase(found);
        std::free(block);
    }
    void* Grow(void* block, std::size_t size)
    {
        void* const grown = Allocate(size);
        if (block) {
            std::memcpy(grown, block, std::min(m_blocks[block], size));
            Free(block);
        }
        return grown;
    }

private:
    static thread_local Arena* s_current;
    std::unordered_map<void*, std::size_t> m_blocks;
    long long m_left;
    Arena* m_former;
};

thread_local Arena* Arena::s_current = nullptr;

}

#define STBI_MALLOC(size) Arena::Current().Allocate(size)
#define STBI_REALLOC(block, size) Arena::Current().Grow(block, size)
#define STBI_FREE(block) Arena::Current().Free(block)
#define STBI_ONLY_PSD
#define STBI_ONLY_HDR
#define STBI_ONLY_PIC
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS BITMAP_MAX_SIDE
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

namespace {

struct EndOfData {};

struct Stream {
    const unsigned char* data;
    std::size_t size, position = 0;
};

int OnRead(void* user, char* to, int count)
{
    // It asks for a buffer full at a time; only when nothing is left does it want more than there is.
    constexpr std::size_t BUFFER = 128;
    Stream& stream = *static_cast<Stream*>(user);
    const std::size_t left = stream.size - stream.position, wanted = static_cast<std::size_t>(count), take = std::min(left, wanted);
    if (take == 0 || (take < wanted && wanted != BUFFER))
        throw EndOfData();
    std::memcpy(to, stream.data + stream.position, take);
    stream.position += take;
    return static_cast<int>(take);
}

void OnSkip(void* user, int count)
{
    Stream& stream = *static_cast<Stream*>(user);
    if (count < 0 || static_cast<std::size_t>(count) > stream.size - stream.position)
        throw EndOfData();
    stream.position += static_cast<std::size_t>(count);
}

int OnEnd(void* user)
{
    const Stream& stream = *static_cast<Stream*>(user);
    return stream.position == stream.size;
}

constexpr stbi_io_callbacks CALLBACKS = {&OnRead, &OnSkip, &OnEnd};

struct Pixels {
    const unsigned char* bytes;
    int width, height;
};

IMAGE_RESULT Decode(const unsigned char* data, std::size_t size, CImageTarget& target, Pixels& pixels)
{
    // The size first, so that the limits are asked before any memory is taken.
    Stream head{data, size};
    int channels;
    if (!stbi_info_from_callbacks(&CALLBACKS, &head, &pixels.width, &pixels.height, &channels))
        return IMAGE_UNSUPPORTED;
    if (!target.Fits(pixels.width, pixels.height, 4, 16))
        return target.GetResult();
    Stream stream{data, size};
    // Four channels, as it has them inside: its conversion to three does not look whether there is a picture.
    pixels.bytes = stbi_load_from_callbacks(&CALLBACKS, &stream, &pixels.width, &pixels.height, &channels, 4);
    return pixels.bytes ? IMAGE_OK : IMAGE_DAMAGED;
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    if (!target.WantsFrame())
        return IMAGE_NO_FRAME;
    Arena arena(std::max(target.GetRequest().options.maxBytes, 0LL) * 5);    // a float is kept for each byte of the result
    Pixels pixels;
    try {
        if (const IMAGE_RESULT result = Decode(data, size, target, pixels); result != IMAGE_OK)
            return target.Fail(result);
    } catch (const EndOfData&) {
        return target.Fail(IMAGE_TRUNCATED);
    }
    auto picture = target.NewPicture(BITMAP_RGBA, pixels.width, pixels.height);
    if (!picture)
        return target.GetResult();
    const std::size_t rowSize = static_cast<std::size_t>(pixels.width) * 4;
    for (int y = 0; y < pixels.height; y++)
        std::memcpy(picture->GetLine(y), pixels.bytes + static_cast<std::size_t>(y) * rowSize, rowSize);
    if (!picture->HasAlpha())
        picture.reset(picture->ConvertToType(BITMAP_RGB));
    target.AddFrame(std::move(picture));
    return target.GetResult();
}

bool Starts(const unsigned char* data, std::size_t size, const char* mark, std::size_t length)
{
    return size >= length && std::memcmp(data, mark, length) == 0;
}

IMAGE_PROBE ProbePsd(const unsigned char* data, std::size_t size) { return Starts(data, size, "8BPS", 4) ? PROBE_SURE : PROBE_NO; }

IMAGE_PROBE ProbeHdr(const unsigned char* data, std::size_t size)
{
    return Starts(data, size, "#?RADIANCE\n", 11) || Starts(data, size, "#?RGBE\n", 7) ? PROBE_SURE : PROBE_NO;
}

IMAGE_PROBE ProbePic(const unsigned char* data, std::size_t size)
{
    constexpr std::size_t MARK = 88;    // behind version and comment
    return Starts(data, size, "\x53\x80\xF6\x34", 4) && size >= MARK + 4 && std::memcmp(data + MARK, "PICT", 4) == 0 ? PROBE_SURE
                                                                                                                     : PROBE_NO;
}

}

const CImageCodec g_psdCodec = {FourCC("PSD "), L"PSD", L".psd", false, &ProbePsd, &Read, nullptr};
const CImageCodec g_hdrCodec = {FourCC("HDR "), L"HDR", L".hdr;.rgbe", false, &ProbeHdr, &Read, nullptr};
const CImageCodec g_picCodec = {FourCC("PIC "), L"PIC", L".pic", false, &ProbePic, &Read, nullptr};
