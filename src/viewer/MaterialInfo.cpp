#include "viewer/MaterialInfo.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>

#include "files/FileDialog.h"
#include "files/FileExt.h"
#include "scene/3DScene.h"
#include "scene/Material.h"
#include "tools/FilePath.h"
#include "viewer/FrameViewer.h"
#include "viewer/Texts.h"

/// A colour with its button.
struct CMaterialColorField {
    InfoControl id;
    std::uint64_t key;
    CRGBColor (C3DMaterial::*get)(unsigned int, bool) const;
    void (C3DMaterial::*set)(unsigned int, const CRGBColor&);
    bool hasAlpha;    ///< which its text tells too
};

/// A number in a field: a factor, or degrees.
struct CMaterialNumberField {
    InfoControl id;
    _VIEWER_TEXT text;
    std::uint64_t key;
    float (C3DMaterial::*get)(unsigned int) const;
    void (C3DMaterial::*set)(unsigned int, float);
    const CMaterialColorField* color;    ///< beside it; null for none
    const wchar_t* format;
    double unit;         ///< of what is shown, in what is stored
    double tolerance;    ///< a smaller change is none
};

namespace {

using Text = CXTString<wchar_t>;

constexpr CMaterialColorField COLORS[] = {
    {INFO_DIFFUSE_COLOR, KEY_DIFFUSE_COLOR, &C3DMaterial::GetDiffuseColor, &C3DMaterial::SetDiffuseColor, true},
    {INFO_AMBIENT_COLOR, KEY_AMBIENT_COLOR, &C3DMaterial::GetAmbientColor, &C3DMaterial::SetAmbientColor, false},
    {INFO_SPECULAR_COLOR, KEY_SPECULAR_COLOR, &C3DMaterial::GetSpecularColor, &C3DMaterial::SetSpecularColor, false},
};

constexpr double DEGREE = std::numbers::pi / 180;
constexpr wchar_t FACTOR_FORMAT[] = L"%.2f", DEGREES_FORMAT[] = L"%.2f \u00B0";

constexpr CMaterialNumberField NUMBERS[] = {
    {INFO_DIFFUSE_FACTOR, TEXT_DIFFUSE, KEY_DIFFUSE_FACTOR, &C3DMaterial::GetDiffuseFactor, &C3DMaterial::SetDiffuseFactor, &COLORS[0],
     FACTOR_FORMAT, 1, 0},
    {INFO_AMBIENT_FACTOR, TEXT_AMBIENT, KEY_AMBIENT_FACTOR, &C3DMaterial::GetAmbientFactor, &C3DMaterial::SetAmbientFactor, &COLORS[1],
     FACTOR_FORMAT, 1, 0},
    {INFO_SPECULAR_FACTOR, TEXT_SPECULAR, KEY_SPECULAR_FACTOR, &C3DMaterial::GetSpecularFactor, &C3DMaterial::SetSpecularFactor, &COLORS[2],
     FACTOR_FORMAT, 1, 0},
    {INFO_SMOOTH_ANGLE, TEXT_SMOOTH_ANGLE, KEY_SMOOTH_ANGLE, &C3DMaterial::GetSmoothAngle, &C3DMaterial::SetSmoothAngle, nullptr,
     DEGREES_FORMAT, DEGREE, 0.005},
    {INFO_TRANSPARENCY, TEXT_TRANSPARENCY, KEY_TRANSPARENCY_FACTOR, &C3DMaterial::GetTransparencyFactor,
     &C3DMaterial::SetTransparencyFactor, nullptr, FACTOR_FORMAT, 1, 0},
};

constexpr MapType MAPS[] = {MAP_DIFFUSE, MAP_AMBIENT, MAP_SPECULAR, MAP_TRANSPARENCY, MAP_BUMP};

constexpr int THUMBNAIL_SIDE = 128, OPENED_SIDE = 800;

Text GetColorText(const CRGBColor& color, bool withAlpha)
{
    if (withAlpha)
        return color.GetRGBAString();
    Text text;
    text.FormatString(L"%d %d %d", color.red, color.green, color.blue);
    return text;
}

/// Frame at which a value is written: a value that isn't animated stays so.
unsigned int GetTimeToWrite(const C3DScene& scene, const C3DMaterial& material, std::uint64_t key)
{
    if (material.GetKeyNbr(key) > 1)
        return static_cast<unsigned int>(scene.GetTickCount());
    int only = 0;
    return material.GetKeyByIndex(0, &only, key) ? static_cast<unsigned int>(only) : 0;
}

/// The number that a text begins with, whichever decimal sign it has.
std::optional<double> ReadNumber(const Text& text)
{
    std::string digits;
    for (const wchar_t* c = text.c_str(); *c; c++)
        if (!digits.empty() || (*c != L' ' && *c != L'+'))
            digits += *c == L',' ? '.' : *c < 0x80 ? static_cast<char>(*c) : ' ';
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

/// A copy of the map's image, made smaller where it is larger than a square; null without one.
std::unique_ptr<Bitmap> MakePicture(CMaterialMap& map, const C3DScene& scene, int side)
{
    const Bitmap* const image = map.GetBitmap(&scene, CSize{-1, -1});
    std::unique_ptr<Bitmap> picture(image ? image->ConvertToType(image->GetType()) : nullptr);
    if (!picture)
        return nullptr;
    const int width = picture->GetWidth(), height = picture->GetHeight(), longer = std::max(width, height);
    const auto scaled = [&](int length) { return static_cast<int>(std::max(1LL, static_cast<long long>(length) * side / longer)); };
    if (longer > side && !picture->Resize(scaled(width), scaled(height), 1))
        return nullptr;
    return picture;
}

}

CMaterialInfo::CMaterialInfo(C3DScene* scene, unsigned int material, C3DFrameViewer* frame, CWnd* parent)
    : m_scene(scene), m_id(material), m_frame(frame), m_parent(parent), m_wasModified(frame && frame->IsDocumentModified())
{
    title = LoadText(TEXT_SETTINGS);
    const C3DMaterial* const shown = GetMaterial();
    Add(CONTROL_EDIT, INFO_MATERIAL_NAME, LoadText(TEXT_MATERIAL_NAME)).value = shown ? shown->GetName() : Text();
    for (const CMaterialNumberField& field : NUMBERS) {
        Text value;
        if (shown)
            value.FormatString(field.format, (shown->*field.get)(static_cast<unsigned int>(m_scene->GetTickCount())) / field.unit);
        m_shown.push_back(value);
        Add(CONTROL_EDIT, field.id, LoadText(field.text)).value = value;
        if (field.color)
            AddColor(*field.color);
    }
    AddMaps();
}

CMaterialInfo::~CMaterialInfo() = default;

C3DMaterial* CMaterialInfo::GetMaterial() const { return m_scene ? m_scene->GetMaterialByID(m_id) : nullptr; }

void CMaterialInfo::AddColor(const CMaterialColorField& field)
{
    Add(CONTROL_COLOR, field.id, {}, true).enabled = GetMaterial() != nullptr;
    ShowColor(field);
}

// In the words of the colour, which stand in front of its button.
void CMaterialInfo::ShowColor(const CMaterialColorField& field)
{
    const C3DMaterial* const material = GetMaterial();
    if (!material)
        return;
    CControl& button = *Find(field.id);
    button.color = (material->*field.get)(static_cast<unsigned int>(m_scene->GetTickCount()), false);
    button.text = GetColorText(button.color, field.hasAlpha);
}

void CMaterialInfo::AddMaps()
{
    constexpr int LINES = 5;
    Add(CONTROL_LIST, INFO_MAPS, LoadText(TEXT_MAPS)).height = LINES;
    Add(CONTROL_PICTURE, INFO_MAP_PICTURE, {}, true);
    Add(CONTROL_BUTTON, INFO_MODIFY_FILE, LoadText(TEXT_MODIFY_FILE));
    Add(CONTROL_BUTTON, INFO_OPEN_BITMAP, LoadText(TEXT_OPEN_BITMAP), true);
    CControl& list = *Find(INFO_MAPS);
    const C3DMaterial* const material = GetMaterial();
    for (const MapType type : MAPS)
        if (const CMaterialMap* const map = material ? material->GetMaterialMap(type) : nullptr) {
            list.items.push_back(fileStripPath(map->GetFileName()));
            list.itemData.push_back(type);
        }
    list.selected = list.items.empty() ? -1 : 0;
    ShowMap();
}

void CMaterialInfo::OnControl(unsigned int id)
{
    C3DMaterial* const material = GetMaterial();
    if (!material)
        return;
    for (const CMaterialColorField& field : COLORS)
        if (field.id == id) {
            const unsigned int time = GetTimeToWrite(*m_scene, *material, field.key);
            m_formerColors.push_back({&field, (material->*field.get)(time, false)});
            (material->*field.set)(time, Find(id)->color);
            ShowColor(field);
            Changed(MATERIAL_COLOR_CHANGED);
        }
    if (id == INFO_MAPS)
        ShowMap();
    else if (id == INFO_MODIFY_FILE)
        ModifyFile();
    else if (id == INFO_OPEN_BITMAP)
        OpenBitmap();
}

// Maps

CMaterialMap* CMaterialInfo::GetMap()
{
    const C3DMaterial* const material = GetMaterial();
    const CControl& list = *Find(INFO_MAPS);
    if (!material || list.selected < 0)
        return nullptr;
    return material->GetMaterialMap(static_cast<MapType>(list.itemData.at(static_cast<std::size_t>(list.selected))));
}

void CMaterialInfo::ShowMap()
{
    CMaterialMap* const map = GetMap();
    std::unique_ptr<Bitmap> picture = map ? MakePicture(*map, *m_scene, THUMBNAIL_SIDE) : nullptr;
    Find(INFO_MAP_PICTURE)->picture = picture.get();
    m_picture = std::move(picture);
    Find(INFO_MODIFY_FILE)->enabled = Find(INFO_OPEN_BITMAP)->enabled = map != nullptr;
}

void CMaterialInfo::ModifyFile()
{
    CMaterialMap* const map = GetMap();
    if (!map)
        return;
    const Text found = map->GetBitmapPath(m_scene, false, true);
    Text name = found.IsEmpty() ? map->GetFileName() : found;
    if (!fileOpenFile(m_parent, name, FILE_FAMILY_BITMAP, FILTER_ALL) || GetMap() != map)
        return;
    m_formerFiles.push_back({map->GetType(), map->GetFileName()});
    map->SetFileName(name, m_scene->GetFilename().GetPath());
    CControl& list = *Find(INFO_MAPS);
    list.items.at(static_cast<std::size_t>(list.selected)) = fileStripPath(map->GetFileName());
    Changed(MATERIAL_TEXTURE_CHANGED);
    ShowMap();
}

void CMaterialInfo::OpenBitmap()
{
    CMaterialMap* const map = GetMap();
    if (!map || (map->GetBitmapPath(m_scene, false, true).IsEmpty() && map->GetBitmapPath(m_scene, true, true).IsEmpty()))
        return;
    const std::unique_ptr<Bitmap> picture = MakePicture(*map, *m_scene, OPENED_SIDE);
    if (!picture)
        return;
    CDialogTable page;
    page.hasCancel = false;
    page.Add(CONTROL_PICTURE, INFO_OPENED_PICTURE, {}).picture = picture.get();
    RunDialog(m_parent, fileStripPath(map->GetFileName()), {&page});
}

// Writing

bool CMaterialInfo::OnOk()
{
    C3DMaterial* const material = GetMaterial();
    if (!material)
        return true;
    unsigned int news = WriteName(*material) ? +MATERIAL_NAME_CHANGED : 0;
    for (const CMaterialNumberField& field : NUMBERS)
        if (WriteNumber(*material, field))
            news |= MATERIAL_PARAMETER_CHANGED;
    if (news)
        Changed(news);
    return true;
}

bool CMaterialInfo::WriteName(C3DMaterial& material)
{
    const Text& name = Find(INFO_MATERIAL_NAME)->value;
    if (name == material.GetName())
        return false;
    material.SetName(name);
    return true;
}

// A text that nobody has touched is that of a rounded number, and stands for the stored one.
bool CMaterialInfo::WriteNumber(C3DMaterial& material, const CMaterialNumberField& field)
{
    const Text& text = Find(field.id)->value;
    const std::optional<double> number = ReadNumber(text);
    if (!number || text == m_shown.at(static_cast<std::size_t>(&field - NUMBERS)))
        return false;
    const unsigned int time = GetTimeToWrite(*m_scene, material, field.key);
    const float former = (material.*field.get)(time);
    if (std::abs(*number - former / field.unit) <= field.tolerance)
        return false;
    (material.*field.set)(time, static_cast<float>(*number * field.unit));
    return (material.*field.get)(time) != former;
}

void CMaterialInfo::OnCancel()
{
    C3DMaterial* const material = GetMaterial();
    if (!material || (m_formerColors.empty() && m_formerFiles.empty()))
        return;
    for (auto former = m_formerColors.rbegin(); former != m_formerColors.rend(); ++former)
        (material->*former->field->set)(GetTimeToWrite(*m_scene, *material, former->field->key), former->color);
    for (auto former = m_formerFiles.rbegin(); former != m_formerFiles.rend(); ++former)
        if (CMaterialMap* const map = material->GetMaterialMap(former->map))
            map->SetFileName(former->name, {});
    Changed((m_formerColors.empty() ? 0u : +MATERIAL_COLOR_CHANGED) | (m_formerFiles.empty() ? 0u : +MATERIAL_TEXTURE_CHANGED));
    if (m_frame)
        m_frame->SetModifiedFlag(m_wasModified);
}

void CMaterialInfo::Changed(unsigned int news)
{
    GetMaterial()->SetFlags(news, true);
    if (!m_frame || m_frame->GetCurrentScene() != m_scene)
        return;
    m_frame->SetModifiedFlag(true);
    m_frame->SceneChanged(CHANGED_MATERIAL, {nullptr, m_id}, true);
}

CMaterialInfoSheet::CMaterialInfoSheet(C3DScene* scene, unsigned int material, CWnd* parent) : m_parent(parent), m_scene(Share(scene))
{
    const C3DMaterial* const shown = scene ? scene->GetMaterialByID(material) : nullptr;
    m_settings = std::make_unique<CMaterialInfo>(scene, material, dynamic_cast<C3DFrameViewer*>(parent), parent);
    m_additional = std::make_unique<CNodeAdditionalData>(shown ? &shown->GetCustomData() : nullptr);
}

CMaterialInfoSheet::~CMaterialInfoSheet() = default;

void CMaterialInfoSheet::DoModal() { RunDialog(m_parent, LoadText(TEXT_MATERIAL_INFORMATION), {m_settings.get(), m_additional.get()}); }
