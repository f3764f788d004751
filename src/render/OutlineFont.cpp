// A font's outlines, by fontconfig (which file), FreeType (the curves) and GLU's tessellator (the triangles). None of it is kept: what their
// objects share between threads is used by one alone, the first that asks.

#include "render/OutlineFont.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <GL/glu.h>

#include <deque>
#include <memory>
#include <string>
#include <type_traits>

namespace {

template <auto RELEASE> struct Release {
    template <class T> void operator()(T* object) const { RELEASE(object); }
};
template <class T, auto RELEASE> using Held = std::unique_ptr<T, Release<RELEASE>>;

struct FontFile {
    std::string name;    ///< empty when there is none
    int index = 0;       ///< of the font in the file
};

/// With a configuration of its own: the process's belongs to the host.
FontFile FindFont()
{
    const Held<FcConfig, FcConfigDestroy> config(FcInitLoadConfigAndFonts());
    const Held<FcPattern, FcPatternDestroy> wanted(FcPatternCreate());
    if (!config || !wanted)
        return {};
    for (const char* family : {"DejaVu Sans", "sans"})
        FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddBool(wanted.get(), FC_OUTLINE, FcTrue);
    FcConfigSubstitute(config.get(), wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());

    FcResult result;
    const Held<FcPattern, FcPatternDestroy> found(FcFontMatch(config.get(), wanted.get(), &result));
    FcChar8* name;
    FontFile file;
    if (found && FcPatternGetString(found.get(), FC_FILE, 0, &name) == FcResultMatch) {
        file.name = reinterpret_cast<const char*>(name);
        FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index);
    }
    return file;
}

using Point = std::array<double, 3>;
using Contours = std::vector<std::vector<Point>>;

/// A character's outline as polygons, in the font's units.
class CFlattener {
public:
    static Contours Flatten(FT_Outline& outline)
    {
        CFlattener to;
        FT_Outline_Funcs steps{};
        steps.move_to = [](const FT_Vector* p, void* self) {
            static_cast<CFlattener*>(self)->m_contours.emplace_back();
            return Get(self).LineTo(*p);
        };
        steps.line_to = [](const FT_Vector* p, void* self) { return Get(self).LineTo(*p); };
        steps.conic_to = [](const FT_Vector* c, const FT_Vector* p, void* self) { return Get(self).ConicTo(*c, *p); };
        steps.cubic_to = [](const FT_Vector* c, const FT_Vector* d, const FT_Vector* p, void* self) {
            return Get(self).CubicTo(*c, *d, *p);
        };
        if (FT_Outline_Decompose(&outline, &steps, &to) != 0)
            to.m_contours.clear();
        return std::move(to.m_contours);
    }

private:
    static constexpr int STEPS = 4;    ///< of a curve: smooth enough for letters of some 20 pixels

    static CFlattener& Get(void* self) { return *static_cast<CFlattener*>(self); }

    int LineTo(const FT_Vector& p)
    {
        Add(static_cast<double>(p.x), static_cast<double>(p.y));
        return 0;
    }
    int ConicTo(const FT_Vector& control, const FT_Vector& to)
    {
        const Point from = m_contours.back().back();
        for (int i = 1; i <= STEPS; i++) {
            const double t = static_cast<double>(i) / STEPS, s = 1 - t;
            const double a = s * s, b = 2 * s * t, c = t * t;
            Add(a * from[0] + b * control.x + c * to.x, a * from[1] + b * control.y + c * to.y);
        }
        return 0;
    }
    int CubicTo(const FT_Vector& first, const FT_Vector& second, const FT_Vector& to)
    {
        const Point from = m_contours.back().back();
        for (int i = 1; i <= STEPS; i++) {
            const double t = static_cast<double>(i) / STEPS, s = 1 - t;
            const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
            Add(a * from[0] + b * first.x + c * second.x + d * to.x, a * from[1] + b * first.y + c * second.y + d * to.y);
        }
        return 0;
    }
    void Add(double x, double y) { m_contours.back().push_back({x, y, 0}); }

    Contours m_contours;
};

/// Cuts polygons with holes into triangles.
class CTessellator {
public:
    CTessellator() : m_tess(gluNewTess())
    {
        gluTessProperty(m_tess.get(), GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
        gluTessNormal(m_tess.get(), 0, 0, 1);
        SetCallback(
            GLU_TESS_VERTEX_DATA, +[](void* point, void* self) { static_cast<CTessellator*>(self)->AddCorner(point); });
        SetCallback(
            GLU_TESS_COMBINE_DATA, +[](double* at, void**, float*, void** point, void* self) {
                *point = static_cast<CTessellator*>(self)->m_crossings.emplace_back(Point{at[0], at[1], at[2]}).data();
            });
        SetCallback(
            GLU_TESS_EDGE_FLAG, +[](GLboolean) {});    // with one there are triangles alone, neither strips nor fans
    }

    std::vector<std::array<float, 2>> Cut(Contours& contours, double unit)
    {
        m_triangles.clear();
        m_crossings.clear();
        m_unit = unit;
        gluTessBeginPolygon(m_tess.get(), this);
        for (auto& contour : contours) {
            gluTessBeginContour(m_tess.get());
            for (Point& point : contour)
                gluTessVertex(m_tess.get(), point.data(), point.data());
            gluTessEndContour(m_tess.get());
        }
        gluTessEndPolygon(m_tess.get());
        return std::move(m_triangles);
    }

private:
    template <class FUNCTION> void SetCallback(GLenum which, FUNCTION* function)
    {
        gluTessCallback(m_tess.get(), which, reinterpret_cast<void (*)()>(function));
    }
    void AddCorner(const void* point)
    {
        const auto* const at = static_cast<const double*>(point);
        m_triangles.push_back({static_cast<float>(at[0] / m_unit), static_cast<float>(at[1] / m_unit)});
    }

    Held<GLUtesselator, gluDeleteTess> m_tess;
    std::vector<std::array<float, 2>> m_triangles;
    std::deque<Point> m_crossings;    ///< where contours cross; their addresses stay
    double m_unit = 1;
};

Held<std::remove_pointer_t<FT_Face>, FT_Done_Face> OpenFont(FT_Library library, const FontFile& file)
{
    FT_Face face = nullptr;
    const bool good = !file.name.empty() && FT_New_Face(library, file.name.c_str(), file.index, &face) == 0;
    return Held<std::remove_pointer_t<FT_Face>, FT_Done_Face>(good ? face : nullptr);
}

}

const COutlineFont& COutlineFont::GetNormal()
{
    static const COutlineFont font;
    return font;
}

COutlineFont::COutlineFont()
{
    FT_Library started = nullptr;
    if (FT_Init_FreeType(&started) != 0)
        return;
    const Held<std::remove_pointer_t<FT_Library>, FT_Done_FreeType> library(started);
    const auto face = OpenFont(library.get(), FindFont());
    if (!face || !FT_IS_SCALABLE(face.get()) || face->units_per_EM == 0)
        return;
    m_glyphs.resize(CHARACTERS);
    CTessellator tessellator;
    for (int character = ' '; character < CHARACTERS; character++) {
        const FT_UInt index = FT_Get_Char_Index(face.get(), static_cast<FT_ULong>(character));
        if (index == 0 || FT_Load_Glyph(face.get(), index, FT_LOAD_NO_SCALE) != 0 || face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
            continue;
        Contours contours = CFlattener::Flatten(face->glyph->outline);
        m_glyphs[character].triangles = tessellator.Cut(contours, face->units_per_EM);
        m_glyphs[character].advance = static_cast<float>(face->glyph->advance.x) / face->units_per_EM;
    }
}
