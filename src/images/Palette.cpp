#include "images/Palette.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr std::size_t MOST_COLORS = 256;
constexpr int CELL_BITS = 5, CELLS = 1 << 3 * CELL_BITS;    // colours are counted in cells of 8 x 8 x 8

struct Pixel {
    int color[3];
    bool visible;
};

Pixel PixelAt(const unsigned char* at, int channels)
{
    if (channels == 1)
        return {{at[0], at[0], at[0]}, true};
    return {{at[0], at[1], at[2]}, channels < 4 || at[3] >= 128};
}

std::size_t CellOf(const int* color)
{
    constexpr int DROP = 8 - CELL_BITS;
    return static_cast<std::size_t>((color[0] >> DROP) << 2 * CELL_BITS | (color[1] >> DROP) << CELL_BITS | color[2] >> DROP);
}

// A cell that is used: how often, and the sum of its colours.
struct Cell {
    std::uint32_t number;
    std::uint64_t count;
    std::array<std::uint64_t, 3> sum;

    double Mean(int axis) const { return static_cast<double>(sum[axis]) / static_cast<double>(count); }
};

// A part of the cells, which becomes one colour.
struct Box {
    std::size_t first, end;
    int axis;         // along which its colours differ most,
    double spread;    // and how much that matters
};

Box MakeBox(const std::vector<Cell>& cells, std::size_t first, std::size_t end)
{
    double count = 0, sum[3] = {}, squares[3] = {};
    for (std::size_t i = first; i < end; i++) {
        const double weight = static_cast<double>(cells[i].count);
        count += weight;
        for (int c = 0; c < 3; c++) {
            sum[c] += weight * cells[i].Mean(c);
            squares[c] += weight * cells[i].Mean(c) * cells[i].Mean(c);
        }
    }
    Box box = {first, end, 0, -1};
    for (int c = 0; c < 3; c++)
        if (const double spread = squares[c] - sum[c] * sum[c] / count; spread > box.spread) {
            box.axis = c;
            box.spread = spread;
        }
    if (end - first < 2)
        box.spread = -1;    // cannot be cut
    return box;
}

// Cuts a box where the mean of its colours lies; both parts get at least one cell.
std::size_t CutBox(std::vector<Cell>& cells, const Box& box)
{
    const auto first = cells.begin() + static_cast<std::ptrdiff_t>(box.first), end = cells.begin() + static_cast<std::ptrdiff_t>(box.end);
    double count = 0, sum = 0;
    for (auto cell = first; cell != end; ++cell) {
        count += static_cast<double>(cell->count);
        sum += static_cast<double>(cell->sum[box.axis]);
    }
    const double mean = sum / count;
    const auto cut = std::partition(first, end, [&](const Cell& cell) { return cell.Mean(box.axis) <= mean; });
    return std::clamp(static_cast<std::size_t>(cut - cells.begin()), box.first + 1, box.end - 1);
}

CRGBColor ColorOf(const std::vector<Cell>& cells, const Box& box)
{
    std::uint64_t count = 0, sum[3] = {};
    for (std::size_t i = box.first; i < box.end; i++) {
        count += cells[i].count;
        for (int c = 0; c < 3; c++)
            sum[c] += cells[i].sum[c];
    }
    const auto mean = [&](int c) { return static_cast<unsigned char>((sum[c] + count / 2) / count); };
    return {mean(0), mean(1), mean(2)};
}

// The nearest colours, kept by cell.
class Nearest {
public:
    explicit Nearest(const std::vector<CRGBColor>& colors) : m_colors(colors), m_known(CELLS, -1) {}

    unsigned char Find(const int* color)
    {
        short& known = m_known[CellOf(color)];
        if (known < 0)
            known = static_cast<short>(Search(color));
        return static_cast<unsigned char>(known);
    }

private:
    std::size_t Search(const int* color) const
    {
        std::size_t best = 0;
        int least = INT32_MAX;
        for (std::size_t i = 0; i < m_colors.size(); i++) {
            int distance = 0;
            for (int c = 0; c < 3; c++) {
                const int off = m_colors[i].ValPtr()[c] - color[c];
                distance += off * off;
            }
            if (distance < least) {
                least = distance;
                best = i;
            }
        }
        return best;
    }

    const std::vector<CRGBColor>& m_colors;
    std::vector<short> m_known;
};

}

CPaletteImage::CPaletteImage(const Bitmap& picture)
    : m_width(static_cast<std::size_t>(picture.GetWidth())), m_indices(m_width * static_cast<std::size_t>(picture.GetHeight()))
{
    if (TakeExactly(picture))
        return;
    m_colors.clear();
    m_transparent = -1;
    ChooseColors(picture);
    Spread(picture);
}

bool CPaletteImage::TakeExactly(const Bitmap& picture)
{
    // Open addressing, four places a colour. A value of 0 is free; colours carry a bit above theirs.
    constexpr std::uint32_t PLACES = 1024, USED = 1u << 24;
    std::array<std::uint32_t, PLACES> keys{};
    std::array<unsigned char, PLACES> indices{};
    const int channels = picture.GetBytesPerPixel();
    for (int y = 0; y < picture.GetHeight(); y++) {
        const unsigned char* at = picture.GetLine(y);
        unsigned char* out = GetLine(y);
        for (std::size_t x = 0; x < m_width; x++, at += channels) {
            const Pixel pixel = PixelAt(at, channels);
            const std::uint32_t key =
                pixel.visible ? USED | static_cast<std::uint32_t>(pixel.color[0] << 16 | pixel.color[1] << 8 | pixel.color[2]) : 2 * USED;
            std::uint32_t place = (key * 2654435761u) >> 22;
            while (keys[place] != 0 && keys[place] != key)
                place = (place + 1) % PLACES;
            if (keys[place] == 0) {
                if (m_colors.size() == MOST_COLORS)
                    return false;
                keys[place] = key;
                indices[place] = static_cast<unsigned char>(m_colors.size());
                if (!pixel.visible)
                    m_transparent = static_cast<int>(m_colors.size());
                m_colors.emplace_back(static_cast<unsigned char>(key >> 16), static_cast<unsigned char>(key >> 8),
                                      static_cast<unsigned char>(key));
            }
            out[x] = indices[place];
        }
    }
    return true;
}

void CPaletteImage::ChooseColors(const Bitmap& picture)
{
    std::vector<Cell> cells(CELLS);
    const int channels = picture.GetBytesPerPixel();
    bool hidden = false;
    for (int y = 0; y < picture.GetHeight(); y++) {
        const unsigned char* at = picture.GetLine(y);
        for (std::size_t x = 0; x < m_width; x++, at += channels) {
            const Pixel pixel = PixelAt(at, channels);
            hidden |= !pixel.visible;
            if (!pixel.visible)
                continue;
            Cell& cell = cells[CellOf(pixel.color)];
            cell.count++;
            for (int c = 0; c < 3; c++)
                cell.sum[c] += static_cast<std::uint64_t>(pixel.color[c]);
        }
    }
    std::erase_if(cells, [](const Cell& cell) { return cell.count == 0; });
    const std::size_t wanted = MOST_COLORS - hidden;
    std::vector<Box> boxes = {MakeBox(cells, 0, cells.size())};
    while (boxes.size() < wanted) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(), [](const Box& a, const Box& b) { return a.spread < b.spread; });
        if (widest->spread <= 0)
            break;
        const Box box = *widest;
        const std::size_t cut = CutBox(cells, box);
        *widest = MakeBox(cells, box.first, cut);
        boxes.push_back(MakeBox(cells, cut, box.end));
    }
    for (const Box& box : boxes)
        m_colors.push_back(ColorOf(cells, box));
    if (hidden)
        m_transparent = static_cast<int>(m_colors.size());
}

// Error diffusion by the weights 7, 3, 5, 1 of 16, to and fro so that no direction shows.
void CPaletteImage::Spread(const Bitmap& picture)
{
    const int channels = picture.GetBytesPerPixel(), width = picture.GetWidth();
    Nearest nearest(m_colors);
    std::vector<int> row((m_width + 2) * 3), below((m_width + 2) * 3);    // a pixel more on each side
    for (int y = 0; y < picture.GetHeight(); y++) {
        const int step = y % 2 ? -1 : 1;
        std::fill(below.begin(), below.end(), 0);
        for (int i = 0; i < width; i++) {
            const int x = step > 0 ? i : width - 1 - i;
            const Pixel pixel = PixelAt(picture.GetLine(y) + static_cast<std::ptrdiff_t>(x) * channels, channels);
            if (!pixel.visible) {
                GetLine(y)[x] = static_cast<unsigned char>(m_transparent);
                continue;
            }
            int wanted[3];
            int* const here = &row[static_cast<std::size_t>(x + 1) * 3];
            for (int c = 0; c < 3; c++)
                wanted[c] = std::clamp(pixel.color[c] + here[c] / 16, 0, 255);
            const unsigned char index = nearest.Find(wanted);
            GetLine(y)[x] = index;
            int* const under = &below[static_cast<std::size_t>(x + 1) * 3];
            for (int c = 0; c < 3; c++) {
                const int off = wanted[c] - m_colors[index].ValPtr()[c];
                here[c + step * 3] += off * 7;
                under[c - step * 3] += off * 3;
                under[c] += off * 5;
                under[c + step * 3] += off;
            }
        }
        row.swap(below);
    }
    if (m_transparent >= 0)
        m_colors.emplace_back();
}
