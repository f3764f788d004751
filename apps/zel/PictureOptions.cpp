#include "PictureOptions.h"

#include <charconv>
#include <map>
#include <optional>
#include <string_view>

namespace {

constexpr int MOST_PIXELS = 16384;    // a side: what drivers give at most
constexpr const char* TRANSPARENT = "transparent";
constexpr std::string_view CAMERA = "camera";
constexpr CRGBColor NIGHT(36, 39, 45);    // wires have the colors of their materials, which are mostly light

const std::map<std::string, unsigned int> MODES = {{"wireframe", VIEWFLAG_WIREFRAME},
                                                   {"flat", VIEWFLAG_FLAT},
                                                   {"flat-wire", VIEWFLAG_FLAT | VIEWFLAG_WIREFRAME},
                                                   {"smooth", VIEWFLAG_SMOOTH},
                                                   {"smooth-wire", VIEWFLAG_SMOOTH | VIEWFLAG_WIREFRAME}};
const std::map<std::string, unsigned int> LABELS = {{"points", VIEWFLAG_POINT_LABELS},
                                                    {"faces", VIEWFLAG_FACE_LABELS},
                                                    {"both", VIEWFLAG_POINT_LABELS | VIEWFLAG_FACE_LABELS}};
const std::map<std::string, _RVIEW_FLAG> VIEWS = {
    {"front", RVIEW_FRONT},
    {"back", RVIEW_BACK},
    {"left", RVIEW_LEFT},
    {"right", RVIEW_RIGHT},
    {"top", RVIEW_TOP},
    {"bottom", RVIEW_BOTTOM},
    {"ltf", RVIEW_LEFT_TOP_FRONT},
    {"rtf", RVIEW_RIGHT_TOP_FRONT},
    {"ltb", RVIEW_LEFT_TOP_BACK},
    {"rtb", RVIEW_RIGHT_TOP_BACK},
    {"lbf", RVIEW_LEFT_BOTTOM_FRONT},
    {"rbf", RVIEW_RIGHT_BOTTOM_FRONT},
    {"lbb", RVIEW_LEFT_BOTTOM_BACK},
    {"rbb", RVIEW_RIGHT_BOTTOM_BACK},
};
const std::map<std::string, CRGBColor> COLORS = {
    {"white", {255, 255, 255}}, {"silver", {192, 192, 192}}, {"gray", {128, 128, 128}},  {"grey", {128, 128, 128}},
    {"black", {0, 0, 0}},       {"red", {255, 0, 0}},        {"green", {0, 128, 0}},     {"blue", {0, 0, 255}},
    {"yellow", {255, 255, 0}},  {"cyan", {0, 255, 255}},     {"magenta", {255, 0, 255}},
};
const std::map<std::string, CTurntable::Movement> MOVEMENTS = {{"right", CTurntable::RIGHT},
                                                               {"left", CTurntable::LEFT},
                                                               {"up", CTurntable::UP},
                                                               {"down", CTurntable::DOWN}};

// A whole number and nothing else.
template <class T> bool ParseNumber(std::string_view text, T& number, int base = 10)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size();
}

std::optional<CSize> ParseSize(std::string_view text)
{
    const std::size_t cross = text.find('x');
    CSize size;
    if (cross == text.npos || !ParseNumber(text.substr(0, cross), size.cx) || !ParseNumber(text.substr(cross + 1), size.cy))
        return std::nullopt;
    if (size.cx < 1 || size.cy < 1 || size.cx > MOST_PIXELS || size.cy > MOST_PIXELS)
        return std::nullopt;
    return size;
}

// #rgb and #rrggbb.
std::optional<CRGBColor> ParseHexColor(std::string_view digits)
{
    unsigned int value;
    const bool isShort = digits.size() == 3;
    if ((!isShort && digits.size() != 6) || !ParseNumber(digits, value, 16))
        return std::nullopt;
    const unsigned int bits = isShort ? 4 : 8, mask = isShort ? 0xF : 0xFF, spread = isShort ? 0x11 : 1;
    const auto channel = [&](unsigned int index) { return static_cast<unsigned char>((value >> (index * bits) & mask) * spread); };
    return CRGBColor(channel(2), channel(1), channel(0));
}

// r,g,b in decimals.
std::optional<CRGBColor> ParseDecimalColor(std::string_view text)
{
    unsigned char channels[3];
    for (int i = 0; i < 3; i++) {
        const std::size_t comma = i < 2 ? text.find(',') : text.size();
        if (comma == text.npos || !ParseNumber(text.substr(0, comma), channels[i]))
            return std::nullopt;
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return CRGBColor(channels[0], channels[1], channels[2]);
}

std::optional<CRGBColor> ParseColor(const std::string& text)
{
    if (const auto named = COLORS.find(text); named != COLORS.end())
        return named->second;
    return text.starts_with('#') ? ParseHexColor(std::string_view(text).substr(1)) : ParseDecimalColor(text);
}

bool IsCamera(const std::string& text) { return text == CAMERA || text.starts_with(std::string(CAMERA) + "="); }

template <class MAP> std::string ListKeys(const MAP& map)
{
    std::string list;
    for (const auto& [key, value] : map)
        list += (list.empty() ? "" : ", ") + key;
    return list;
}

std::string CheckSize(const std::string& text)
{
    return ParseSize(text) ? "" : "not WIDTHxHEIGHT of 1 to " + std::to_string(MOST_PIXELS) + " pixels: " + text;
}

std::string CheckView(const std::string& text)
{
    return VIEWS.contains(text) || IsCamera(text) ? "" : "no view " + text + ": " + ListKeys(VIEWS) + ", camera or camera=NAME";
}

std::string CheckBackground(const std::string& text)
{
    return text == TRANSPARENT || ParseColor(text) ? "" : "no color " + text + ": #rgb, #rrggbb, r,g,b, transparent, " + ListKeys(COLORS);
}

bool IsSlanted(_RVIEW_FLAG view) { return view >= RVIEW_LEFT_TOP_FRONT; }

}

PictureOptions::PictureOptions(CLI::App& verb)
{
    verb.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    verb.add_option("--size", m_size, "WIDTHxHEIGHT in pixels; 1280x720 by default")->check(CheckSize)->type_name("SIZE");
    verb.add_option("--antialias", m_picture.antialias, "N by N samples a pixel, 1 to 8; 2 by default")
        ->check(CLI::Range(1, 8).description(""))
        ->type_name("N");
    AddWhatIsShown(verb);
    AddPointOfView(verb);
    AddTurntable(verb);
    verb.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::Throw);
}

void PictureOptions::AddWhatIsShown(CLI::App& verb)
{
    constexpr const char* GROUP = "What is shown";
    verb.add_option("--mode", m_mode, "wireframe, flat, flat-wire, smooth (the default), smooth-wire")
        ->check(CLI::IsMember(MODES).description(""))
        ->type_name("MODE")
        ->group(GROUP);
    verb.add_option("--background", m_background,
                    "Color: #rgb, #rrggbb, r,g,b, a name, or transparent; light by default, dark behind wires alone")
        ->check(CheckBackground)
        ->type_name("COLOR")
        ->group(GROUP);
    verb.add_flag("--no-textures", m_noTextures, "Materials without their images")->group(GROUP);
    verb.add_flag("--no-vertex-colors,--no-vertex-colours", m_noColors, "Materials without the colors of corners")->group(GROUP);
    verb.add_flag("--normals", m_normals, "A line along each normal")->group(GROUP);
    verb.add_flag("--boxes", m_boxes, "Boxes of all objects and of the scene")->group(GROUP);
    verb.add_flag("--labels{points}", m_labels, "Numbers of points; --labels=faces: of faces; --labels=both")
        ->check(CLI::IsMember(LABELS).description(""))
        ->group(GROUP);
    m_time = verb.add_option("--time", m_picture.time, "Frame of an animation; by default the one of the file");
    m_time->type_name("FRAME")->group(GROUP);
}

void PictureOptions::AddPointOfView(CLI::App& verb)
{
    constexpr const char* GROUP = "Point of view";
    CLI::Option* const view =
        verb.add_option("--view", m_view,
                        "front, back, left, right, top, bottom; slanted: rtf (right, top, front; the default), ltf, rtb, "
                        "ltb, rbf, lbf, rbb, lbb; camera (the first of the scene) or camera=NAME");
    view->check(CheckView)->type_name("VIEW")->group(GROUP);
    m_angle = verb.add_option("--angle", m_picture.viewAngle, "Of a slanted view, 5 to 85 degrees; 55 by default");
    m_angle->check(CLI::Range(5.0, 85.0).description(""))->type_name("DEGREES")->group(GROUP);
    verb.add_option("--select", m_picture.nodes, "Fit the view to the nodes of this name; may be given again")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false)
        ->type_name("NAME")
        ->group(GROUP);
}

void PictureOptions::AddTurntable(CLI::App& verb)
{
    constexpr const char* GROUP = "Turntable: one animation (.gif, .webp), or a numbered file a picture";
    CLI::Option* const count = verb.add_option("--turntable", m_picture.turntable.count, "So many pictures all around");
    count->check(CLI::Range(1, 3600).description(""))->type_name("N")->group(GROUP);
    verb.add_option("--movement", m_movement, "Where the front goes: right (the default), left, up, down")
        ->check(CLI::IsMember(MOVEMENTS).description(""))
        ->type_name("WHERE")
        ->needs(count)
        ->group(GROUP);
    verb.add_option("--amplitude", m_picture.turntable.amplitude,
                    "Degrees from the first picture to where the next round begins; 360 by default")
        ->check(CLI::Range(0.0, 36000.0).description(""))
        ->type_name("DEGREES")
        ->needs(count)
        ->group(GROUP);
}

unsigned int PictureOptions::GetViewFlags() const
{
    unsigned int flags = (m_picture.viewFlags & ~VIEWFLAG_RENDER_MODE) | (m_mode.empty() ? VIEWFLAG_SMOOTH : MODES.at(m_mode));
    if (m_noTextures)
        flags &= ~VIEWFLAG_TEXTURE;
    if (m_noColors)
        flags &= ~VIEWFLAG_VERTEX_COLORS;
    if (m_normals)
        flags |= VIEWFLAG_DRAW_NORMALS;
    if (m_boxes)
        flags |= VIEWFLAG_DRAW_BOXES;
    if (!m_labels.empty())
        flags |= LABELS.at(m_labels);
    return flags;
}

PictureSettings PictureOptions::GetPicture() const
{
    PictureSettings picture = m_picture;
    picture.viewFlags = GetViewFlags();
    picture.hasTime = m_time->count() > 0;
    if (!m_size.empty())
        picture.size = *ParseSize(m_size);
    picture.useCamera = IsCamera(m_view);
    if (picture.useCamera)
        picture.camera = m_view.substr(std::min(CAMERA.size() + 1, m_view.size()));
    else if (!m_view.empty())
        picture.view = VIEWS.at(m_view);
    if (m_mode == "wireframe")
        picture.background = NIGHT;
    picture.transparent = m_background == TRANSPARENT;
    if (!m_background.empty() && !picture.transparent)
        picture.background = *ParseColor(m_background);
    if (!m_movement.empty())
        picture.turntable.movement = MOVEMENTS.at(m_movement);
    return picture;
}

std::string PictureOptions::GetContradiction() const
{
    const bool isStraight = !m_view.empty() && (IsCamera(m_view) || !IsSlanted(VIEWS.at(m_view)));
    return isStraight && m_angle->count() > 0 ? "--angle is for slanted views, and " + m_view + " is none" : "";
}
