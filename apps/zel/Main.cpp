// zel: the command-line tool of 3DZel.

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "Convert.h"
#include "ExitCode.h"
#include "Failure.h"
#include "Formats.h"
#include "Info.h"
#include "Merge.h"
#include "Process.h"
#include "Render.h"
#include "SceneFile.h"
#include "Signals.h"
#include "Thumbnail.h"

namespace {

/// The library for as long as the program works with it.
class Library {
public:
    Library() { Init3DZel(INIT_FLAGS); }
    ~Library() { Close3DZel(INIT_FLAGS); }

private:
    static constexpr unsigned int INIT_FLAGS = 1;    // no viewer commands
};

std::optional<_UP_AXIS_MODE> ParseUpAxis(const std::string& axis)
{
    if (axis == "x" || axis == "X")
        return UP_AXIS_X;
    if (axis == "y" || axis == "Y")
        return UP_AXIS_Y;
    return axis == "z" || axis == "Z" ? std::optional(UP_AXIS_Z) : std::nullopt;
}

// What is wrong with a command line. The parser only says that a verb is missing when there is one that it does not know.
std::string DescribeMistake(const CLI::App& app, const CLI::ParseError& error)
{
    std::string unknown;
    if (app.get_subcommands().empty())
        for (const std::string& argument : app.remaining())
            if (unknown.empty() && !argument.starts_with('-'))
                unknown = argument;
    if (unknown.empty())
        return std::string(error.what()) + " (see zel --help)";
    std::string verbs;
    for (const CLI::App* verb : app.get_subcommands(nullptr))
        verbs += (verbs.empty() ? "" : ", ") + verb->get_name();
    return "no verb " + unknown + "; there are " + verbs + " (see zel --help)";
}

}

int main(int argc, char** argv)
{
    EndCleanlyOnSignals();
    Console console;

    CLI::App app("Reads, checks, converts and draws 3D scenes.", "zel");
    app.require_subcommand(1);
    app.set_version_flag("--version", ZEL_VERSION);
    bool quiet = false;
    app.fallthrough();
    app.add_flag("-q,--quiet", quiet, "Print errors only");

    ReadSettings reading;
    const char* const READING = "Reading";
    app.add_option("--read-as", reading.extension, "Extension of the format that files are in, whatever their names say")
        ->group(READING)
        ->type_name("EXT");
    app.add_option("--read-seconds", reading.seconds, "Time limit for reading a foreign file; 600 by default, 0: no limit")
        ->group(READING)
        ->type_name("N");
    app.add_option("--read-megabytes", reading.megabytes, "Memory limit for one; 64 and 40 times its size by default, 0: no limit")
        ->group(READING)
        ->type_name("N");
    app.add_option_function<std::string>(
           "--read-up", [&reading](const std::string& axis) { reading.up = ParseUpAxis(axis); },
           "Axis that points up, where the file can't say: x, y or z")
        ->group(READING)
        ->type_name("AXIS")
        ->check([](const std::string& axis) { return ParseUpAxis(axis) ? std::string() : "not x, y or z: " + axis; });

    bool json = false, tree = false;
    std::vector<std::string> files;
    CLI::App* info = app.add_subcommand("info", "Shows what scene files hold");
    info->add_option("FILE", files, "Files to read; - is standard input, whose format --read-as tells")->required();
    info->add_flag("--json", json, "Print JSON: an object a file, an array for several files");
    info->add_flag("--tree", tree, "Show all nodes with their kinds, counts and matrices");
    const ConvertVerb convert(app);
    const MergeVerb merge(app);
    const ProcessVerb process(app);
    const RenderVerb render(app);
    const ThumbnailVerb thumbnail(app);
    CLI::App* formats = app.add_subcommand("formats", "Lists what can be read and written, and by whom");
    formats->add_flag("--json", json, "Print JSON");

    app.footer("Exit codes: 0 done, 1 failed, 2 wrong usage, 3 input unreadable or refused, 4 written with losses under --strict,\n"
               "5 no GL, 6 some files of a batch failed, 130 interrupted.");
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    JoinStepValues(arguments);
    std::ranges::reverse(arguments);    // as the parser takes them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        const int code = app.exit(help);
        return console.Finish() ? code : EXIT_FAILED;
    } catch (const CLI::ParseError& error) {
        console.Fail(DescribeMistake(app, error));
        return EXIT_USAGE;
    }
    console.SetQuiet(quiet);
    SetReadSettings(reading);

    const ExitCode code = RunSafely(console, app.get_subcommands().front()->get_name(), [&] {
        const Library library;
        if (const auto warning = C3DPreferences::Get3DPreferences().GetWarning(); !warning.IsEmpty())
            console.Say(WideToUtf8(warning));
        if (convert.IsAsked())
            return convert.Run(console);
        if (merge.IsAsked())
            return merge.Run(console);
        if (process.IsAsked())
            return process.Run(console);
        if (render.IsAsked())
            return render.Run(console);
        if (thumbnail.IsAsked())
            return thumbnail.Run(console);
        return info->parsed() ? ShowInfo(console, files, json, tree) : ShowFormats(console, json);
    });
    return console.Finish() || code != EXIT_DONE ? code : EXIT_FAILED;
}
