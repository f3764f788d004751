#include "Info.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

#include <nlohmann/json.hpp>

#include "SceneSummary.h"

namespace {

using Json = nlohmann::ordered_json;

/// A file that was read.
struct FileInfo {
    std::string file;
    std::string fileClass;
    std::string format;
    double readMilliseconds;
    SceneSummary summary;
};

struct ReleaseScene {
    void operator()(C3DScene* scene) const { DeleteMe(scene); }
};

// The first failure of the log is the exact one; later ones only say that the reading failed.
std::string Reason(const C3DIo& io, const CSceneImportOptions& options)
{
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::FAILURE)
            return WideToUtf8(line.text);
    return WideToUtf8(io.GetResultText());
}

std::optional<FileInfo> ReadFile(const Console& console, const std::string& file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_READ | FILEIO_SILENT, nullptr);
    CSceneImportOptions options;
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<C3DScene, ReleaseScene> scene;
    std::string reason;
    try {
        scene.reset(io.Read(false, &options));
        if (!scene)
            reason = Reason(io, options);
    } catch (const CXException* error) {
        reason = WideToUtf8(error->GetText());
        XDeleteThreadException();
    } catch (const std::bad_alloc&) {
        reason = "not enough memory";
    } catch (const std::exception& error) {
        reason = error.what();
    }
    if (!scene) {
        console.Fail(reason.find(file) == std::string::npos ? file + ": " + reason : reason);
        return std::nullopt;
    }
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::WARNING)
            console.Say(file + ": " + WideToUtf8(line.text));
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    CFileExt format;
    fileGetExtensionInfo(io.GetClass(), &format);
    return FileInfo{file, WideToUtf8(fileGetClassText(io.GetClass())), WideToUtf8(format.description), elapsed.count(),
                    SceneSummary(*scene)};
}

Json ToJson(const C3DTPoint<float>& point) { return {point.x, point.y, point.z}; }

// Keys are only ever added, so that scripts go on working.
Json ToJson(const FileInfo& info)
{
    const SceneSummary& summary = info.summary;
    Json byKind = Json::object();
    for (const auto& [kind, count] : summary.nodesByKind)
        byKind[GetKindName(kind)] = count;
    Json bounds;    // null without geometry
    if (summary.hasBounds)
        bounds = {{"min", ToJson(summary.min)}, {"max", ToJson(summary.max)}};
    return {
        {"schema", 1},
        {"file", info.file},
        {"class", info.fileClass},
        {"format", info.format},
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
        {"read_ms", info.readMilliseconds},
    };
}

std::string Text(const C3DTPoint<float>& point)
{
    char text[96];
    std::snprintf(text, sizeof(text), "(%g, %g, %g)", point.x, point.y, point.z);
    return text;
}

void Print(const Console& console, const FileInfo& info)
{
    const SceneSummary& summary = info.summary;
    const auto line = [](const char* name, const std::string& value) { std::printf("  %-11s %s\n", name, value.c_str()); };
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    // Counts as drawn, and as stored where instances make that less.
    const auto drawn = [&](std::uint64_t all, std::uint64_t stored) {
        return all == stored ? number(all) : number(all) + " drawn, " + number(stored) + " stored";
    };
    std::printf("%s\n", console.Heading(info.file).c_str());
    line("format", info.format + " [" + info.fileClass + "]");
    line("nodes", number(summary.nodes));
    for (const auto& [kind, count] : summary.nodesByKind) {
        C3DBaseObject* sample = C3DBaseObject::Create(kind);
        line("", number(count) + " " + WideToUtf8(sample->GetTypeString()));
        DeleteMe(sample);
    }
    line("objects", number(summary.objects) + (summary.instances ? ", shown " + number(summary.instances) + " more times" : ""));
    line("points", drawn(summary.points, summary.storedPoints));
    line("faces", drawn(summary.faces, summary.storedFaces));
    line("",
         number(summary.triangles) + " triangles, " + number(summary.quads) + " quadrangles, " + number(summary.largerFaces) + " larger");
    line("materials", number(summary.materials));
    if (summary.hasBounds)
        line("bounds", Text(summary.min) + " to " + Text(summary.max));
    char time[32];
    std::snprintf(time, sizeof(time), "%.1f ms", info.readMilliseconds);
    line("read in", time);
}

}

ExitCode ShowInfo(const Console& console, const std::vector<std::string>& files, bool json)
{
    Json results = Json::array();
    std::size_t read = 0;
    for (const std::string& file : files) {
        const std::optional<FileInfo> info = ReadFile(console, file);
        if (!info)
            continue;
        read++;
        if (json)
            results.push_back(ToJson(*info));
        else
            Print(console, *info);
    }
    if (json && (read > 0 || files.size() > 1)) {
        const Json& document = files.size() == 1 ? results.front() : results;
        // A name that is no UTF-8 must not cost the rest of the document.
        std::printf("%s\n", document.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
    }
    if (read == files.size())
        return EXIT_DONE;
    return read == 0 ? EXIT_UNREADABLE : EXIT_BATCH;
}
