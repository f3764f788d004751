#pragma once

#include "geometry/Point.h"
#include "tools/Color.h"

/// Vertex colour: four bytes behind the flags. The default is opaque black.
class ZEL_API CVCPoint : public CPt {
public:
    CVCPoint() = default;
    explicit CVCPoint(const CRGBColor& color) : m_color(color) {}
    CVCPoint(const CVCPoint&) = default;
    CVCPoint& operator=(const CVCPoint&) = default;

    /// Dimension 4: the bytes as numbers 0 to 255.
    void To4DPoint(C4DPoint& point) const override;
    /// Colour and flags of another vertex colour; of another kind of element, its coordinates.
    CVCPoint& operator=(const CPt& other) override;
    /// Each component clamped to 0..255 and truncated; an absent alpha is 255, another absent component 0.
    CVCPoint& operator=(const C4DPoint& point) override;
    /// Flags, then the four bytes.
    void Serialize(CXArchive& ar) override;

    const CRGBColor& GetColor() const { return m_color; }
    void SetColor(const CRGBColor& color) { m_color = color; }
    operator CRGBColor() const { return m_color; }

    unsigned char* ValPtr() { return m_color.ValPtr(); }
    const unsigned char* ValPtr() const { return m_color.ValPtr(); }
    /// Red, green, blue or alpha by 0 to 3, unchecked.
    unsigned char& operator[](int index) { return ValPtr()[index]; }
    unsigned char operator[](int index) const { return ValPtr()[index]; }

    /// All four bytes equal; flags do not count.
    bool operator==(const CVCPoint& other) const { return m_color == other.m_color; }
    /// True when red, green or blue differ by more than `tolerance`. Alpha does not count.
    bool DiffersFrom(const CVCPoint& other, int tolerance) const;

private:
    CRGBColor m_color;
};

static_assert(sizeof(CVCPoint) == 16 || sizeof(void*) != 8);
