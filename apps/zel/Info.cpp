#include "Info.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <utility>

#include "NodeTree.h"
#include "Printable.h"
#include "SceneFile.h"
#include "SceneSummary.h"

namespace {

Json ToJson(const C3DTPoint<float>& point) { return {point.x, point.y, point.z}; }

Json ToJson(const C4x4TMatrix<float>& matrix)
{
    Json rows = Json::array();
    for (const auto& row : matrix.m)
        rows.push_back(Json(row));
    return rows;
}

Json MapsToJson(const SceneSummary& summary)
{
    Json maps = Json::array();
    for (const MapSummary& map : summary.maps)
        maps.push_back(
            {{"material", map.material}, {"type", map.type}, {"file", map.file}, {"found", map.found.empty() ? Json() : Json(map.found)}});
    return maps;
}

// Null for a scene without unit.
Json UnitToJson(const C3DScene& scene)
{
    if (!scene.IsUnitDefined())
        return {};
    const _UNIT_MODE unit = scene.GetUnit();
    return {{"mode", static_cast<unsigned int>(unit)}, {"centimetres", C3DScene::GetUnitFactor(unit)}, {"scale", scene.GetScaleFactor()}};
}

// A flat list, so that deep trees have no depth for readers of JSON; `depth` tells who is whose child.
Json TreeToJson(C3DScene& scene)
{
    Json nodes = Json::array();
    for (const NodeRow& row : ListNodes(scene))
        nodes.push_back({{"name", WideToUtf8(row.node->GetName())},
                         {"depth", row.depth},
                         {"kind", GetKindName(row.node->GetObjectKindOf())},
                         {"instance", row.instance},
                         {"points", row.points},
                         {"faces", row.faces},
                         {"matrix", ToJson(row.matrix)}});
    return nodes;
}

// Keys are only ever added, so that scripts go on working.
Json ToJson(const SceneFile& file, const SceneSummary& summary, bool tree)
{
    Json byKind = Json::object();
    for (const auto& [kind, count] : summary.nodesByKind)
        byKind[GetKindName(kind)] = count;
    Json bounds;    // null without geometry
    if (summary.hasBounds)
        bounds = {{"min", ToJson(summary.min)}, {"max", ToJson(summary.max)}};
    Json json = {
        {"schema", 1},
        {"file", file.name},
        {"class", file.fileClass},
        {"format", file.format},
        {"nodes", summary.nodes},
        {"objects", summary.objects},
        {"instances", summary.instances},
        {"by_kind", byKind},
        {"points", summary.points},
        {"faces", summary.faces},
        {"stored_points", summary.storedPoints},
        {"stored_faces", summary.storedFaces},
        {"stored_corners", summary.storedCorners},
        {"faces_by_size", {{"3", summary.triangles}, {"4", summary.quads}, {"more", summary.largerFaces}}},
        {"channels",
         {{"uvw", summary.uvwChannels},
          {"colours", summary.colourChannels},
          {"weights", summary.weightChannels},
          {"specified_normals", summary.specifiedNormalChannels}}},
        {"materials", summary.materials},
        {"bounds", bounds},
        {"read_ms", file.readMilliseconds},
        {"maps", MapsToJson(summary)},
        {"time",
         {{"first", summary.firstFrame}, {"last", summary.lastFrame}, {"rate", summary.frameRate > 0 ? Json(summary.frameRate) : Json()}}},
        {"unit", UnitToJson(*file.scene)},
    };
    if (tree)
        json["tree"] = TreeToJson(*file.scene);
    return json;
}

std::string Text(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%g", value);
    return text;
}

std::string Text(const C3DTPoint<float>& point)
{
    char text[96];
    std::snprintf(text, sizeof(text), "(%g, %g, %g)", point.x, point.y, point.z);
    return text;
}

void PrintLine(const char* name, const std::string& value) { std::printf("  %-11s %s\n", name, Printable(value).c_str()); }

std::string Number(std::uint64_t value) { return std::to_string(value); }

// Counts as drawn, and as stored where instances make that less.
std::string Drawn(std::uint64_t all, std::uint64_t stored)
{
    return all == stored ? Number(all) : Number(all) + " drawn, " + Number(stored) + " stored";
}

std::string KindText(_OBJECT_KINDOF kind)
{
    C3DBaseObject* sample = C3DBaseObject::Create(kind);
    const std::string text = sample ? WideToUtf8(sample->GetTypeString()) : "no object";
    DeleteMe(sample);
    return text;
}

// The counts that are not 0, in words.
std::string List(std::initializer_list<std::pair<std::uint64_t, const char*>> counts)
{
    std::string text;
    for (const auto& [count, what] : counts)
        if (count > 0)
            text += (text.empty() ? "" : ", ") + Number(count) + " " + what;
    return text;
}

void PrintMaps(const SceneSummary& summary)
{
    if (summary.maps.empty())
        return;
    const auto missing = std::ranges::count_if(summary.maps, [](const MapSummary& map) { return map.found.empty(); });
    PrintLine("maps", List({{summary.maps.size() - missing, "found"}, {missing, "missing"}}));
    for (const MapSummary& map : summary.maps)
        PrintLine("", map.material + ", " + map.type + ": " + (map.found.empty() ? map.file + " (missing)" : map.found));
}

void PrintTree(C3DScene& scene)
{
    for (const NodeRow& row : ListNodes(scene)) {
        const std::string indent(4 + 2 * std::size_t{row.depth}, ' ');
        const std::string counts = List({{row.points, "points"}, {row.faces, "faces"}});
        std::printf("%s%s [%s%s]%s%s\n", indent.c_str(), Printable(WideToUtf8(row.node->GetName())).c_str(),
                    KindText(row.node->GetObjectKindOf()).c_str(), row.instance ? ", instance" : "", counts.empty() ? "" : " ",
                    counts.c_str());
        for (int i = 0; row.moved && i < 3; i++)
            std::printf("%s  | %g %g %g %g\n", indent.c_str(), row.matrix.m[i][0], row.matrix.m[i][1], row.matrix.m[i][2],
                        row.matrix.m[i][3]);
    }
}

void Print(const Console& console, const SceneFile& file, const SceneSummary& summary, bool tree)
{
    console.PrintHeading(file.name);
    PrintLine("format", file.format + " [" + file.fileClass + "]");
    PrintLine("nodes", Number(summary.nodes));
    for (const auto& [kind, count] : summary.nodesByKind)
        PrintLine("", Number(count) + " " + KindText(kind));
    PrintLine("objects", Number(summary.objects) + (summary.instances ? ", shown " + Number(summary.instances) + " more times" : ""));
    PrintLine("points", Drawn(summary.points, summary.storedPoints));
    PrintLine("faces", Drawn(summary.faces, summary.storedFaces));
    PrintLine("", Number(summary.triangles) + " triangles, " + Number(summary.quads) + " quadrangles, " + Number(summary.largerFaces) +
                      " larger");
    const std::string channels = List({{summary.uvwChannels, "of texture coordinates"},
                                       {summary.colourChannels, "of colours"},
                                       {summary.weightChannels, "of weights"},
                                       {summary.specifiedNormalChannels, "of normals"}});
    if (!channels.empty())
        PrintLine("channels", channels);
    PrintLine("materials", Number(summary.materials));
    PrintMaps(summary);
    if (summary.firstFrame != summary.lastFrame)
        PrintLine("time", "frame " + std::to_string(summary.firstFrame) + " to " + std::to_string(summary.lastFrame) +
                              (summary.frameRate > 0 ? ", " + Text(summary.frameRate) + " a second" : ""));
    if (file.scene->IsUnitDefined())
        PrintLine("unit", WideToUtf8(file.scene->GetUnitText(false)) + ", a length of 1 is " + Text(file.scene->ConvertToUnit(1)));
    if (summary.hasBounds)
        PrintLine("bounds", Text(summary.min) + " to " + Text(summary.max));
    char time[32];
    std::snprintf(time, sizeof(time), "%.1f ms", file.readMilliseconds);
    PrintLine("read in", time);
    if (tree)
        PrintTree(*file.scene);
}

}

ExitCode ShowInfo(const Console& console, const std::vector<std::string>& files, bool json, bool tree)
{
    Json results = Json::array();
    std::size_t read = 0;
    for (const std::string& name : files) {
        CSceneImportOptions options;
        std::string failure;
        const std::optional<SceneFile> file = ReadSceneFile(console, name, options, &failure);
        if (!file) {
            results.push_back({{"schema", 1}, {"file", name}, {"error", failure}});
            continue;
        }
        read++;
        const SceneSummary summary(*file->scene);
        if (json)
            results.push_back(ToJson(*file, summary, tree));
        else
            Print(console, *file, summary, tree);
    }
    if (json)
        PrintJson(files.size() == 1 ? results.front() : results);
    if (read == files.size())
        return EXIT_DONE;
    return read == 0 ? EXIT_UNREADABLE : EXIT_BATCH;
}
