#include "SceneOutput.h"

#include <cstdio>
#include <map>
#include <sstream>

#include "OutputTarget.h"
#include "Printable.h"

namespace {

constexpr struct {
    const char* name;
    unsigned int flag;
    const char* help;
} FLAGS[] = {
    {"hidden-objects", EXPORT_HIDDEN_OBJECTS, "Write hidden objects too"},
    {"remove-polymeshes", EXPORT_REMOVE_POLYMESHES, "Leave polygon objects out"},
    {"remove-curves", EXPORT_REMOVE_CURVES, "Leave curves out"},
    {"remove-patches", EXPORT_REMOVE_PATCHES, "Leave patches out"},
    {"ignore-uv", EXPORT_IGNORE_UV, "Leave texture coordinates out"},
    {"ignore-vertex-colors", EXPORT_IGNORE_VC, "Leave vertex colors out"},
    {"ignore-normals", EXPORT_IGNORE_NORMALS, "Leave specified normals out"},
    {"patches-subdivided", EXPORT_PATCHES_SUBDIVIDED, "Make polygon objects of what patches show"},
    {"patches-source", EXPORT_PATCHES_SOURCE, "Make polygon objects of the control meshes of patches"},
    {"global-coordinates", EXPORT_GLOBAL_COORDINATES, "Bake the transforms of the nodes into the points"},
    {"clean-groups", EXPORT_CLEAN_GROUPS, "Remove groups without children"},
    {"remove-groups", EXPORT_REMOVE_GROUPS, "Remove all groups"},
    {"generate-uv", EXPORT_GENERATE_UV, "Make texture coordinates where maps are projections"},
    {"triangulate", EXPORT_TRIANGULATE, "Split all faces into triangles"},
    {"quadrangulate", EXPORT_QUADRANGULATE, "Split faces of more than four corners into triangles"},
    {"globalize-channels", EXPORT_GLOBALIZE_CHANNELS, "Make one set of texture coordinates an object"},
    {"concatenate", EXPORT_CONCATENATE, "Join all objects into one"},
    {"disconnect-faces", EXPORT_DISCONNECT_FACES, "Split points where texture coordinates or colors have seams"},
    {"normalise-names", EXPORT_NORMALISE_NAMES, "Give no two objects, and no two materials, the same name"},
    {"rename-textures", EXPORT_RENAME_TEXTURES, "With --textures: a file of another name where one of that name is there"},
    {"keep-unused-materials", EXPORT_KEEP_UNUSED_MATERIALS, "Write materials that no face uses"},
    {"keep-backface-materials", EXPORT_KEEP_BACKFACE_MATERIALS, "Write materials of back faces"},
    {"update-original", EXPORT_UPDATE_ORIGINAL, "Change the original file in place where the format can"},
};

constexpr const char* GROUP = "Before writing, in this order (--no-export-... turns one off that the format has on)";
constexpr unsigned int NATIVE_CLASS = FourCC("3DIF");
/// The native file takes all of a scene, so nothing of it is left out unless asked.
constexpr unsigned int NATIVE_DEFAULTS = EXPORT_HIDDEN_OBJECTS | EXPORT_KEEP_UNUSED_MATERIALS | EXPORT_KEEP_BACKFACE_MATERIALS;

const std::map<std::string, _UNIT_MODE> UNITS = {{"nm", UNIT_NANOMETER},  {"um", UNIT_MICROMETER}, {"mm", UNIT_MILLIMETER},
                                                 {"cm", UNIT_CENTIMETER}, {"m", UNIT_METER},       {"km", UNIT_KILOMETER},
                                                 {"in", UNIT_INCH},       {"ft", UNIT_FOOT},       {"yd", UNIT_YARD},
                                                 {"mi", UNIT_MILE}};
const std::map<std::string, _UP_AXIS_MODE> AXES = {{"x", UP_AXIS_X}, {"y", UP_AXIS_Y}, {"z", UP_AXIS_Z}};

}

SceneOutput::SceneOutput(CLI::App& verb)
{
    const auto add = [&](const char* name, auto& value, const char* type, const char* help) {
        return verb.add_option(name, value, help)->type_name(type);
    };
    const auto oneOf = [](auto&& values) { return CLI::IsMember(values).description(""); };
    add("--format", m_format, "EXT", "Extension or class of the format (zel formats); otherwise that of OUT");
    add("--form", m_form, "FORM", "Another form of the format: text (PLY, STL, FBX), 1 (the first glTF), no-materials (OBJ)")
        ->check(oneOf(std::vector<std::string>{"text", "1", "no-materials"}));
    add("--unit", m_unit, "UNIT", "Scale to this unit where the file tells its own: nm, um, mm, cm, m, km, in, ft, yd, mi")
        ->check(oneOf(UNITS));
    add("--up-axis", m_upAxis, "AXIS", "Axis that points up in the file, in place of that of the format: x, y, z")->check(oneOf(AXES));
    add("--textures", m_textures, "DIR", "Copy texture files to this folder; relative to that of OUT");
    verb.add_flag("--textures-from-anywhere", m_anyTextures,
                  "Copy textures, and put them into the file, from outside the folder of the scene too");
    verb.add_flag("--report{text}", m_report, "Print what was done and lost; --report=json prints JSON")
        ->check(oneOf(std::vector<std::string>{"text", "json"}));
    verb.add_flag("--strict", m_strict, "Exit with 4 when something did not come through");
    verb.add_flag("--overwrite-input", m_overwrite, "Let OUT be one of the files that are read");
    for (const auto& row : FLAGS) {
        const std::string name = row.name;
        CLI::Option* const option = verb.add_flag("--export-" + name + ",!--no-export-" + name, row.help);
        m_flags.emplace_back(option->group(GROUP), row.flag);
    }
}

unsigned int SceneOutput::GetFlags(unsigned int defaults, unsigned int fileClass) const
{
    if (fileClass == NATIVE_CLASS)
        defaults |= NATIVE_DEFAULTS;
    unsigned int flags = defaults;
    for (const auto& [option, flag] : m_flags)
        if (option->count() > 0)
            flags = option->as<bool>() ? flags | flag : flags & ~flag;
    if (!m_textures.empty())
        flags |= EXPORT_MOVE_TEXTURES;
    // No flag at all would stand for the defaults. This one says nothing unless textures are moved.
    return flags == 0 ? EXPORT_RENAME_TEXTURES : flags;
}

bool SceneOutput::GetFormat(const Console& console, unsigned int& fileClass) const
{
    fileClass = 0;
    if (m_format.empty())
        return true;
    CFileExt format;
    const CXTString<wchar_t> text = Utf8ToWide(m_format);
    bool found = fileGetFileExt(text, &format, FILE_FAMILY_3D) && format.CanWrite();
    for (const CFileExt& known : fileGetExtensions(FILE_FAMILY_3D))
        if (!found && known.CanWrite() && fileGetClassText(known.fileClass) == text) {
            format = known;
            found = true;
        }
    if (!found)
        console.Fail("format " + m_format + " can't be written (see zel formats)");
    fileClass = format.fileClass;
    return found;
}

bool SceneOutput::IsInput(const Console& console, const std::string& target, const InputFiles& inputs) const
{
    if (m_overwrite || !inputs.Contain(target))
        return false;
    console.Fail(target + ": is read too; --overwrite-input lets it be written over");
    return true;
}

ExitCode SceneOutput::Check(const Console& console, const std::string& target, const InputFiles& inputs) const
{
    unsigned int fileClass;
    if (IsInput(console, target, inputs) || !GetFormat(console, fileClass))
        return EXIT_USAGE;
    C3DIo io(CFileNameSpec(Utf8ToWide(target), fileClass), FILEIO_SILENT, nullptr);
    if (!io.PrepareSaving()) {
        console.Fail(NameFailure(target, WideToUtf8(io.GetResultText()) + " (see zel formats)"));
        return EXIT_USAGE;
    }
    if (const std::string obstacle = GetObstacle(target); !obstacle.empty()) {
        console.Fail(target + ": " + obstacle);
        return EXIT_FAILED;
    }
    return EXIT_DONE;
}

void SceneOutput::ChangeUnit(const Console& console, C3DScene& scene) const
{
    if (m_unit.empty())
        return;
    const _UNIT_MODE unit = UNITS.at(m_unit);
    if (scene.IsUnitDefined()) {
        const auto factor = static_cast<float>(scene.GetScaleFactor() / C3DScene::GetUnitFactor(unit));
        if (factor != 1)
            scene.Scale(C3DTVector<float>(factor, factor, factor));
        scene.SetScaleFactor(C3DScene::GetUnitFactor(unit));
    } else
        console.Say("the unit of the scene is unknown: its lengths stay as they are");
    scene.SetUnit(unit);
}

// What the format will turn to is turned back first.
void SceneOutput::TurnUp(C3DScene& scene, _UP_AXIS_MODE written) const
{
    if (m_upAxis.empty() || AXES.at(m_upAxis) == written)
        return;
    scene.OrientScene(AXES.at(m_upAxis), false);
    scene.OrientScene(written, true);
}

ExitCode SceneOutput::Write(const Console& console, C3DScene& scene, const std::string& target, const InputFiles& inputs,
                            C3DConversionReport& report) const
{
    unsigned int fileClass;
    if (!GetFormat(console, fileClass))
        return EXIT_USAGE;
    C3DIo io(CFileNameSpec(Utf8ToWide(target), fileClass), FILEIO_SILENT, nullptr);
    CSceneExportOptions options;
    options.GetCustomData().SetString(EXPORT_FORM, Utf8ToWide(m_form));
    options.GetCustomData().SetBool(EXPORT_SHAPELESS, true);
    const std::string reason = RunIo(io, options, [&] {
        if (!io.PrepareSaving())
            return false;
        CSceneExportOptions asked;
        asked.GetCustomData() = options.GetCustomData();
        io.GetParser()->SaveDefaultOptions(asked);
        options.flags = GetFlags(asked.defaultFlags, io.GetClass());
        options.textureFolder = Utf8ToWide(m_textures);
        options.texturesFromAnywhere = m_anyTextures;
        ChangeUnit(console, scene);
        TurnUp(scene, asked.upAxis);
        return io.Save(false, &scene, &options);
    });
    report.Add(options);
    PrintReport(inputs, target, report, reason);
    if (!reason.empty()) {
        console.Fail(NameFailure(target, reason));
        return EXIT_FAILED;
    }
    if (!m_strict || !report.HasLosses())
        return EXIT_DONE;
    console.Say(target + ": written, but not all of the scene came through");
    return EXIT_LOSSES;
}

void SceneOutput::PrintReport(const InputFiles& inputs, const std::string& target, const C3DConversionReport& report,
                              const std::string& failure) const
{
    if (IsJsonReport()) {
        Json document = {{"schema", 1}, {"sources", inputs.GetNames()}, {"target", target}, {"written", failure.empty()}};
        if (!failure.empty())
            document["error"] = failure;
        document.update(Json::parse(report.GetJson()));
        PrintJson(document);
    } else if (!m_report.empty()) {
        std::printf("%s\n", Printable(target).c_str());
        std::istringstream lines(report.GetText());
        for (std::string line; std::getline(lines, line);)
            std::printf("%s\n", Printable(line).c_str());
    }
}
