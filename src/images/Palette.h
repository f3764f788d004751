#pragma once

#include <vector>

#include "images/Bitmap.h"
#include "tools/Color.h"

/// A picture with at most 256 colours. Pixels of an alpha below 128 become transparent, all others opaque.
class CPaletteImage {
public:
    /// Exact when the picture has no more colours; else the colours are chosen by their use, and what pixels lose is spread over
    /// their neighbours.
    explicit CPaletteImage(const Bitmap& picture);

    const std::vector<CRGBColor>& GetColors() const { return m_colors; }
    /// Index of the transparent colour; -1 for none.
    int GetTransparent() const { return m_transparent; }
    unsigned char* GetLine(int y) { return &m_indices[static_cast<std::size_t>(y) * m_width]; }

private:
    bool TakeExactly(const Bitmap& picture);
    void ChooseColors(const Bitmap& picture);
    void Spread(const Bitmap& picture);

    std::size_t m_width;
    std::vector<CRGBColor> m_colors;
    std::vector<unsigned char> m_indices;
    int m_transparent = -1;
};
