#pragma once

#include <array>
#include <vector>

/// Shapes of a font's characters, cut into triangles. Lengths are in ems; x goes right from where the character starts, y up from the base line.
class COutlineFont {
public:
    static constexpr int CHARACTERS = 127;    ///< 0 to 126

    struct Glyph {
        std::vector<std::array<float, 2>> triangles;    ///< three corners each
        float advance = 0;                              ///< to where the next character starts
    };

    /// The font of labels, looked for once a process: DejaVu Sans, else what the system has for "sans". Any thread may ask.
    static const COutlineFont& GetNormal();

    /// There is no font.
    bool IsEmpty() const { return m_glyphs.empty(); }
    /// Nothing for control characters and for what the font lacks.
    const Glyph& GetGlyph(int character) const { return m_glyphs[character]; }

private:
    COutlineFont();

    std::vector<Glyph> m_glyphs;
};
