#pragma once

#include <array>
#include <vector>

#include <3dzel.h>

/// What a scene holds and a format cannot.
enum Loss : unsigned int {
    LOSS_CAMERAS,
    LOSS_LIGHTS,
    LOSS_KEYS,
    LOSS_MATERIAL_KEYS,
    LOSS_BONES,
    LOSS_NAMELESS_WEIGHTS,
    LOSS_DUMMIES,
    LOSS_CURVES,
    LOSS_POINTS,
    LOSS_NORMALS,
    LOSS_UV_SETS,
    LOSS_COLOR_SETS,
    LOSS_MATERIALS,
    LOSS_MAPS,
    LOSS_PROJECTIONS,
    LOSS_COLORS,
    LOSS_ALPHA_FILES,
    LOSS_TEXTURES,
    LOSS_FACES,
    LOSS_SHEAR,
    LOSS_COUNT
};

/// Counts what is left out and tells it, one line a kind, behind what is told in words.
class LossLog {
public:
    void Add(Loss loss, std::size_t count = 1) { m_counts[loss] += count; }
    void Tell(const CXTString<wchar_t>& line) { m_lines.push_back(line); }
    void Report(CIoOptions& options) const;

private:
    std::array<std::size_t, LOSS_COUNT> m_counts{};
    std::vector<CXTString<wchar_t>> m_lines;
};
