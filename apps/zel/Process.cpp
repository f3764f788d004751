#include "Process.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <vector>

#include "MeshStatistics.h"
#include "Printable.h"
#include "ProgressBar.h"
#include "SceneFile.h"
#include "SceneSteps.h"

namespace {

/// What a scene holds, counted after each step. Each shared object counts once.
struct MeshCounts {
    explicit MeshCounts(C3DScene& scene)
    {
        CHashTable<unsigned int> seen;
        C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC);
        C3DGeomObject* object;
        while (scene.GetNextNode(object, pos))
            if (object && seen.Insert(object->GetObjectID()))
                Add(*object);
    }
    std::string GetText() const
    {
        return std::to_string(objects) + " objects, " + std::to_string(points) + " points, " + std::to_string(faces) + " faces, " +
               std::to_string(corners) + " corners";
    }
    Json GetJson() const { return {{"objects", objects}, {"points", points}, {"faces", faces}, {"corners", corners}}; }

private:
    void Add(const C3DGeomObject& object)
    {
        objects++;
        points += static_cast<std::uint64_t>(object.GetPointNbr());
        const C3DFaceList* const list = object.GetFaceList();
        if (!list)
            return;
        const CFaceFlags flags(*list);
        for (int face = 0; face < list->GetSize(); face++)
            if (!flags.IsDead(face)) {
                int count;
                list->GetIndexes(face, count);
                faces++;
                corners += static_cast<std::uint64_t>(count);
            }
    }

    std::uint64_t objects = 0, points = 0, faces = 0, corners = 0;
};

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

/// An operation asked for, with its value: "true" for none.
struct Step {
    const SceneStep* operation;
    std::string value;
};

Json RunStep(const Console& console, C3DScene& scene, const Step& step)
{
    const SceneStep& operation = *step.operation;
    const bool isChosen = operation.choose && step.value == "true";
    const std::string value = isChosen ? operation.choose(scene) : step.value;
    const MeshCounts before(scene);
    const auto start = std::chrono::steady_clock::now();
    const bool changed = operation.run(scene, value);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    const MeshCounts after(scene);
    console.Say(operation.name + (value == "true" ? "" : " " + value) + (changed ? "" : ": nothing to do"));
    console.Say("  before  " + before.GetText());
    console.Say("  after   " + after.GetText());
    return {{"operation", operation.name}, {"value", value == "true" ? Json() : Json(value)},
            {"changed", changed},          {"ms", elapsed.count()},
            {"before", before.GetJson()},  {"after", after.GetJson()}};
}

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

static bool IsNumber(const std::string& text)
{
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return text.find_first_of("0123456789") != text.npos && *end == 0;
}

void JoinStepValues(std::vector<std::string>& arguments)
{
    for (std::size_t i = 0; i + 1 < arguments.size() && arguments[i] != "--"; i++)
        for (const SceneStep& step : GetSceneSteps()) {
            const bool mayHaveValue = step.value != SceneStep::NONE && !step.needsValue;
            if (mayHaveValue && arguments[i] == std::string("--") + step.name && IsNumber(arguments[i + 1])) {
                arguments[i] += "=" + arguments[i + 1];
                arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1);
                break;
            }
        }
}

ProcessVerb::ProcessVerb(CLI::App& app)
    : m_verb(app.add_subcommand("process", "Runs mesh operations on a file, in the order given")), m_input(*m_verb), m_output(*m_verb)
{
    m_verb->add_option("FILE", m_file, "File to read")->required();
    m_verb->add_option("-o,--output,OUT", m_target, "File to write; without it nothing is written")->type_name("FILE");
    m_verb->add_flag("--stats", m_statistics, "Print counts, area and volume before and after");
    m_verb->add_flag("--json", m_json, "Print the statistics as JSON, with the time of each operation");
    for (const SceneStep& step : GetSceneSteps()) {
        const std::string name = std::string("--") + step.name;
        CLI::Option* option = step.needsValue ? m_verb->add_option(name)->type_name(step.valueName) : m_verb->add_flag(name);
        option->description(step.help)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->check([&step](const std::string& text) {
            return step.needsValue || text != "true" ? CheckStepValue(step, text) : std::string();
        });
    }
}

ExitCode ProcessVerb::Run(const Console& console) const
{
    const std::vector<Step> steps = ListSteps(*m_verb);
    const InputFiles inputs({m_file});
    if (const ExitCode code = m_target.empty() ? EXIT_DONE : m_output.Check(console, m_target, inputs); code != EXIT_DONE)
        return code;
    const ProgressBar bar(console);
    C3DConversionReport report;
    std::string failure;
    const std::optional<SceneFile> file = m_input.Read(console, m_file, report, &failure);
    if (!file) {
        if (!m_target.empty())
            m_output.PrintFailure(inputs, m_target, report, failure);
        return EXIT_UNREADABLE;
    }
    std::optional<MeshStatistics> before;
    if (m_statistics)
        before.emplace(*file->scene);
    Json timings = Json::array();
    for (const Step& step : steps)
        timings.push_back(RunStep(console, *file->scene, step));
    if (m_statistics)
        PrintResult(console, timings, *before, MeshStatistics(*file->scene));
    return m_target.empty() ? EXIT_DONE : m_output.Write(console, *file->scene, m_target, inputs, report);
}

void ProcessVerb::PrintResult(const Console& console, const Json& timings, const MeshStatistics& before, const MeshStatistics& after) const
{
    if (m_json) {
        PrintJson({{"schema", 1}, {"file", m_file}, {"steps", timings}, {"before", ToJson(before)}, {"after", ToJson(after)}});
    } else {
        console.PrintHeading(m_file);
        PrintStatistics(before, after);
    }
}
