#include "SceneInput.h"

namespace {

constexpr struct {
    const char* name;
    unsigned int flag;
    const char* help;
} FLAGS[] = {
    {"remove-hidden", IMPORT_REMOVE_HIDDEN, "Leave hidden objects out"},
    {"clean-groups", IMPORT_CLEAN_GROUPS, "Remove groups without children"},
    {"weld", IMPORT_WELD, "Join equal points"},
    {"merge-coplanar", IMPORT_MERGE_COPLANAR, "Make one polygon of flat regions"},
    {"unify-normals", IMPORT_UNIFY_NORMALS, "Turn faces the same way round, and outward"},
    {"triangulate", IMPORT_TRIANGULATE, "Split all faces into triangles"},
    {"global-coordinates", IMPORT_GLOBAL_COORDINATES, "Bake the transforms of the nodes into the points"},
    {"concatenate", IMPORT_CONCATENATE, "Join all objects into one"},
    {"concatenate-by-materials", IMPORT_CONCATENATE_BY_MATERIALS, "Make one object for each material"},
    {"generate-uv", IMPORT_GENERATE_UV, "Make texture coordinates where maps are projections"},
    {"disconnect-faces", IMPORT_DISCONNECT_FACES, "Split points where texture coordinates, colors or normals have seams"},
};

constexpr const char* GROUP = "After reading, in this order";

}

SceneInput::SceneInput(CLI::App& verb)
{
    for (const auto& row : FLAGS) {
        CLI::Option* const option = verb.add_flag(std::string("--import-") + row.name, row.help);
        m_flags.emplace_back(option->group(GROUP), row.flag);
    }
}

std::optional<SceneFile> SceneInput::Read(const Console& console, const std::string& name, C3DConversionReport& report,
                                          std::string* failure) const
{
    CSceneImportOptions options;
    for (const auto& [option, flag] : m_flags)
        if (option->count() > 0)
            options.flags |= flag;
    std::optional<SceneFile> file = ReadSceneFile(console, name, options, failure);
    report.Add(options);
    return file;
}
