#include "images/Bitmap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr int RESIZE_NEAREST = 0;

bool IsPossibleSize(int width, int height)
{
    return width > 0 && height > 0 && width <= BITMAP_MAX_SIDE && height <= BITMAP_MAX_SIDE &&
           static_cast<long long>(width) * height <= BITMAP_MAX_PIXELS;
}

// Old pixels along one side that a new one is made of.
struct Taps {
    int first;
    std::vector<float> weights;
};

// Shrinking: the pixels covered, by the length covered. Growing: the two beside the new pixel's middle.
std::vector<Taps> MakeTaps(int from, int to)
{
    std::vector<Taps> taps(to);
    const double scale = static_cast<double>(from) / to;
    for (int i = 0; i < to; i++) {
        const double middle = (i + 0.5) * scale, reach = std::max(scale, 1.0) / 2;
        const double start = std::max(middle - reach, 0.0), end = std::min(middle + reach, static_cast<double>(from));
        taps[i].first = std::min(static_cast<int>(start), from - 1);
        const int last = std::clamp(static_cast<int>(std::ceil(end)) - 1, taps[i].first, from - 1);
        for (int k = taps[i].first; k <= last; k++)
            taps[i].weights.push_back(static_cast<float>((std::min(end, k + 1.0) - std::max(start, k + 0.0)) / (end - start)));
    }
    return taps;
}

// One row as floats, colours weighted by alpha: what cannot be seen must not colour its neighbours.
void LoadRow(const unsigned char* row, int width, int channels, float* out)
{
    for (int x = 0; x < width; x++, row += channels, out += channels) {
        const float alpha = channels == 4 ? row[3] / 255.f : 1.f;
        for (int c = 0; c < std::min(channels, 3); c++)
            out[c] = row[c] * alpha;
        if (channels == 4)
            out[3] = row[3];
    }
}

void StoreRow(const float* values, int width, int channels, unsigned char* row)
{
    for (int x = 0; x < width; x++, row += channels, values += channels) {
        const float alpha = channels == 4 ? values[3] / 255.f : 1.f;
        for (int c = 0; c < std::min(channels, 3); c++)
            row[c] = static_cast<unsigned char>(std::clamp(alpha > 0 ? std::lround(values[c] / alpha) : 0L, 0L, 255L));
        if (channels == 4)
            row[3] = static_cast<unsigned char>(std::clamp(std::lround(values[3]), 0L, 255L));
    }
}

void ShrinkRow(const float* row, const std::vector<Taps>& taps, int channels, float* out)
{
    for (const Taps& tap : taps) {
        std::fill(out, out + channels, 0.f);
        const float* pixel = row + static_cast<size_t>(tap.first) * channels;
        for (const float weight : tap.weights)
            for (int c = 0; c < channels; c++)
                out[c] += weight * *pixel++;
        out += channels;
    }
}

/// Shrinks by whole numbers, at most MOST pixels into one: sums of bytes, where the general way goes through floats. Not for pictures with alpha.
class BlockAverage {
public:
    static constexpr int MOST = 64;    // below it the division by multiplication is exact

    BlockAverage(int width, int channels, int across, int down)
        : m_width(width), m_channels(channels), m_across(across), m_count(static_cast<std::uint32_t>(across * down)),
          m_inverse((1u << SHIFT) / m_count + 1), m_sums(static_cast<size_t>(width) * across * channels)
    {
    }
    void Add(const unsigned char* row)
    {
        for (size_t i = 0; i < m_sums.size(); i++)
            m_sums[i] = static_cast<std::uint16_t>(m_sums[i] + row[i]);
    }
    /// The rows added, as one; begins anew.
    void Store(unsigned char* out)
    {
        const std::uint16_t* sum = m_sums.data();
        for (int x = 0; x < m_width; x++, sum += m_across * m_channels)
            for (int c = 0; c < m_channels; c++) {
                std::uint32_t total = m_count / 2;
                for (int k = 0; k < m_across; k++)
                    total += sum[k * m_channels + c];
                *out++ = static_cast<unsigned char>(total * m_inverse >> SHIFT);
            }
        std::ranges::fill(m_sums, std::uint16_t{0});
    }

private:
    static constexpr int SHIFT = 20;

    int m_width, m_channels, m_across;
    std::uint32_t m_count, m_inverse;
    std::vector<std::uint16_t> m_sums;    // at most MOST bytes each
};

inline void ConvertPixel(const unsigned char* source, int from, unsigned char* target, int to)
{
    if (to == 1) {
        // Weights of the luma of red, green and blue, in 256ths that add up.
        *target = from == 1   ? source[0]
                  : from == 4 ? source[3]
                              : static_cast<unsigned char>((77 * source[0] + 150 * source[1] + 29 * source[2] + 128) >> 8);
        return;
    }
    for (int c = 0; c < 3; c++)
        target[c] = source[from == 1 ? 0 : c];
    if (to == 4)
        target[3] = from == 4 ? source[3] : 255;
}

}

Bitmap::Bitmap(BitmapType type, int width, int height)
    : m_type(type), m_width(width), m_height(height),
      m_pixels(std::make_unique<unsigned char[]>(static_cast<size_t>(width) * height * GetBytesPerPixel()))
{
}

Bitmap::~Bitmap() = default;
rgbBitmap::~rgbBitmap() = default;
rgbaBitmap::~rgbaBitmap() = default;
greyBitmap::~greyBitmap() = default;

rgbBitmap* rgbBitmap::Create(int width, int height) { return IsPossibleSize(width, height) ? new rgbBitmap(width, height) : nullptr; }

rgbaBitmap* rgbaBitmap::Create(int width, int height) { return IsPossibleSize(width, height) ? new rgbaBitmap(width, height) : nullptr; }

greyBitmap* greyBitmap::Create(int width, int height) { return IsPossibleSize(width, height) ? new greyBitmap(width, height) : nullptr; }

unsigned char* Bitmap::GetLine(int y)
{
    return y >= 0 && y < m_height ? m_pixels.get() + static_cast<size_t>(y) * m_width * GetBytesPerPixel() : nullptr;
}

const unsigned char* Bitmap::GetLine(int y) const { return const_cast<Bitmap*>(this)->GetLine(y); }

bool Bitmap::Resize(int width, int height, int mode)
{
    if (!IsPossibleSize(width, height))
        return false;
    if (width == m_width && height == m_height)
        return true;
    const int channels = GetBytesPerPixel();
    const size_t rowSize = static_cast<size_t>(width) * channels;
    auto pixels = std::make_unique<unsigned char[]>(rowSize * height);
    if (mode == RESIZE_NEAREST) {
        for (int y = 0; y < height; y++) {
            const unsigned char* const line = GetLine(static_cast<int>((2LL * y + 1) * m_height / (2LL * height)));
            for (int x = 0; x < width; x++) {
                const size_t source = static_cast<size_t>((2LL * x + 1) * m_width / (2LL * width));
                std::memcpy(&pixels[y * rowSize + static_cast<size_t>(x) * channels], line + source * channels, channels);
            }
        }
    } else if (const int across = m_width / width, down = m_height / height;
               channels != 4 && across * width == m_width && down * height == m_height && across * down <= BlockAverage::MOST) {
        BlockAverage average(width, channels, across, down);
        for (int y = 0; y < height; y++) {
            for (int k = 0; k < down; k++)
                average.Add(GetLine(y * down + k));
            average.Store(&pixels[y * rowSize]);
        }
    } else {
        const std::vector<Taps> columns = MakeTaps(m_width, width), rows = MakeTaps(m_height, height);
        std::vector<float> loaded(static_cast<size_t>(m_width) * channels), shrunk(rowSize), sum(rowSize);
        for (int y = 0; y < height; y++) {
            std::fill(sum.begin(), sum.end(), 0.f);
            for (size_t k = 0; k < rows[y].weights.size(); k++) {
                LoadRow(GetLine(rows[y].first + static_cast<int>(k)), m_width, channels, loaded.data());
                ShrinkRow(loaded.data(), columns, channels, shrunk.data());
                for (size_t i = 0; i < rowSize; i++)
                    sum[i] += rows[y].weights[k] * shrunk[i];
            }
            StoreRow(sum.data(), width, channels, &pixels[y * rowSize]);
        }
    }
    m_pixels = std::move(pixels);
    m_width = width;
    m_height = height;
    return true;
}

Bitmap* Bitmap::ConvertToType(BitmapType type) const
{
    Bitmap* out = nullptr;
    if (type == BITMAP_RGB)
        out = rgbBitmap::Create(m_width, m_height);
    else if (type == BITMAP_RGBA)
        out = rgbaBitmap::Create(m_width, m_height);
    else if (type == BITMAP_GREY)
        out = greyBitmap::Create(m_width, m_height);
    if (!out)
        return nullptr;
    const int from = GetBytesPerPixel(), to = out->GetBytesPerPixel();
    for (int y = 0; y < m_height; y++) {
        const unsigned char* source = GetLine(y);
        unsigned char* target = out->GetLine(y);
        for (int x = 0; x < m_width; x++, source += from, target += to)
            ConvertPixel(source, from, target, to);
    }
    return out;
}

bool Bitmap::HasAlpha() const
{
    if (m_type != BITMAP_RGBA)
        return false;
    const size_t count = static_cast<size_t>(m_width) * m_height;
    for (size_t i = 0; i < count; i++)
        if (m_pixels[i * 4 + 3] != 255)
            return true;
    return false;
}

void Bitmap::InvertAlpha()
{
    if (m_type != BITMAP_RGBA)
        return;
    const size_t count = static_cast<size_t>(m_width) * m_height;
    for (size_t i = 0; i < count; i++)
        m_pixels[i * 4 + 3] = static_cast<unsigned char>(255 - m_pixels[i * 4 + 3]);
}

void Bitmap::DeleteBitmap(Bitmap* bitmap) { delete bitmap; }
