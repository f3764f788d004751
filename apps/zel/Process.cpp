#include "Process.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <optional>
#include <vector>

#include <nlohmann/json.hpp>

#include "MeshStatistics.h"
#include "ProgressBar.h"
#include "SceneFile.h"
#include "SceneSteps.h"

namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const MeshStatistics& mesh)
{
    return {{"objects", mesh.objects},
            {"points", mesh.points},
            {"faces", mesh.faces},
            {"corners", mesh.corners},
            {"components", mesh.components},
            {"border_edges", mesh.borderEdges},
            {"non_manifold_edges", mesh.nonManifoldEdges},
            {"degenerate_faces", mesh.degenerateFaces},
            {"area", mesh.area},
            {"volume", mesh.closed ? Json(mesh.volume) : Json()}};
}

void PrintStatistics(const MeshStatistics& before, const MeshStatistics& after)
{
    const auto row = [](const char* name, std::uint64_t a, std::uint64_t b) {
        std::printf("  %-19s %14llu %14llu\n", name, static_cast<unsigned long long>(a), static_cast<unsigned long long>(b));
    };
    std::printf("  %-19s %14s %14s\n", "", "before", "after");
    row("objects", before.objects, after.objects);
    row("points", before.points, after.points);
    row("faces", before.faces, after.faces);
    row("corners", before.corners, after.corners);
    row("components", before.components, after.components);
    row("border edges", before.borderEdges, after.borderEdges);
    row("non-manifold edges", before.nonManifoldEdges, after.nonManifoldEdges);
    row("degenerate faces", before.degenerateFaces, after.degenerateFaces);
    std::printf("  %-19s %14.8g %14.8g\n", "area", before.area, after.area);
    const auto volume = [](const MeshStatistics& mesh) {
        char text[32] = "open";
        if (mesh.closed)
            std::snprintf(text, sizeof(text), "%.8g", mesh.volume);
        return std::string(text);
    };
    std::printf("  %-19s %14s %14s\n", "volume", volume(before).c_str(), volume(after).c_str());
}

/// An operation asked for, with the text behind its '='.
struct Step {
    const SceneStep* operation;
    std::string value;
};

// CLI11 gives the texts of an option in their order, and the options in the order of the command line.
std::vector<Step> ListSteps(const CLI::App& verb)
{
    std::vector<Step> steps;
    std::map<const CLI::Option*, std::size_t> used;
    for (const CLI::Option* option : verb.parse_order())
        for (const SceneStep& operation : GetSceneSteps())
            if (option->check_lname(operation.name))
                steps.push_back({&operation, option->results().at(used[option]++)});
    return steps;
}

}

ProcessVerb::ProcessVerb(CLI::App& app)
    : m_verb(app.add_subcommand("process", "Runs mesh operations on a file, in the order given")), m_input(*m_verb), m_output(*m_verb)
{
    m_verb->add_option("FILE", m_file, "File to read")->required();
    m_verb->add_option("-o,--output,OUT", m_target, "File to write; without it nothing is written");
    m_verb->add_flag("--stats", m_statistics, "Print counts, area and volume before and after");
    m_verb->add_flag("--json", m_json, "Print the statistics as JSON, with the time of each operation");
    for (const SceneStep& step : GetSceneSteps()) {
        const std::string name = std::string("--") + step.name;
        CLI::Option* option = step.needsValue ? m_verb->add_option(name) : m_verb->add_flag(name);
        option->description(step.help)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->check([&step](const std::string& text) {
            return step.needsValue || text != "true" ? CheckStepValue(step, text) : std::string();
        });
    }
}

ExitCode ProcessVerb::Run(const Console& console) const
{
    const std::vector<Step> steps = ListSteps(*m_verb);
    const InputFiles inputs({m_file});
    unsigned int fileClass;
    if (!m_target.empty() && (m_output.IsInput(console, m_target, inputs) || !m_output.GetFormat(console, fileClass)))
        return EXIT_USAGE;
    const ProgressBar bar(console);
    C3DConversionReport report;
    const std::optional<SceneFile> file = m_input.Read(console, m_file, report);
    if (!file)
        return EXIT_UNREADABLE;
    std::optional<MeshStatistics> before;
    if (m_statistics)
        before.emplace(*file->scene);
    Json timings = Json::array();
    for (const Step& step : steps) {
        const auto start = std::chrono::steady_clock::now();
        const bool changed = step.operation->run(*file->scene, step.value);
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        timings.push_back({{"operation", step.operation->name}, {"changed", changed}, {"ms", elapsed.count()}});
        console.Say(std::string(step.operation->name) + (changed ? "" : ": nothing to do"));
    }
    if (m_statistics)
        PrintResult(console, timings, *before, MeshStatistics(*file->scene));
    return m_target.empty() ? EXIT_DONE : m_output.Write(console, *file->scene, m_target, inputs, report);
}

void ProcessVerb::PrintResult(const Console& console, const nlohmann::ordered_json& timings, const MeshStatistics& before,
                              const MeshStatistics& after) const
{
    if (m_json) {
        const Json document = {{"schema", 1}, {"file", m_file}, {"steps", timings}, {"before", ToJson(before)}, {"after", ToJson(after)}};
        std::printf("%s\n", document.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
    } else {
        std::printf("%s\n", console.Heading(m_file).c_str());
        PrintStatistics(before, after);
    }
}
